// The wizard's frame: the way through the pages, the buttons, the keyboard.
#include "tests/Wizard.h"

#include <algorithm>

namespace {

bool IsDefault(HWND hwnd)
{
    return (GetWindowLongPtrW(hwnd, GWL_STYLE) & BS_TYPEMASK) == BS_DEFPUSHBUTTON;
}

RECT RectOf(HWND hwnd)
{
    RECT rect = {};
    GetWindowRect(hwnd, &rect);
    return rect;
}

// Whether anything black is on the screen in the middle of that window, from left to right.
bool ShowsBlack(HWND hwnd)
{
    const RECT rect = RectOf(hwnd);
    const HDC hdc = GetDC(nullptr);
    bool bBlack = false;
    for (LONG x = rect.left; x < rect.right && !bBlack; ++x) {
        bBlack = GetPixel(hdc, x, (rect.top + rect.bottom) / 2) == RGB(0, 0, 0);
    }
    ReleaseDC(nullptr, hdc);
    return bBlack;
}

} // namespace

TEST_F(Wizard, PagesAreMadeWhenFirstShownAndKept)
{
    EXPECT_EQ(Run({IDD_TEXT, IDD_BOX, IDD_TEXT},
                  {Click(kNextButtonId), Click(kBackButtonId), Click(kNextButtonId), Click(IDCANCEL)}),
              0);
    EXPECT_EQ(m_journal, (Lines{"1 init", "1 active", "1 next", "1 kill", "2 init", "2 active", "2 back", "2 kill",
                                "1 active", "1 next", "1 kill", "2 active", "2 querycancel"}));
}

TEST_F(Wizard, FinishGivesOne)
{
    EXPECT_EQ(Run({IDD_TEXT, IDD_BOX}, {Click(kNextButtonId), Click(kFinishButtonId)}), 1);
    EXPECT_EQ(m_journal, (Lines{"1 init", "1 active", "1 next", "1 kill", "2 init", "2 active", "2 finish"}));
}

TEST_F(Wizard, APageCanRefuseEachButton)
{
    struct
    {
        UINT nCode;
        int nButton;
        const char* pszTold;
    } const kRefusals[] = {
        {PSN_WIZBACK, PSBTN_BACK, "2 back"},
        {PSN_WIZNEXT, PSBTN_NEXT, "2 next"},
        {PSN_KILLACTIVE, PSBTN_NEXT, "2 kill"},
        {PSN_WIZFINISH, PSBTN_FINISH, "2 finish"},
        {PSN_QUERYCANCEL, PSBTN_CANCEL, "2 querycancel"},
    };
    Steps steps = {Click(kNextButtonId)};
    for (const auto& refusal : kRefusals) {
        steps.push_back([&] {
            m_answers.clear();
            m_answers[{2, refusal.nCode}] = 1;
        });
        steps.push_back(PressByMessage(refusal.nButton));
        steps.push_back([&] { EXPECT_EQ(m_journal.back(), refusal.pszTold); });
        steps.push_back(ExpectPage(2));
    }
    steps.push_back([&] { m_answers.clear(); });
    // Not to be seen on this page.
    steps.push_back(PressByMessage(PSBTN_FINISH));
    EXPECT_EQ(Run({IDD_TEXT, IDD_BOX, IDD_TEXT}, steps), 1);
}

TEST_F(Wizard, APageIsShownByItsNumberIfThereIsOne)
{
    const auto choose = [this](WPARAM nPage, bool bShown) {
        return [=, this] { EXPECT_EQ(SendMessageW(Frame(), PSM_SETCURSEL, nPage, 0), bShown); };
    };
    EXPECT_EQ(Run({IDD_TEXT, IDD_BOX, IDD_FIELDS},
                  {choose(2, true), ExpectPage(3), PressByMessage(PSBTN_NEXT), choose(7, false), ExpectPage(3),
                   choose(0, true), PressByMessage(PSBTN_BACK), ExpectPage(1), Click(IDCANCEL)}),
              0);
}

TEST_F(Wizard, TheCloseBoxAndItsKeyCancelWhereCancelIsHidden)
{
    const auto clickOnBox = [this] {
        RECT rect = {};
        GetClientRect(Frame(), &rect);
        SendMessageW(Frame(), WM_LBUTTONUP, 0, MAKELPARAM(rect.right - 5, 5));
    };
    for (const auto& [pszHow, close] : {std::pair("box", Step(clickOnBox)), std::pair("key", PressWithAlt(VK_F4))}) {
        SCOPED_TRACE(pszHow);
        EXPECT_EQ(Run({IDD_BOX}, {ShowButtons(0, PSWIZB_CANCEL), close}), 0);
        EXPECT_EQ(m_journal, (Lines{"1 init", "1 active", "1 querycancel"}));
    }
}

TEST_F(Wizard, WhatCannotBeMadeFails)
{
    EXPECT_EQ(Run({IDD_TEXT, 999}, {}), -1) << "no such template";
    EXPECT_EQ(Run({IDD_ODD, IDD_TEXT}, {}), -1);
    EXPECT_EQ(Run({IDD_TEXT, IDD_ODD}, {Click(kNextButtonId)}), -1);
}

TEST_F(Wizard, APageIsAsLargeAsItsTemplateAsks)
{
    const auto expectSize = [this] {
        RECT asked = {0, 0, 200, 100};
        EXPECT_TRUE(MapDialogRect(CurrentPage(), &asked));
        RECT page = {};
        GetClientRect(CurrentPage(), &page);
        EXPECT_EQ(page.right, asked.right);
        EXPECT_EQ(page.bottom, asked.bottom);
    };
    EXPECT_EQ(Run({IDD_TEXT}, {expectSize, Click(IDCANCEL)}), 0);
}

TEST_F(Wizard, ANewTextIsSeenBeforeTheHandlerThatSetItReturns)
{
    const auto setText = [this](PCWSTR pszText) { SetDlgItemTextW(CurrentPage(), IDC_TEXT, pszText); };
    EXPECT_EQ(Run({IDD_TEXT}, {[=] { setText(L""); },
                               [=, this] {
                                   EXPECT_FALSE(ShowsBlack(Window(IDC_TEXT)));
                                   setText(L"HHHHHHHH");
                                   EXPECT_TRUE(ShowsBlack(Window(IDC_TEXT)));
                               },
                               Click(IDCANCEL)}),
              0);
}

TEST_F(Wizard, ButtonsStandSideBySideAtTheRight)
{
    const auto rectOf = [this](int nId) { return RectOf(Window(nId)); };
    RECT next = {};
    RECT cancel = {};
    EXPECT_EQ(Run({IDD_BOX, IDD_BOX}, {[&] {
                                           next = rectOf(kNextButtonId);
                                           cancel = rectOf(IDCANCEL);
                                           EXPECT_LT(next.right, cancel.left);
                                           EXPECT_LT(cancel.right, RectOf(Frame()).right);
                                       },
                                       ShowButtons(0, PSWIZB_CANCEL),
                                       [&] { EXPECT_EQ(rectOf(kNextButtonId).left, cancel.left) << "no gap is left"; },
                                       ShowButtons(PSWIZB_CANCEL, PSWIZB_CANCEL),
                                       [&] {
                                           EXPECT_EQ(rectOf(kNextButtonId).left, next.left);
                                           EXPECT_EQ(rectOf(IDCANCEL).left, cancel.left);
                                       },
                                       Click(IDCANCEL)}),
              0);
}

TEST_F(Wizard, OnlyTheButtonsInTheMaskAreShownOrHidden)
{
    EXPECT_EQ(
        Run({IDD_TEXT, IDD_TEXT},
            {ExpectButtons("Back Next Cancel"), ShowButtons(PSWIZB_CANCEL, PSWIZB_BACK | PSWIZB_NEXT | PSWIZB_CANCEL),
             ExpectButtons("Cancel"), ShowButtons(PSWIZB_NEXT, PSWIZB_NEXT), ExpectButtons("Next Cancel"),
             ShowButtons(kAllButtons, PSWIZB_BACK), ExpectButtons("Back Next Cancel"), ShowButtons(0, kAllButtons),
             ExpectButtons(""), ShowButtons(kAllButtons, kAllButtons), ExpectButtons("Back Next Finish Cancel"),
             Click(kNextButtonId), ExpectButtons("Back Finish Cancel"), Click(IDCANCEL)}),
        0);
}

TEST_F(Wizard, ButtonsThatAPagePostsWhileItIsActivatedDoNotFlashBy)
{
    std::string during;
    m_onActivation = [&](int nPage, HWND hwndPage) {
        if (nPage == 2) {
            during = VisibleButtons();
            PostMessageW(GetParent(hwndPage), PSM_SHOWWIZBUTTONS, PSWIZB_BACK | PSWIZB_FINISH, kAllButtons);
        }
    };
    EXPECT_EQ(Run({IDD_TEXT, IDD_TEXT},
                  {ShowButtons(PSWIZB_NEXT, kAllButtons), Click(kNextButtonId), ExpectButtons("Back Finish"),
                   Click(kBackButtonId), ExpectButtons("Back Next Cancel"), Click(IDCANCEL)}),
              0);
    EXPECT_EQ(during, "Next") << "nothing changes before the page has said what it wants";
}

TEST_F(Wizard, TheDefaultButtonIsThePushButtonWithTheFocusElseNextElseFinish)
{
    const auto expectDefault = [this](int nExpected) {
        return [=, this] {
            for (const int nId : {kNextButtonId, kFinishButtonId, IDCANCEL, IDC_BUTTON}) {
                EXPECT_EQ(IsDefault(Window(nId)), nId == nExpected) << nId;
            }
        };
    };
    EXPECT_EQ(Run({IDD_FIELDS, IDD_FIELDS},
                  {expectDefault(kNextButtonId), FocusOn(IDC_BUTTON), expectDefault(IDC_BUTTON), FocusOn(kBackButtonId),
                   expectDefault(0), FocusOn(IDC_EDIT), expectDefault(kNextButtonId), Click(kNextButtonId),
                   expectDefault(kFinishButtonId), Click(IDCANCEL)}),
              0);
}

TEST_F(Wizard, ThePagesFirstTabStopGetsTheFocusElseTheDefaultButton)
{
    EXPECT_EQ(Run({IDD_TEXT, IDD_BOX, IDD_FIELDS, IDD_TEXT},
                  {ExpectFocus(kNextButtonId), Click(kNextButtonId), ExpectFocus(IDC_BOX), Click(kNextButtonId),
                   ExpectFocus(IDC_EDIT), Click(kBackButtonId), ExpectFocus(IDC_BOX), Click(kNextButtonId),
                   Click(kNextButtonId), ExpectFocus(kFinishButtonId), Click(IDCANCEL)}),
              0);
}

TEST_F(Wizard, ADefaultButtonThatThePageShowsLaterGetsTheFocus)
{
    m_onActivation = [](int nPage, HWND hwndPage) {
        PostMessageW(GetParent(hwndPage), PSM_SHOWWIZBUTTONS, nPage == 1 ? 0 : PSWIZB_NEXT, PSWIZB_NEXT);
    };
    EXPECT_EQ(
        Run({IDD_BOX, IDD_TEXT, IDD_BOX}, {PressByMessage(PSBTN_NEXT), ExpectFocus(kNextButtonId), Click(IDCANCEL)}),
        0);
}

TEST_F(Wizard, APageThatPlacesTheFocusKeepsItOnce)
{
    m_onInitDialog = [](int, HWND hwndPage) {
        SetFocus(GetDlgItem(hwndPage, IDC_BOX));
        return FALSE;
    };
    EXPECT_EQ(Run({IDD_FIELDS, IDD_FIELDS}, {ExpectFocus(IDC_BOX), Click(kNextButtonId), ExpectFocus(IDC_BOX),
                                             Click(kBackButtonId), ExpectFocus(IDC_EDIT), Click(IDCANCEL)}),
              0);
}

TEST_F(Wizard, APageThatAsksForTheNextControlIsLeftForGood)
{
    m_onInitDialog = [](int nPage, HWND hwndPage) {
        if (nPage == 1) {
            PostMessageW(hwndPage, WM_NEXTDLGCTL, 0, 0);
            PostMessageW(GetParent(hwndPage), PSM_SHOWWIZBUTTONS, PSWIZB_NEXT | PSWIZB_CANCEL,
                         PSWIZB_BACK | PSWIZB_NEXT | PSWIZB_CANCEL);
        }
        return TRUE;
    };
    EXPECT_EQ(Run({IDD_BUTTON, IDD_BOX}, {ExpectFocus(kNextButtonId), Click(kNextButtonId), ExpectFocus(IDC_BOX),
                                          Click(kBackButtonId), ExpectFocus(kNextButtonId), Click(IDCANCEL)}),
              0);
}

TEST_F(Wizard, TheFocusLeavesAButtonThatGetsHidden)
{
    EXPECT_EQ(Run({IDD_BOX, IDD_BOX}, {FocusOn(kNextButtonId), ShowButtons(0, PSWIZB_NEXT), ExpectFocus(IDC_BOX),
                                       FocusOn(IDCANCEL), ShowButtons(PSWIZB_NEXT, PSWIZB_NEXT | PSWIZB_CANCEL),
                                       ExpectFocus(kNextButtonId), PressByMessage(PSBTN_CANCEL)}),
              0);
}

TEST_F(Wizard, EnterPressesTheDefaultButton)
{
    EXPECT_EQ(Run({IDD_BOX, IDD_FIELDS}, {Press(VK_RETURN), ExpectPage(2), ExpectFocus(IDC_EDIT), Press(VK_RETURN)}),
              1);
}

TEST_F(Wizard, EnterPressesTheButtonThatHasTheFocus)
{
    EXPECT_EQ(Run({IDD_BOX, IDD_FIELDS},
                  {Click(kNextButtonId), FocusOn(IDC_BUTTON), Press(VK_RETURN), ExpectPage(2), FocusOn(kBackButtonId),
                   Press(VK_RETURN), ExpectPage(1), FocusOn(IDCANCEL), Press(VK_RETURN)}),
              0);
    EXPECT_EQ(std::ranges::count(m_journal, "2 click"), 1);
}

TEST_F(Wizard, KeysOfHiddenButtonsDoNothing)
{
    EXPECT_EQ(
        Run({IDD_BOX, IDD_BOX}, {Click(kNextButtonId), ShowButtons(0, kAllButtons), Press(VK_RETURN), Press(VK_ESCAPE),
                                 PressWithAlt(VK_LEFT), ExpectPage(2), ShowButtons(kAllButtons, kAllButtons),
                                 PressWithAlt(VK_LEFT), ExpectPage(1), Press(VK_ESCAPE)}),
        0);
    EXPECT_EQ(m_journal, (Lines{"1 init", "1 active", "1 next", "1 kill", "2 init", "2 active", "2 back", "2 kill",
                                "1 active", "1 querycancel"}));
}

TEST_F(Wizard, TabWalksThroughPageAndFrameAndBeginsAnew)
{
    const int kOrder[] = {IDC_BUTTON, IDC_BOX, kNextButtonId, IDCANCEL, kBackButtonId, IDC_EDIT};
    Steps steps = {Click(kNextButtonId), [this] { SetDlgItemTextW(CurrentPage(), IDC_EDIT, L"12345"); }};
    for (const int nId : kOrder) {
        steps.push_back(Press(VK_TAB));
        steps.push_back(ExpectFocus(nId));
    }
    steps.push_back([this] {
        EXPECT_EQ(SendMessageW(Window(IDC_EDIT), EM_GETSEL, 0, 0), MAKELRESULT(0, 5)) << "the text gets selected";
    });
    for (const int nId : {kBackButtonId, IDCANCEL, kNextButtonId, IDC_BOX, IDC_BUTTON, IDC_EDIT}) {
        steps.push_back(PressWithShift(VK_TAB));
        steps.push_back(ExpectFocus(nId));
    }
    steps.push_back(Click(IDCANCEL));
    EXPECT_EQ(Run({IDD_TEXT, IDD_FIELDS, IDD_TEXT}, steps), 0);
}
