#include "tools/PlatformTools.h"

#include "adb/AdbCommands.h"
#include "app/ground/ErrorReport.h"
#include "app/ground/Owned.h"
#include "res/resource.h"
#include "tools/ZipExtraction.h"

#include <atlconv.h>
#include <pathcch.h>
#include <shellapi.h>
#include <shlobj.h>

namespace {

bool CombinePath(WCHAR (&szPath)[MAX_PATH], PCWSTR pszFolder, PCWSTR pszName)
{
    return SUCCEEDED(PathCchCombine(szPath, ARRAYSIZE(szPath), pszFolder, pszName));
}

} // namespace

CPlatformTools& CPlatformTools::GetInstance()
{
    static CPlatformTools s_instance{};
    return s_instance;
}

bool CPlatformTools::Initialize(PCWSTR pszRootFolderPath)
{
    if (m_bInitialized) {
        return false;
    }
    wcsncpy_s(m_szRootFolderPath, ARRAYSIZE(m_szRootFolderPath), pszRootFolderPath, _TRUNCATE);
    if (!CombinePath(m_szZipFilePath, m_szRootFolderPath, L"platform-tools_kalvo.zip") ||
        !CombinePath(m_szPlatformToolsFolderPath, m_szRootFolderPath, L"platform-tools") ||
        !CombinePath(m_szAdbExePath, m_szPlatformToolsFolderPath, L"adb.exe")) {
        return false;
    }
    m_bInitialized = TRUE;
    return true;
}

bool CPlatformTools::Install()
{
    CreateFolderPath();
    return WriteZipFileResource(LockZipFileResource()) && ExtractZipFile();
}

void CPlatformTools::CreateFolderPath()
{
    const int nResult = SHCreateDirectoryExW(nullptr, m_szPlatformToolsFolderPath, nullptr);
    if (nResult != ERROR_SUCCESS && nResult != ERROR_ALREADY_EXISTS && nResult != ERROR_FILE_EXISTS) {
        ReportWin32Error(L"CPlatformTools::CreateFolderPath() > SHCreateDirectoryEx()", true, nullptr,
                         static_cast<DWORD>(nResult));
    }
}

CPlatformTools::ZIP_RESOURCE CPlatformTools::LockZipFileResource()
{
    const HRSRC hResource = FindResourceW(nullptr, MAKEINTRESOURCEW(IDR_PLATFORM_TOOLS_ZIP), RT_RCDATA);
    if (hResource == nullptr) {
        ReportLastErrorAndExit(L"CPlatformTools::LockZipFileResource() > FindResource()");
    }
    const HGLOBAL hData = LoadResource(nullptr, hResource);
    if (hData == nullptr) {
        ReportLastErrorAndExit(L"CPlatformTools::LockZipFileResource() > LoadResource()");
    }
    const void* pData = LockResource(hData);
    if (pData == nullptr) {
        ReportLastErrorAndExit(L"CPlatformTools::LockZipFileResource() > LockResource()");
    }
    return {pData, SizeofResource(nullptr, hResource)};
}

bool CPlatformTools::WriteZipFileResource(const ZIP_RESOURCE& zip)
{
    const HANDLE hFile =
        CreateFileW(m_szZipFilePath, GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (hFile == INVALID_HANDLE_VALUE) {
        ReportLastError(L"CPlatformTools::WriteZipFileResource() > CreateFile()");
        return false;
    }
    DWORD cbWritten = 0;
    if (!WriteFile(hFile, zip.pData, zip.cbData, &cbWritten, nullptr)) {
        // The handle stays open on purpose, until the process ends.
        return false;
    }
    return CloseHandle(hFile) != FALSE;
}

bool CPlatformTools::ExtractZipFile()
{
    // Narrowed to the thread's ANSI code page, while the archive library reads narrow paths as
    // UTF-8. For plain ASCII paths the two agree.
    const CW2A szZipFilePath(m_szZipFilePath);
    const CW2A szRootFolderPath(m_szRootFolderPath);
    if (szZipFilePath.m_psz == nullptr || szRootFolderPath.m_psz == nullptr) {
        return false;
    }

    mz_zip_archive archive = {};
    if (!mz_zip_reader_init_file(&archive, szZipFilePath, 0)) {
        return false;
    }
    return ExtractAllEntries(&archive, szRootFolderPath) == 0;
}

bool CPlatformTools::Uninstall()
{
    // A running server holds adb.exe open.
    const ADB_EXIT_CODE nKillServer = KillServer();
    const bool bServerStopped = nKillServer == ADB_SUCCESS || nKillServer == KILL_SEVER_NOT_STARTED;
    const bool bFolderDeleted = DeleteFolder();
    const bool bZipFilesDeleted = DeleteZipFiles();
    return bServerStopped && bFolderDeleted && bZipFilesDeleted;
}

bool CPlatformTools::DeleteFolder()
{
    // The shell takes a list of paths, ended by an empty one.
    WCHAR szPaths[ARRAYSIZE(m_szPlatformToolsFolderPath) + 1] = {};
    wcscpy_s(szPaths, m_szPlatformToolsFolderPath);

    SHFILEOPSTRUCTW operation = {};
    operation.wFunc = FO_DELETE;
    operation.pFrom = szPaths;
    operation.fFlags = FOF_SILENT | FOF_NOCONFIRMATION | FOF_NOERRORUI;
    const int nResult = SHFileOperationW(&operation);
    if (nResult != ERROR_SUCCESS && nResult != ERROR_FILE_NOT_FOUND) {
        // One fixed code stands for all of the shell's, on purpose.
        ReportWin32Error(L"CPlatformTools::DeleteFolder() > SHFileOperation()", true, nullptr, ERROR_INVALID_DATA);
    }
    return nResult == ERROR_SUCCESS;
}

bool CPlatformTools::DeleteZipFiles()
{
    // Other builds name their archive platform-tools_ and something else.
    WCHAR szPattern[MAX_PATH];
    if (!CombinePath(szPattern, m_szRootFolderPath, L"platform-tools_*.zip")) {
        return false;
    }
    WIN32_FIND_DATAW found;
    const HANDLE hFind = FindFirstFileW(szPattern, &found);
    if (hFind == INVALID_HANDLE_VALUE) {
        return true;
    }
    const CFindHandle pFind(hFind);
    bool bDeleted = true;
    do {
        WCHAR szPath[MAX_PATH];
        bDeleted = CombinePath(szPath, m_szRootFolderPath, found.cFileName) && DeleteFileW(szPath);
    } while (bDeleted && FindNextFileW(hFind, &found));
    return bDeleted;
}
