#include "app/ground/AboutBox.h"

#include "app/ground/KalvoApkInstaller.h"
#include "res/resource.h"

#include <vector>

namespace {

CStringW GetExecutablePath()
{
    CStringW szPath(CKalvoApkInstaller::GetInstance().m_szFullPath);
    if (!szPath.IsEmpty()) {
        return szPath;
    }
    WCHAR szModule[MAX_PATH] = {};
    GetModuleFileNameW(nullptr, szModule, ARRAYSIZE(szModule));
    return szModule;
}

// The first three parts of the executable's file version, or an empty text where none can be read.
CStringW GetFileVersion()
{
    const CStringW szPath = GetExecutablePath();
    DWORD dwHandle = 0;
    std::vector<BYTE> data(GetFileVersionInfoSizeExW(0, szPath, &dwHandle));
    if (data.empty()) {
        return {};
    }
    GetFileVersionInfoExW(0, szPath, dwHandle, static_cast<DWORD>(data.size()), data.data());

    VS_FIXEDFILEINFO* pInfo = nullptr;
    UINT cbInfo = 0;
    if (!VerQueryValueW(data.data(), L"\\", reinterpret_cast<void**>(&pInfo), &cbInfo) || pInfo == nullptr) {
        return {};
    }
    CStringW szVersion;
    szVersion.Format(L"%hu.%hu.%hu", HIWORD(pInfo->dwFileVersionMS), LOWORD(pInfo->dwFileVersionMS),
                     HIWORD(pInfo->dwFileVersionLS));
    return szVersion;
}

} // namespace

void ShowAboutBox(HWND hwndPage, UINT nControlId, WPARAM /*wParam*/, UINT nNotification)
{
    if (nControlId != IDC_ABOUT || nNotification != BN_CLICKED) {
        return;
    }
    const CStringW szVersion = GetFileVersion();
    CStringW szTitle;
    szTitle.LoadStringW(IDS_APPLICATION_TITLE);
    CStringW szText;
    szText.Format(L"%s\n\nApplication to install APK on Android Device\n\nVersion: %s", szTitle.GetString(),
                  szVersion.GetString());
    MessageBoxW(hwndPage, szText, L"About", MB_OK);
}
