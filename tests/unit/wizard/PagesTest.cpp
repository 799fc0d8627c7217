// What all pages do alike, and what those do that neither probe nor run adb.

#include "tests/unit/wizard/PageTest.h"

#include <algorithm>

using namespace kit;

namespace {

constexpr int kAbout = 1039;

// Without this control of the page that finds the watch nothing looks for a gateway.
constexpr int kWatchAddress = 1018;

std::wstring StringOf(UINT nStringId)
{
    WCHAR szText[2048] = {};
    LoadStringW(GetModuleHandleW(nullptr), nStringId, szText, 2048);
    return szText;
}

class EveryPage : public PageTest, public testing::WithParamInterface<Page>
{
protected:
    EveryPage() : PageTest(GetParam()) {}

    // The page, shown for the first time.
    PageWindow& Shown()
    {
        Open({kWatchAddress}).TakeButtons();
        return *m_page;
    }
};

TEST_P(EveryPage, LoadsItsTextsAndKeepsTheData)
{
    const PageWindow& page = Open({kWatchAddress});
    EXPECT_EQ(page.InitResult(), TRUE);
    EXPECT_EQ(GetWindowLongPtrW(page.Window(), GWLP_USERDATA), reinterpret_cast<LONG_PTR>(&m_data));
    for (const LoadedText& text : {m_row.body, m_row.check}) {
        EXPECT_EQ(page.Text(text.nControlId), StringOf(text.nStringId));
    }
    EXPECT_EQ(Journal(), Lines{}) << "the status line is as in the template";
}

TEST_P(EveryPage, KeepsTheTextsOfTheTemplateWhenNoneCanBeLoaded)
{
    const REPLACED(LoadStringW) load(Returns(0, ERROR_RESOURCE_NAME_NOT_FOUND));
    PageWindow& page = Open({kWatchAddress});
    EXPECT_EQ(page.Text(m_row.body.nControlId), L"Static");
    EXPECT_EQ(page.Text(m_row.check.nControlId), m_row.check.nControlId != 0 ? L"Check1" : L"");
    EXPECT_EQ(load.Calls(), m_row.check.nControlId != 0 ? 2u : 1u);
    EXPECT_EQ(load.Arg<1>(), m_row.body.nStringId);
    EXPECT_EQ(page.LastButtons(), m_row.first);
}

TEST_P(EveryPage, ShowsItsButtonsAtFirstAndWhenTheUserComesBack)
{
    PageWindow& page = Open({kWatchAddress});
    // Pages that empty fields of theirs show them with each.
    const ButtonsList shown = page.TakeButtons();
    const size_t nTimes = m_row.heard.contains(PSN_WIZNEXT) ? std::max<size_t>(shown.size(), 1) : 1;
    EXPECT_EQ(shown, ButtonsList(nTimes, m_row.first));
    EXPECT_EQ(page.Notify(PSN_SETACTIVE), 0);
    EXPECT_EQ(page.TakeButtons(), ButtonsList{m_row.first});
    EXPECT_EQ(page.Notify(IPN_FIELDCHANGED), 0);
    EXPECT_EQ(page.TakeButtons(), m_row.heard.contains(IPN_FIELDCHANGED) ? ButtonsList{m_row.first} : ButtonsList{});
}

TEST_P(EveryPage, AnswersAnyOtherNotificationWithoutDoingAnything)
{
    PageWindow& page = Shown();
    for (const UINT nCode : {PSN_WIZNEXT, PSN_WIZBACK, PSN_WIZFINISH, PSN_QUERYCANCEL, PSN_KILLACTIVE, PSN_RESET,
                             PSN_APPLY, PSN_HELP, NM_CLICK}) {
        if (!m_row.heard.contains(nCode)) {
            EXPECT_EQ(page.Notify(nCode), 0) << nCode;
        }
    }
    EXPECT_EQ(page.TakeButtons(), ButtonsList{});
    EXPECT_EQ(Journal(), Lines{});
}

TEST_P(EveryPage, AnswersACommandOfAnyOtherControlWithoutDoingAnything)
{
    PageWindow& page = Shown();
    for (const int nControlId : {m_row.body.nControlId, IDOK, IDCANCEL, kAbout}) {
        if (page.Control(kAbout) == nullptr || nControlId != kAbout) {
            EXPECT_EQ(page.Command(nControlId, BN_CLICKED), 0) << nControlId;
        }
    }
    EXPECT_EQ(page.TakeButtons(), ButtonsList{});
    EXPECT_EQ(Journal(), Lines{});
}

TEST_P(EveryPage, LeavesAnyOtherMessageToTheSystem)
{
    PageWindow& page = Shown();
    for (const UINT nMessage :
         {WM_CLOSE, WM_TIMER, WM_SIZE, WM_SHOWWINDOW, WM_SYSCOMMAND, WM_NEXTDLGCTL, WM_USER, WM_DESTROY}) {
        EXPECT_EQ(page.Send(nMessage), FALSE) << nMessage;
    }
    EXPECT_EQ(page.TakeButtons(), ButtonsList{});
}

INSTANTIATE_TEST_SUITE_P(, EveryPage, testing::ValuesIn(kPages), kByName);

class WelcomePage : public PageTest
{
protected:
    WelcomePage() : PageTest(kWelcomePage) {}
};

TEST_F(WelcomePage, MovesTheFocusOnOnceItIsShown)
{
    PageWindow& page = Open();
    EXPECT_TRUE(page.MessagesTo(0, {WM_NEXTDLGCTL}).empty());
    page.Pump();
    const std::vector<ControlMessage> moves = page.MessagesTo(0, {WM_NEXTDLGCTL});
    ASSERT_EQ(moves.size(), 1u);
    EXPECT_EQ(moves[0].wParam, 0u);
    EXPECT_EQ(moves[0].lParam, 0);
}

TEST_F(WelcomePage, ShowsTheAboutBoxWhenItsButtonIsPressed)
{
    PageWindow& page = Open();
    page.Click(kAbout);
    EXPECT_EQ(page.Command(kAbout, BN_CLICKED), 0);
    for ([[maybe_unused]] const int nTime : {1, 2}) {
        ExpectBox(page.Window(),
                  L"KALVO Solvane Android Watch Installer\n\nApplication to install APK on Android Device\n\n"
                  L"Version: 1.4.0",
                  L"About");
    }
}

// A page that only tells the user what to do on the watch.
class InstructionPage : public EveryPage
{
};

TEST_P(InstructionPage, LoadsTheTextOfItsBoxAlsoWhenThatOfItsBodyIsMissing)
{
    const std::wstring strCheck = StringOf(m_row.check.nStringId);
    const REPLACED(LoadStringW) load(InTurn(Returns(0), PassOn()));
    const PageWindow& page = Open();
    EXPECT_EQ(page.Text(m_row.body.nControlId), L"Static");
    EXPECT_EQ(page.Text(m_row.check.nControlId), strCheck);
}

TEST_P(InstructionPage, DoesWithoutItsControls)
{
    PageWindow& page = Open({m_row.body.nControlId, m_row.check.nControlId});
    EXPECT_EQ(page.InitResult(), TRUE);
    EXPECT_EQ(page.TakeButtons(), ButtonsList{m_row.first});
    EXPECT_EQ(page.Notify(PSN_SETACTIVE), 0);
    EXPECT_EQ(page.TakeButtons(), ButtonsList{m_row.first});
}

TEST_P(InstructionPage, ShowsNextWhileItsBoxIsTicked)
{
    PageWindow& page = Shown();
    for (const Buttons& buttons : {m_row.ticked, m_row.first, m_row.ticked}) {
        page.Click(m_row.check.nControlId);
        EXPECT_EQ(page.TakeButtons(), ButtonsList{buttons});
    }
    EXPECT_EQ(page.Command(m_row.check.nControlId, BN_CLICKED), 0);
    EXPECT_EQ(page.TakeButtons(), ButtonsList{m_row.ticked});
}

TEST_P(InstructionPage, ShowsNextAtOnceWhenTheUserComesBackToATickedBox)
{
    PageWindow& page = Open();
    page.Click(m_row.check.nControlId);
    page.TakeButtons();
    EXPECT_EQ(page.Notify(PSN_KILLACTIVE), 0);
    EXPECT_EQ(page.TakeButtons(), ButtonsList{});
    EXPECT_EQ(page.Notify(PSN_SETACTIVE), 0);
    EXPECT_EQ(page.TakeButtons(), ButtonsList{m_row.ticked});
}

TEST_P(InstructionPage, TakesAHalfTickedBoxForNotTicked)
{
    PageWindow& page = Shown();
    const HWND hwndBox = page.Control(m_row.check.nControlId);
    const LONG nStyle = GetWindowLongW(hwndBox, GWL_STYLE);
    SetWindowLongW(hwndBox, GWL_STYLE, (nStyle & ~BS_TYPEMASK) | BS_AUTO3STATE);
    SendMessageW(hwndBox, BM_SETCHECK, BST_INDETERMINATE, 0);
    ASSERT_EQ(SendMessageW(hwndBox, BM_GETCHECK, 0, 0), BST_INDETERMINATE);
    EXPECT_EQ(page.Notify(PSN_SETACTIVE), 0);
    EXPECT_EQ(page.TakeButtons(), ButtonsList{m_row.first});
}

TEST_P(InstructionPage, MindsNothingButAClickOnItsBox)
{
    PageWindow& page = Shown();
    for (const int nNotification : {BN_DOUBLECLICKED, BN_SETFOCUS, EN_CHANGE}) {
        EXPECT_EQ(page.Command(m_row.check.nControlId, nNotification), 0) << nNotification;
    }
    EXPECT_EQ(page.TakeButtons(), ButtonsList{});
}

TEST_P(InstructionPage, ShowsItsBoxUnlessItIsTheLast)
{
    PageWindow& page = Shown();
    page.Notify(PSN_SETACTIVE);
    const bool bVisible = (GetWindowLongW(page.Control(m_row.check.nControlId), GWL_STYLE) & WS_VISIBLE) != 0;
    EXPECT_EQ(bVisible, m_row.nDialogId != 216);
}

std::vector<Page> InstructionPages()
{
    std::vector<Page> pages;
    std::ranges::copy_if(kPages, std::back_inserter(pages),
                         [](const Page& page) { return page.check.nControlId != 0; });
    return pages;
}

INSTANTIATE_TEST_SUITE_P(, InstructionPage, testing::ValuesIn(InstructionPages()), kByName);

} // namespace
