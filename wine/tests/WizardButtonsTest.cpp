// The frame's buttons: which are to be seen, where they stand, what pressing them needs.
#include "tests/WizardTest.h"

namespace {

constexpr DWORD kAll = PSWIZB_BACK | PSWIZB_NEXT | PSWIZB_FINISH | PSWIZB_CANCEL;

RECT RectOf(HWND hwnd)
{
    RECT rect = {};
    GetWindowRect(hwnd, &rect);
    return rect;
}

} // namespace

class WizardButtons : public WizardTest
{
protected:
    std::function<void()> Next = [this] { Click(kNextButtonId); };
    std::function<void()> Cancel = [this] { SendMessageW(Frame(), PSM_PRESSBUTTON, PSBTN_CANCEL, 0); };

    std::function<void()> Expect(const char* pszButtons)
    {
        return [this, pszButtons] { EXPECT_EQ(VisibleButtons(), pszButtons); };
    }

    std::function<void()> Show(DWORD dwButtons, DWORD dwMask)
    {
        return [=, this] { ShowButtons(dwButtons, dwMask); };
    }
};

TEST_F(WizardButtons, APageStartsWithAllThatMakesSenseOnIt)
{
    EXPECT_EQ(Run({IDD_TEXT, IDD_TEXT, IDD_TEXT},
                  {Expect("Back Next Cancel"), [this] { EXPECT_FALSE(IsWindowEnabled(Button(kBackButtonId))); }, Next,
                   Expect("Back Next Cancel"), [this] { EXPECT_TRUE(IsWindowEnabled(Button(kBackButtonId))); }, Next,
                   Expect("Back Finish Cancel"), Cancel}),
              0);
}

TEST_F(WizardButtons, OnlyThoseInTheMaskAreShownOrHidden)
{
    EXPECT_EQ(Run({IDD_TEXT, IDD_TEXT}, {Show(PSWIZB_CANCEL, PSWIZB_BACK | PSWIZB_NEXT | PSWIZB_CANCEL),
                                         Expect("Cancel"), Show(PSWIZB_NEXT, PSWIZB_NEXT), Expect("Next Cancel"),
                                         Show(kAll, PSWIZB_BACK), Expect("Back Next Cancel"), Show(0, kAll), Expect(""),
                                         Show(kAll, kAll), Expect("Back Next Finish Cancel"), Cancel}),
              0);
}

TEST_F(WizardButtons, APageHidesAndShowsThemWhileItIsActivated)
{
    m_onNotify = [this](int nPage, HWND hwndPage, UINT nCode) {
        if (nCode == PSN_SETACTIVE && nPage == 2) {
            PostMessageW(GetParent(hwndPage), PSM_SHOWWIZBUTTONS, PSWIZB_BACK | PSWIZB_FINISH,
                         PSWIZB_BACK | PSWIZB_FINISH | PSWIZB_CANCEL);
        }
    };
    EXPECT_EQ(Run({IDD_TEXT, IDD_TEXT},
                  {Next, Expect("Back Finish"), [this] { Click(kBackButtonId); }, Expect("Back Next Cancel"), Cancel}),
              0);
}

TEST_F(WizardButtons, WhatIsPostedDuringActivationDoesNotFlashBy)
{
    std::string during;
    m_onNotify = [&](int nPage, HWND hwndPage, UINT nCode) {
        if (nCode == PSN_SETACTIVE && nPage == 2) {
            during = VisibleButtons();
            PostMessageW(GetParent(hwndPage), PSM_SHOWWIZBUTTONS, PSWIZB_FINISH, kAll);
        }
    };
    EXPECT_EQ(Run({IDD_TEXT, IDD_TEXT}, {Show(PSWIZB_NEXT, kAll), Next, Expect("Finish"), Cancel}), 0);
    EXPECT_EQ(during, "Next") << "nothing changes before the page has said what it wants";
}

TEST_F(WizardButtons, VisibleOnesStandSideBySideAtTheRight)
{
    const auto gap = [this] { return RectOf(Button(IDCANCEL)).left - RectOf(Button(kNextButtonId)).right; };
    RECT cancel = {};
    LONG nGap = 0;
    EXPECT_EQ(Run({IDD_TEXT, IDD_TEXT},
                  {[&] {
                       cancel = RectOf(Button(IDCANCEL));
                       nGap = gap();
                       EXPECT_GT(nGap, 0);
                       EXPECT_LT(cancel.right, RectOf(Frame()).right);
                   },
                   Show(0, PSWIZB_CANCEL),
                   [&] { EXPECT_EQ(RectOf(Button(kNextButtonId)).right, cancel.right) << "no gap is left"; },
                   Show(PSWIZB_CANCEL, PSWIZB_CANCEL),
                   [&] {
                       EXPECT_EQ(RectOf(Button(IDCANCEL)).right, cancel.right);
                       EXPECT_EQ(gap(), nGap);
                   },
                   Cancel}),
              0);
}

TEST_F(WizardButtons, AHiddenOneCanBePressedByMessage)
{
    EXPECT_EQ(
        Run({IDD_TEXT, IDD_TEXT}, {Show(0, kAll), [this] { SendMessageW(Frame(), PSM_PRESSBUTTON, PSBTN_NEXT, 0); },
                                   [this] { EXPECT_EQ(CurrentNumber(), 2); },
                                   [this] { SendMessageW(Frame(), PSM_PRESSBUTTON, PSBTN_FINISH, 0); }}),
        1);
}

TEST_F(WizardButtons, TheyCanBeDisabled)
{
    EXPECT_EQ(
        Run({IDD_TEXT, IDD_TEXT}, {[this] { SendMessageW(Frame(), PSM_ENABLEWIZBUTTONS, 0, PSWIZB_NEXT); },
                                   [this] {
                                       EXPECT_FALSE(IsWindowEnabled(Button(kNextButtonId)));
                                       EXPECT_TRUE(IsWindowEnabled(Button(IDCANCEL)));
                                   },
                                   [this] { SendMessageW(Frame(), PSM_SETWIZBUTTONS, 0, PSWIZB_BACK | PSWIZB_FINISH); },
                                   Expect("Back Finish Cancel"), Cancel}),
        0);
}

TEST_F(WizardButtons, TheDefaultButtonIsNextThenFinish)
{
    const auto isDefault = [this](int nId) {
        return (GetWindowLongPtrW(Button(nId), GWL_STYLE) & BS_TYPEMASK) == BS_DEFPUSHBUTTON;
    };
    EXPECT_EQ(Run({IDD_BOX, IDD_BOX}, {[&] { EXPECT_TRUE(isDefault(kNextButtonId)); }, Next,
                                       [&] {
                                           EXPECT_TRUE(isDefault(kFinishButtonId));
                                           EXPECT_FALSE(isDefault(IDCANCEL));
                                       },
                                       Cancel}),
              0);
}

TEST_F(WizardButtons, APushButtonWithTheFocusIsTheDefaultOne)
{
    const auto isDefault = [](HWND hwnd) {
        return (GetWindowLongPtrW(hwnd, GWL_STYLE) & BS_TYPEMASK) == BS_DEFPUSHBUTTON;
    };
    EXPECT_EQ(Run({IDD_FIELDS, IDD_BOX}, {[this] { SetFocus(Control(IDC_BUTTON)); },
                                          [&] {
                                              EXPECT_TRUE(isDefault(Control(IDC_BUTTON)));
                                              EXPECT_FALSE(isDefault(Button(kNextButtonId)));
                                          },
                                          [this] { SetFocus(Control(IDC_EDIT)); },
                                          [&] {
                                              EXPECT_FALSE(isDefault(Control(IDC_BUTTON)));
                                              EXPECT_TRUE(isDefault(Button(kNextButtonId)));
                                          },
                                          Cancel}),
              0);
}
