// A disk of Windows in memory: folders and files by name, under the rules by which Windows reads a path. The C
// runtime's functions for wide names work on it, so that whatever an archive makes it try can be tried, and looked at.
//
// What Windows does with a path, as far as it matters to where things land: slashes and backslashes separate; empty
// and "." segments vanish and ".." takes one away; one period at a segment's end is dropped, at the path's end all
// periods and blanks are; case does not count; names of devices lead to the device from every folder; a colon names
// another stream of the same file.
#pragma once

#include <windows.h>

#include <map>
#include <optional>
#include <set>
#include <string>

class Disk
{
public:
    // Has the folder "c:\" and nothing else, and room for nCapacity bytes. Without bLongPaths paths end at the length
    // that programs are held to which do not ask for more.
    Disk(size_t nCapacity, bool bLongPaths);

    // While one disk is current, the C runtime's functions work on it.
    void MakeCurrent();
    static Disk& Current();

    // The name under which a path is kept; nothing when Windows takes it for no file or folder.
    static std::optional<std::wstring> Resolve(std::wstring_view path);

    // 0 or the C runtime's error number.
    int MakeFolder(std::wstring_view path);

    // Empties the file or makes it. Gives the name that Append takes: no name when it is a device, which swallows
    // everything, or nothing on failure.
    std::optional<std::wstring> CreateFile(std::wstring_view path);

    // Takes a file away, and with it all its streams.
    bool DeleteFile(std::wstring_view path);

    // How many of the bytes still found room.
    size_t Append(const std::wstring& name, std::string_view bytes);

    // Places a file without further ado.
    void Put(std::wstring_view path, std::string_view bytes);

    const std::set<std::wstring>& Folders() const
    {
        return m_folders;
    }
    const std::map<std::wstring, std::string>& Files() const
    {
        return m_files;
    }

    // How many files are open through the C runtime.
    int m_nOpen = 0;
    // The next file that was opened for reading does not close well.
    bool m_bCloseFails = false;

private:
    bool IsTooLong(std::wstring_view path, size_t nLimit) const;

    size_t m_nRoom;
    bool m_bLongPaths;
    std::set<std::wstring> m_folders = {L"c:"};
    std::map<std::wstring, std::string> m_files;
};
