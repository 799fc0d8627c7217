#include "app/ground/KalvoApkInstaller.h"

#include "app/ground/ErrorReport.h"
#include "app/ground/Owned.h"

#include <knownfolders.h>
#include <pathcch.h>
#include <shlobj.h>

#include <cstdlib>

CKalvoApkInstaller& CKalvoApkInstaller::GetInstance()
{
    static CKalvoApkInstaller s_instance{};
    return s_instance;
}

bool CKalvoApkInstaller::Initialize()
{
    if (m_bInitialized) {
        return false;
    }
    DWORD cchFullPath = ARRAYSIZE(m_szFullPath);
    if (!QueryFullProcessImageNameW(GetCurrentProcess(), 0, m_szFullPath, &cchFullPath)) {
        return false;
    }

    WCHAR szDrive[_MAX_DRIVE];
    WCHAR szDirectory[_MAX_DIR];
    WCHAR szFileName[_MAX_FNAME];
    WCHAR szExtension[_MAX_EXT];
    _wsplitpath_s(m_szFullPath, szDrive, ARRAYSIZE(szDrive), szDirectory, ARRAYSIZE(szDirectory), szFileName,
                  ARRAYSIZE(szFileName), szExtension, ARRAYSIZE(szExtension));
    _wmakepath_s(m_szFolderPath, ARRAYSIZE(m_szFolderPath), szDrive, szDirectory, nullptr, nullptr);
    _wmakepath_s(m_szFileName, ARRAYSIZE(m_szFileName), nullptr, nullptr, szFileName, szExtension);

    GetAppDataLocalFolderPath();
    m_bInitialized = TRUE;
    return true;
}

void CKalvoApkInstaller::GetAppDataLocalFolderPath()
{
    PWSTR pszLocalAppData = nullptr;
    HRESULT hr = SHGetKnownFolderPath(FOLDERID_LocalAppData, 0, nullptr, &pszLocalAppData);
    // The platform asks for the path to be freed whether the call succeeded or not.
    const CTaskText pLocalAppData(pszLocalAppData);
    if (FAILED(hr)) {
        ReportComErrorAndExit(hr, L"CKalvoApkInstaller::GetAppDataLocalFolderPath() > SHGetKnownFolderPath()");
    }

    wcsncpy_s(m_szAppDataFolderPath, ARRAYSIZE(m_szAppDataFolderPath), pszLocalAppData, _TRUNCATE);
    hr = PathCchAppend(m_szAppDataFolderPath, ARRAYSIZE(m_szAppDataFolderPath), L"KALVO_ApkInstaller");
    if (FAILED(hr)) {
        ReportComErrorAndExit(hr, L"CKalvoApkInstaller::GetAppDataLocalFolderPath() > PathCchAppend()");
    }
}
