// The frame's settings and the page table.

#include "wizard/Wizard.h"

#include "wizard/ApkInstalledPage.h"
#include "wizard/InstallApkPage.h"
#include "wizard/InstructionPages.h"
#include "wizard/PairDevicePage.h"
#include "wizard/WelcomePage.h"
#include "wizard/WirelessDebuggingOnPage.h"

#include "tests/kit/Test.h"

using namespace kit;

namespace {

const HINSTANCE kInstance = reinterpret_cast<HINSTANCE>(0x1230000);

struct Page
{
    int nDialogId;
    DLGPROC pfnDialogProc;
    int nHeaderTitleId;
};

const Page kPages[] = {
    {214, CWelcomePage::DialogProc, 217},
    {203, CConnectWiFiPage::DialogProc, 219},
    {202, CDeveloperOptionsOnPage::DialogProc, 204},
    {219, CStayAwakeOnPage::DialogProc, 230},
    {204, CWirelessDebuggingOnPage::DialogProc, 222},
    {215, CPairDevicePage::DialogProc, 215},
    {206, CInstallApkPage::DialogProc, 210},
    {224, CApkInstalledPage::DialogProc, 240},
    {221, CStayAwakeOffPage::DialogProc, 236},
    {222, CWirelessDebuggingOffPage::DialogProc, 202},
    {220, CRevokeAuthorizationsPage::DialogProc, 233},
    {217, CDeveloperOptionsOffPage::DialogProc, 224},
    {218, CDisconnectWiFiPage::DialogProc, 227},
    {216, CFinishedPage::DialogProc, 207},
};

class Wizard : public Test
{
protected:
    // Runs the wizard with a frame that only looks at what it gets.
    template<typename Look>
    void Run(Look look)
    {
        const REPLACED(PropertySheetW) frame([&](const PROPSHEETHEADERW* pHeader) -> INT_PTR {
            look(*pHeader);
            return 1;
        });
        RunWizard(kInstance, m_data);
        EXPECT_EQ(frame.Calls(), 1u);
    }

    CWizardData m_data;
};

TEST_F(Wizard, IsAnAeroWizardWithIconAndTitleOfTheApplication)
{
    Run([](const PROPSHEETHEADERW& header) {
        EXPECT_EQ(header.dwSize, 96u);
        EXPECT_EQ(header.dwFlags, 0x4000u | 0x0008u | 0x0004u);
        EXPECT_EQ(header.hwndParent, GetDesktopWindow());
        EXPECT_EQ(header.hInstance, kInstance);
        EXPECT_EQ(header.pszIcon, MAKEINTRESOURCEW(206));
        EXPECT_EQ(header.pszCaption, MAKEINTRESOURCEW(201));
        EXPECT_EQ(header.nPages, 14u);
        EXPECT_EQ(header.nStartPage, 0u);
        EXPECT_EQ(header.pfnCallback, nullptr);
        EXPECT_EQ(header.hbmWatermark, nullptr);
        EXPECT_EQ(header.hplWatermark, nullptr);
        EXPECT_EQ(header.hbmHeader, nullptr);
    });
}

TEST_F(Wizard, HasFourteenPagesInTheirOrder)
{
    static_assert(std::size(kPages) == 14);
    Run([](const PROPSHEETHEADERW& header) {
        for (size_t n = 0; n < std::size(kPages); ++n) {
            const testing::ScopedTrace trace(__FILE__, __LINE__, "page " + std::to_string(n + 1));
            const PROPSHEETPAGEW& page = header.ppsp[n];
            EXPECT_EQ(page.pszTemplate, MAKEINTRESOURCEW(kPages[n].nDialogId));
            EXPECT_EQ(page.pfnDlgProc, kPages[n].pfnDialogProc);
            EXPECT_EQ(page.pszHeaderTitle, MAKEINTRESOURCEW(kPages[n].nHeaderTitleId));
        }
    });
}

TEST_F(Wizard, GivesEveryPageAHeaderTitleAndTheSameData)
{
    Run([this](const PROPSHEETHEADERW& header) {
        for (size_t n = 0; n < 14; ++n) {
            const testing::ScopedTrace trace(__FILE__, __LINE__, "page " + std::to_string(n + 1));
            const PROPSHEETPAGEW& page = header.ppsp[n];
            EXPECT_EQ(page.dwSize, sizeof(PROPSHEETPAGEW));
            EXPECT_EQ(page.dwFlags, 0x1000u);
            EXPECT_EQ(page.hInstance, kInstance);
            EXPECT_EQ(page.lParam, reinterpret_cast<LPARAM>(&m_data));
            EXPECT_EQ(page.pszIcon, nullptr);
            EXPECT_EQ(page.pszTitle, nullptr);
            EXPECT_EQ(page.pfnCallback, nullptr);
            EXPECT_EQ(page.pcRefParent, nullptr);
            EXPECT_EQ(page.pszHeaderSubTitle, nullptr);
            EXPECT_EQ(page.hActCtx, nullptr);
        }
    });
}

TEST_F(Wizard, CallsThePageThatTurnsDebuggingOffLikeTheOneThatTurnsItOn)
{
    Run([](const PROPSHEETHEADERW& header) {
        WCHAR szOn[64] = {};
        WCHAR szOff[64] = {};
        const HMODULE hModule = GetModuleHandleW(nullptr);
        LoadStringW(hModule, LOWORD(reinterpret_cast<ULONG_PTR>(header.ppsp[4].pszHeaderTitle)), szOn, 64);
        LoadStringW(hModule, LOWORD(reinterpret_cast<ULONG_PTR>(header.ppsp[9].pszHeaderTitle)), szOff, 64);
        EXPECT_STREQ(szOn, L"Turn on Wireless debugging");
        EXPECT_STREQ(szOff, L"Turn on Wireless debugging");
        EXPECT_NE(header.ppsp[4].pszHeaderTitle, header.ppsp[9].pszHeaderTitle);
    });
}

TEST_F(Wizard, ReturnsWhatTheFrameReturns)
{
    for (const INT_PTR nResult : {-1, 0, 1, 5}) {
        const REPLACED(PropertySheetW) frame(Returns(nResult));
        EXPECT_EQ(RunWizard(kInstance, m_data), nResult);
    }
}

TEST_F(Wizard, LeavesTheDataToThePages)
{
    Run([](const PROPSHEETHEADERW&) {});
    EXPECT_STREQ(m_data.m_szPairingCode, L"000000");
    EXPECT_EQ(m_data.m_saWatchAddress.ss_family, 0);
}

} // namespace
