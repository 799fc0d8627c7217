// The first page.

#include "wizard/WelcomePage.h"

#include "tests/unit/wizard/PageWindow.h"

using namespace kit;

namespace {

constexpr Buttons kNextAndCancel = {0x12, 0x13};

constexpr PCWSTR kAbout =
    L"KALVO Solvane Android Watch Installer\n\nApplication to install APK on Android Device\n\nVersion: 1.4.0";

class WelcomePage : public Test
{
protected:
    CWizardData m_data;
    PageWindow m_page{214, CWelcomePage::DialogProc, m_data};
};

TEST_F(WelcomePage, LoadsItsTextAndKeepsTheData)
{
    EXPECT_EQ(m_page.InitResult(), TRUE);
    EXPECT_EQ(GetWindowLongPtrW(m_page.Window(), GWLP_USERDATA), reinterpret_cast<LONG_PTR>(&m_data));
    const std::wstring strBody = m_page.Text(1028);
    EXPECT_TRUE(strBody.starts_with(
        L"This application will install the Solvane Android watch client on to a Samsung Galaxy Watch.\n\n"));
    EXPECT_TRUE(strBody.ends_with(L"use the Space Bar to check / uncheck checkboxes."));
}

TEST_F(WelcomePage, ShowsNextAndCancelButNeverBack)
{
    EXPECT_EQ(m_page.TakeButtons(), ButtonsList{kNextAndCancel});
    EXPECT_EQ(m_page.Notify(PSN_SETACTIVE), 0);
    EXPECT_EQ(m_page.TakeButtons(), ButtonsList{kNextAndCancel});
    EXPECT_EQ(m_page.Notify(IPN_FIELDCHANGED), 0);
    EXPECT_EQ(m_page.TakeButtons(), ButtonsList{kNextAndCancel});
}

TEST_F(WelcomePage, MovesTheFocusOnOnceItIsShown)
{
    EXPECT_TRUE(m_page.MessagesToPage(WM_NEXTDLGCTL).empty());
    m_page.Pump();
    const std::vector<MSG> moves = m_page.MessagesToPage(WM_NEXTDLGCTL);
    ASSERT_EQ(moves.size(), 1u);
    EXPECT_EQ(moves[0].wParam, 0u);
    EXPECT_EQ(moves[0].lParam, 0);
}

TEST_F(WelcomePage, ShowsTheAboutBoxWhenItsButtonIsPressed)
{
    m_page.Click(1039);
    ExpectBox(m_page.Window(), kAbout, L"About");
}

TEST_F(WelcomePage, AnswersTheAboutButton)
{
    EXPECT_EQ(m_page.Command(1039, BN_CLICKED), 0);
    ExpectBox(m_page.Window(), kAbout, L"About");
}

TEST_F(WelcomePage, AnswersAnyOtherCommandWithoutABox)
{
    m_page.TakeButtons();
    EXPECT_EQ(m_page.Command(1039, BN_DOUBLECLICKED), 0);
    EXPECT_EQ(m_page.Command(1039, BN_SETFOCUS), 0);
    EXPECT_EQ(m_page.Command(1028, BN_CLICKED), 0);
    EXPECT_EQ(m_page.Command(IDOK, BN_CLICKED), 0);
    EXPECT_EQ(m_page.TakeButtons(), ButtonsList{});
}

TEST_F(WelcomePage, AnswersAnyOtherNotificationWithoutTouchingTheButtons)
{
    m_page.TakeButtons();
    for (const UINT nCode : {PSN_WIZNEXT, PSN_WIZBACK, PSN_WIZFINISH, PSN_QUERYCANCEL, PSN_KILLACTIVE, PSN_RESET,
                             PSN_APPLY, PSN_HELP, NM_CLICK}) {
        EXPECT_EQ(m_page.Notify(nCode), 0);
    }
    EXPECT_EQ(m_page.TakeButtons(), ButtonsList{});
}

TEST_F(WelcomePage, LeavesAnyOtherMessageToTheSystem)
{
    for (const UINT nMessage : {WM_CLOSE, WM_TIMER, WM_SIZE, WM_SHOWWINDOW, WM_NEXTDLGCTL, WM_USER, WM_DESTROY}) {
        EXPECT_EQ(m_page.Send(nMessage), FALSE);
    }
}

class WelcomePageWithoutTexts : public Test
{
};

TEST_F(WelcomePageWithoutTexts, KeepsThatOfTheTemplate)
{
    CWizardData data;
    const REPLACED(LoadStringW) load(Returns(0));
    const PageWindow page(214, CWelcomePage::DialogProc, data);
    EXPECT_EQ(page.Text(1028), L"Static");
    EXPECT_EQ(load.Arg<1>(), 218u);
}

} // namespace
