#include "check/Folders.h"

#include "check/Stopping.h"
#include "check/Text.h"
#include "launcher/Handle.h"

#include <shlobj.h>

#include <algorithm>
#include <format>
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

CLibrary OpenProgram(const CPath& program)
{
    return CLibrary(LoadLibraryExW(program.c_str(), nullptr, LOAD_LIBRARY_AS_DATAFILE));
}

std::string ResourceBytes(HMODULE hModule, int nId)
{
    const HRSRC hResource = FindResourceW(hModule, MAKEINTRESOURCEW(nId), RT_RCDATA);
    const HGLOBAL hData = hResource != nullptr ? LoadResource(hModule, hResource) : nullptr;
    const auto* const pBytes = static_cast<const char*>(hData != nullptr ? LockResource(hData) : nullptr);
    return pBytes != nullptr ? std::string(pBytes, SizeofResource(hModule, hResource)) : std::string();
}

void WriteBytes(const CPath& file, const std::string& bytes)
{
    const HANDLE hFile = CreateFileW(file.c_str(), GENERIC_WRITE, FILE_SHARE_READ, nullptr, CREATE_ALWAYS,
                                     FILE_ATTRIBUTE_NORMAL, nullptr);
    const CHandle owner(hFile != INVALID_HANDLE_VALUE ? hFile : nullptr);
    DWORD cb = 0;
    if (!owner || !WriteFile(hFile, bytes.data(), static_cast<DWORD>(bytes.size()), &cb, nullptr)) {
        throw CLost{std::format(L"cannot write {} (error {})", file.filename().wstring(), GetLastError())};
    }
}

CPath CopyIntoFolder(const CPath& program, const CPath& folder)
{
    CPath copy = folder / L"KalvoApkInstaller.exe";
    std::error_code error;
    create_directories(folder, error);
    if (!copy_file(program, copy, error)) {
        throw CLost{L"There is no installer to check. Please unpack all of the archive, and start Check.exe there."};
    }
    WriteBytes(folder / L"Check.apk", "no package");
    return copy;
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
    return Joined(NamesIn(folder));
}

std::wstring InQuotes(const std::wstring& szText)
{
    return L"\"" + szText + L"\"";
}
