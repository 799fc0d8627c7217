// The About box of the first page.

#include "app/ground/AboutBox.h"

#include "app/ground/KalvoApkInstaller.h"
#include "tests/kit/Test.h"

using namespace kit;

namespace {

const HWND hwndPage = reinterpret_cast<HWND>(0x5150);
constexpr UINT nAboutButton = 1039;

std::wstring AboutText(const std::wstring& strVersion)
{
    return L"KALVO Solvane Android Watch Installer\n\nApplication to install APK on Android Device\n\nVersion: " +
           strVersion;
}

class AboutBox : public Test
{
protected:
    AboutBox()
    {
        CKalvoApkInstaller::GetInstance() = {};
        WCHAR szSelf[MAX_PATH];
        GetModuleFileNameW(nullptr, szSelf, MAX_PATH);
        m_strSelf = szSelf;
        wcscpy_s(CKalvoApkInstaller::GetInstance().m_szFullPath, szSelf);
    }

    std::wstring m_strSelf;
};

TEST_F(AboutBox, TellsTitlePurposeAndVersionOnThePage)
{
    ShowAboutBox(hwndPage, nAboutButton, 0, BN_CLICKED);
    ExpectBox(hwndPage, AboutText(L"1.4.0"), L"About");
}

TEST_F(AboutBox, DoesNotLookAtTheWholeParameter)
{
    ShowAboutBox(hwndPage, nAboutButton, 0xDEADBEEF, BN_CLICKED);
    ExpectBox(hwndPage, AboutText(L"1.4.0"), L"About");
}

TEST_F(AboutBox, ReadsTheVersionOfTheRunningExecutable)
{
    const REPLACED(GetFileVersionInfoSizeExW) size([](DWORD, PCWSTR, DWORD* pdwHandle) {
        *pdwHandle = 0x77;
        return DWORD(300);
    });
    const REPLACED(GetFileVersionInfoExW) read(Returns(FALSE)); // not looked at
    static VS_FIXEDFILEINFO s_info;
    s_info.dwFileVersionMS = 0xFFFF0002;
    s_info.dwFileVersionLS = 0x00030004;
    const REPLACED(VerQueryValueW) query([](const void*, PCWSTR, void** ppInfo, UINT* pcbInfo) {
        *ppInfo = &s_info;
        *pcbInfo = sizeof(s_info);
        return TRUE;
    });
    REPLACED(GetModuleFileNameW) moduleFileName;
    moduleFileName.Optional();

    ShowAboutBox(hwndPage, nAboutButton, 0, BN_CLICKED);

    ExpectBox(hwndPage, AboutText(L"65535.2.3"), L"About");
    EXPECT_EQ(size.Arg<0>(), 0u);
    EXPECT_EQ(size.Arg<1>(), m_strSelf);
    EXPECT_EQ(read.Arg<0>(), 0u);
    EXPECT_EQ(read.Arg<1>(), m_strSelf);
    EXPECT_EQ(read.Arg<2>(), 0x77u);
    EXPECT_EQ(read.Arg<3>(), 300u);
    EXPECT_EQ(query.Arg<0>(), read.Arg<4>());
    EXPECT_EQ(query.Arg<1>(), L"\\");
    EXPECT_EQ(moduleFileName.Calls(), 0u);
}

TEST_F(AboutBox, AsksForTheExecutableWhereStartUpLeftNoPath)
{
    CKalvoApkInstaller::GetInstance() = {};
    const REPLACED(GetModuleFileNameW) moduleFileName;
    const REPLACED(GetFileVersionInfoSizeExW) size;
    ShowAboutBox(hwndPage, nAboutButton, 0, BN_CLICKED);
    ExpectBox(hwndPage, AboutText(L"1.4.0"), L"About");
    EXPECT_EQ(moduleFileName.Arg<0>(), nullptr);
    EXPECT_EQ(moduleFileName.Arg<2>(), 260u);
    EXPECT_EQ(size.Arg<1>(), m_strSelf);
}

TEST_F(AboutBox, ShowsNoVersionWithoutAnyPath)
{
    CKalvoApkInstaller::GetInstance() = {};
    const REPLACED(GetModuleFileNameW) moduleFileName(Returns(DWORD(0)));
    ShowAboutBox(hwndPage, nAboutButton, 0, BN_CLICKED);
    ExpectBox(hwndPage, AboutText(L""), L"About");
}

TEST_F(AboutBox, ShowsNoVersionWithoutAVersionResource)
{
    const REPLACED(GetFileVersionInfoSizeExW) size(Returns(DWORD(0)));
    REPLACED(GetFileVersionInfoExW) read;
    read.Optional();
    ShowAboutBox(hwndPage, nAboutButton, 0, BN_CLICKED);
    ExpectBox(hwndPage, AboutText(L""), L"About");
    EXPECT_EQ(read.Calls(), 0u);
}

TEST_F(AboutBox, ShowsNoVersionWithoutFixedFileInformation)
{
    const REPLACED(VerQueryValueW) query(Returns(FALSE));
    ShowAboutBox(hwndPage, nAboutButton, 0, BN_CLICKED);
    ExpectBox(hwndPage, AboutText(L""), L"About");
}

TEST_F(AboutBox, ShowsNoVersionWhereTheFixedFileInformationIsEmpty)
{
    const REPLACED(VerQueryValueW) query([](auto, auto, void** ppInfo, auto) {
        *ppInfo = nullptr;
        return TRUE;
    });
    ShowAboutBox(hwndPage, nAboutButton, 0, BN_CLICKED);
    ExpectBox(hwndPage, AboutText(L""), L"About");
}

TEST_F(AboutBox, AnswersNoOtherCommand)
{
    REPLACED(GetFileVersionInfoSizeExW) size;
    size.Optional();
    for (const UINT nControl : {0u, 1u, 2u, 1038u, 1040u}) {
        ShowAboutBox(hwndPage, nControl, 0, BN_CLICKED);
    }
    for (const UINT nNotification : {1u, 5u, 6u, 7u}) {
        ShowAboutBox(hwndPage, nAboutButton, 0, nNotification);
    }
    EXPECT_EQ(size.Calls(), 0u);
    EXPECT_EQ(Journal(), Lines());
}

} // namespace
