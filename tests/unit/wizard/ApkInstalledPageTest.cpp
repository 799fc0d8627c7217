// The page between installing and undoing.

#include "wizard/ApkInstalledPage.h"

#include "tests/unit/wizard/PageWindow.h"

using namespace kit;

namespace {

class ApkInstalledPage : public Test
{
protected:
    CWizardData m_data;
    PageWindow m_page{224, CApkInstalledPage::DialogProc, m_data};
};

TEST_F(ApkInstalledPage, LoadsItsTextAndKeepsTheData)
{
    EXPECT_EQ(m_page.InitResult(), TRUE);
    EXPECT_EQ(GetWindowLongPtrW(m_page.Window(), GWLP_USERDATA), reinterpret_cast<LONG_PTR>(&m_data));
    EXPECT_EQ(m_page.Text(1054), L"The Solvane client application is now installed on the watch.\n\n"
                                 L"Click the Next button for instructions how to undo changes made in previous steps.");
}

TEST_F(ApkInstalledPage, AlwaysShowsBackNextAndCancel)
{
    EXPECT_EQ(m_page.TakeButtons(), ButtonsList{kWithNext});
    EXPECT_EQ(m_page.Notify(PSN_SETACTIVE), 0);
    EXPECT_EQ(m_page.TakeButtons(), ButtonsList{kWithNext});
    EXPECT_EQ(m_page.Notify(IPN_FIELDCHANGED), 0);
    EXPECT_EQ(m_page.TakeButtons(), ButtonsList{kWithNext});
}

TEST_F(ApkInstalledPage, AnswersCommandsWithoutDoingAnything)
{
    m_page.TakeButtons();
    EXPECT_EQ(m_page.Command(1054, BN_CLICKED), 0);
    EXPECT_EQ(m_page.Command(1039, BN_CLICKED), 0);
    EXPECT_EQ(m_page.Command(IDOK, BN_CLICKED), 0);
    EXPECT_EQ(m_page.TakeButtons(), ButtonsList{});
}

TEST_F(ApkInstalledPage, AnswersAnyOtherNotificationWithoutTouchingTheButtons)
{
    m_page.TakeButtons();
    for (const UINT nCode : {PSN_WIZNEXT, PSN_WIZBACK, PSN_WIZFINISH, PSN_QUERYCANCEL, PSN_KILLACTIVE, PSN_RESET,
                             PSN_APPLY, PSN_HELP, NM_CLICK}) {
        EXPECT_EQ(m_page.Notify(nCode), 0);
    }
    EXPECT_EQ(m_page.TakeButtons(), ButtonsList{});
}

TEST_F(ApkInstalledPage, LeavesAnyOtherMessageToTheSystem)
{
    for (const UINT nMessage : {WM_CLOSE, WM_TIMER, WM_SIZE, WM_SHOWWINDOW, WM_USER, WM_DESTROY}) {
        EXPECT_EQ(m_page.Send(nMessage), FALSE);
    }
}

class ApkInstalledPageWithoutTexts : public Test
{
};

TEST_F(ApkInstalledPageWithoutTexts, KeepsThatOfTheTemplate)
{
    CWizardData data;
    const REPLACED(LoadStringW) load(Returns(0));
    const PageWindow page(224, CApkInstalledPage::DialogProc, data);
    EXPECT_EQ(page.Text(1054), L"Static");
    EXPECT_EQ(load.Arg<1>(), 241u);
}

} // namespace
