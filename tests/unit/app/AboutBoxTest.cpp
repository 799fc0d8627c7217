// The About box of the first page.

#include "app/ground/AboutBox.h"

#include "app/ground/KalvoApkInstaller.h"
#include "tests/kit/Test.h"

using namespace kit;

namespace {

const HWND hwndPage = reinterpret_cast<HWND>(0x5150);
constexpr UINT nAboutButton = 1039;

class AboutBox : public Test
{
protected:
    AboutBox()
    {
        WCHAR szSelf[MAX_PATH];
        GetModuleFileNameW(nullptr, szSelf, MAX_PATH);
        m_strSelf = szSelf;
        SetPath(szSelf);
    }

    // What start-up leaves.
    static void SetPath(PCWSTR pszPath)
    {
        wcscpy_s(CKalvoApkInstaller::GetInstance().m_szFullPath, pszPath);
    }

    // A click on the button shows the box with this version.
    void ExpectVersion(const std::wstring& strVersion, WPARAM wParam = 0)
    {
        ShowAboutBox(hwndPage, nAboutButton, wParam, BN_CLICKED);
        ExpectBox(
            hwndPage,
            L"KALVO Solvane Android Watch Installer\n\nApplication to install APK on Android Device\n\nVersion: " +
                strVersion,
            L"About");
    }

    std::wstring m_strSelf;
};

TEST_F(AboutBox, TellsTitlePurposeAndVersionOnThePage)
{
    ExpectVersion(L"1.4.0");
    ExpectVersion(L"1.4.0", 0xDEADBEEF); // the parameter is not looked at
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
    const REPLACED(GetModuleFileNameW) moduleFileName(Never());

    ExpectVersion(L"65535.2.3");

    EXPECT_EQ(size.Arguments(), std::tuple(0u, m_strSelf, kAny));
    EXPECT_EQ(read.Arguments(), std::tuple(0u, m_strSelf, 0x77u, 300u, kAny));
    EXPECT_EQ(query.Arguments(), std::tuple(read.Arg<4>(), L"\\", kAny, kAny));
}

TEST_F(AboutBox, AsksForTheExecutableWhereStartUpLeftNoPath)
{
    SetPath(L"");
    const REPLACED(GetModuleFileNameW) moduleFileName(InTurn(PassOn(), Returns(DWORD(0))));
    const REPLACED(GetFileVersionInfoSizeExW) size;
    ExpectVersion(L"1.4.0");
    EXPECT_EQ(moduleFileName.Arguments(), std::tuple(nullptr, kAny, 260u));
    EXPECT_EQ(size.Arg<1>(), m_strSelf);
    ExpectVersion(L""); // nobody knows it
}

TEST_F(AboutBox, ShowsNoVersionWhereNoneCanBeRead)
{
    {
        const REPLACED(GetFileVersionInfoSizeExW) noResource(Returns(DWORD(0)));
        const REPLACED(GetFileVersionInfoExW) read(Never());
        ExpectVersion(L"");
    }
    {
        const REPLACED(VerQueryValueW) noFixedInformation(Returns(FALSE));
        ExpectVersion(L"");
    }
    const REPLACED(VerQueryValueW) emptyInformation([](auto, auto, void** ppInfo, auto) {
        *ppInfo = nullptr;
        return TRUE;
    });
    ExpectVersion(L"");
}

TEST_F(AboutBox, AnswersNoOtherCommand)
{
    const REPLACED(GetFileVersionInfoSizeExW) size(Never());
    for (const UINT nControl : {0u, 1u, 2u, 1038u, 1040u}) {
        SCOPED_TRACE(nControl);
        ShowAboutBox(hwndPage, nControl, 0, BN_CLICKED);
    }
    for (const UINT nNotification : {1u, 5u, 6u, 7u}) {
        SCOPED_TRACE(nNotification);
        ShowAboutBox(hwndPage, nAboutButton, 0, nNotification);
    }
    EXPECT_EQ(Journal(), Lines());
}

} // namespace
