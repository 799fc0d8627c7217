// A disk of Windows in memory, under the rules by which Windows reads a path. The C runtime's functions for wide names
// work on it, so that whatever an archive makes them try can be tried, and looked at.
//
// What Windows does with a path, as far as it matters to where things land: slashes and backslashes separate; empty
// and "." segments vanish and ".." takes one away; one period at a segment's end is dropped, at the path's end all
// periods and blanks are; case does not count. Devices, streams and the lengths that end a path are not there.
#pragma once

#include <windows.h>

#include <map>
#include <optional>
#include <string>

class Disk
{
public:
    // Has the folder "c:" and nothing else. Each file has room for so many bytes. The archive is what is read, under
    // whatever name.
    Disk(std::string archive, size_t nRoom) : m_archive(std::move(archive)), m_nRoom(nRoom) {}

    // From now on the C runtime's functions work on this disk.
    void MakeCurrent();

    // The name under which a path is kept; nothing when Windows takes it for no file or folder.
    static std::optional<std::wstring> Resolve(std::wstring path);

    // 0 or the C runtime's error number.
    int MakeFolder(const std::wstring& path);

    // Empties the file or makes it. Null on failure.
    std::string* CreateFile(const std::wstring& path);

    bool DeleteFile(const std::wstring& path);

    // All of the bytes, or none where the file has no room for all.
    bool Append(std::string& file, std::string_view bytes) const;

    FILE* OpenArchive();

    // By name; a folder has no bytes.
    const std::map<std::wstring, std::optional<std::string>>& Entries() const
    {
        return m_entries;
    }

private:
    bool IsFolder(const std::wstring& name) const;

    std::string m_archive;
    size_t m_nRoom;
    std::map<std::wstring, std::optional<std::string>> m_entries = {{L"c:", std::nullopt}};
};
