// The folders that the check and the installer work in.
#pragma once

#include <windows.h>

#include <filesystem>
#include <memory>
#include <string>
#include <type_traits>
#include <vector>

using CPath = std::filesystem::path;

struct CLibraryDeleter
{
    void operator()(HMODULE hLibrary) const
    {
        FreeLibrary(hLibrary);
    }
};

using CLibrary = std::unique_ptr<std::remove_pointer_t<HMODULE>, CLibraryDeleter>;

// Where this program lies.
CPath OwnFolder();
// Beside it: the installer, the unit tests and what they need.
CPath PartsFolder();
// Where the installer keeps its tools while it runs.
CPath ToolsFolder();
CPath AdbPath();
// Where adb keeps the key by which watches know this computer.
CPath AdbKeyFolder();

// A folder for copies, which has nobody's name in its path, as pictures show it. It is made empty and goes with the
// scope, like the folders of the installer's tools and of adb's key where those were not there before. Meanwhile adb
// keeps its log there too.
class CWorkFolder
{
public:
    CWorkFolder(); // throws CLost
    ~CWorkFolder();
    CWorkFolder(const CWorkFolder&) = delete;
    CWorkFolder& operator=(const CWorkFolder&) = delete;

    const CPath& Path() const
    {
        return m_path;
    }
    // Removes it with all in it, and says whether that worked.
    bool Remove();

private:
    CPath m_path;
    bool m_bToolsFolderWasThere;
    bool m_bKeyFolderWasThere;
};

// Empty when it cannot be read.
std::string ReadBytes(const CPath& file);
// A program, for its resources alone.
CLibrary OpenProgram(const CPath& program);
// RT_RCDATA of a program, or of this one; empty where there is none.
std::string ResourceBytes(HMODULE hModule, int nId);
// Throws CLost with the name and the system's error.
void WriteBytes(const CPath& file, const std::string& bytes);

// Copies the installer into a folder of its own, with something beside it that is named like a package; throws CLost.
CPath CopyIntoFolder(const CPath& program, const CPath& folder);

// The names of all in a folder and its folders, sorted; nothing for a folder that is not there.
std::vector<std::wstring> NamesIn(const CPath& folder);
// The same in one line.
std::wstring ListOf(const CPath& folder);

std::wstring InQuotes(const std::wstring& szText);
