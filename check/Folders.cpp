#include "check/Folders.h"

#include "check/Stopping.h"

#include <shlobj.h>

#include <algorithm>
#include <fstream>
#include <iterator>

namespace {

CPath KnownFolder(const KNOWNFOLDERID& id)
{
    PWSTR pszPath = nullptr;
    CPath path;
    if (SUCCEEDED(SHGetKnownFolderPath(id, 0, nullptr, &pszPath))) {
        path = pszPath;
    }
    CoTaskMemFree(pszPath);
    return path;
}

} // namespace

CPath OwnFolder()
{
    WCHAR szPath[MAX_PATH] = {};
    GetModuleFileNameW(nullptr, szPath, MAX_PATH);
    return CPath(szPath).parent_path();
}

CPath PartsFolder()
{
    return OwnFolder() / L"parts";
}

CPath ToolsFolder()
{
    return KnownFolder(FOLDERID_LocalAppData) / L"KALVO_ApkInstaller";
}

CPath AdbPath()
{
    return ToolsFolder() / L"platform-tools" / L"adb.exe";
}

CPath AdbKeyFolder()
{
    return KnownFolder(FOLDERID_Profile) / L".android";
}

CWorkFolder::CWorkFolder()
    : m_path(KnownFolder(FOLDERID_Public) / L"KalvoWindowsCheck"), m_bToolsFolderWasThere(exists(ToolsFolder())),
      m_bKeyFolderWasThere(exists(AdbKeyFolder()))
{
    std::error_code error;
    remove_all(m_path, error);
    if (!create_directories(m_path, error)) {
        throw CLost{L"no folder can be made for copies of the program, where everybody may"};
    }
    for (const PCWSTR pszVariable : {L"TMP", L"TEMP"}) {
        SetEnvironmentVariableW(pszVariable, m_path.c_str());
    }
}

CWorkFolder::~CWorkFolder()
{
    Remove();
}

bool CWorkFolder::Remove()
{
    std::error_code error;
    if (!m_bToolsFolderWasThere) {
        remove(ToolsFolder(), error); // which is empty, or stays
    }
    if (!m_bKeyFolderWasThere) {
        remove_all(AdbKeyFolder(), error);
    }
    for (int n = 0; n < 20 && exists(m_path, error); ++n) {
        remove_all(m_path, error);
        if (error) {
            Sleep(100); // a program that has just ended may still be held
        }
    }
    return !exists(m_path, error) && exists(AdbKeyFolder(), error) == m_bKeyFolderWasThere;
}

std::string ReadBytes(const CPath& file)
{
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

bool WriteBytes(const CPath& file, const std::string& bytes)
{
    std::ofstream stream(file, std::ios::binary);
    stream.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    stream.close();
    return !stream.fail();
}

std::vector<std::wstring> NamesIn(const CPath& folder)
{
    std::vector<std::wstring> names;
    std::error_code error;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder, error)) {
        names.push_back(entry.path().lexically_relative(folder).generic_wstring());
    }
    std::ranges::sort(names);
    return names;
}

std::wstring ListOf(const CPath& folder)
{
    std::wstring szList;
    for (const std::wstring& szName : NamesIn(folder)) {
        szList += (szList.empty() ? L"" : L", ") + szName;
    }
    return szList.empty() ? L"nothing" : szList;
}
