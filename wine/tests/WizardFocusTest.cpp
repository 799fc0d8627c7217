// Where the keyboard goes when pages and buttons come and go.
#include "tests/WizardTest.h"

class WizardFocus : public WizardTest
{
protected:
    std::function<void()> Next = [this] { Click(kNextButtonId); };
    std::function<void()> Back = [this] { Click(kBackButtonId); };
    std::function<void()> Cancel = [this] { SendMessageW(Frame(), PSM_PRESSBUTTON, PSBTN_CANCEL, 0); };

    std::function<void()> ExpectFocus(int nId)
    {
        return [=, this] { EXPECT_EQ(FocusId(), nId); };
    }

    std::function<void()> Show(DWORD dwButtons, DWORD dwMask)
    {
        return [=, this] { ShowButtons(dwButtons, dwMask); };
    }
};

TEST_F(WizardFocus, ThePagesFirstTabStopGetsIt)
{
    EXPECT_EQ(Run({IDD_BOX, IDD_FIELDS},
                  {ExpectFocus(IDC_BOX), Next, ExpectFocus(IDC_EDIT), Back, ExpectFocus(IDC_BOX), Cancel}),
              0);
}

TEST_F(WizardFocus, TheDefaultButtonGetsItOnAPageWithoutTabStops)
{
    EXPECT_EQ(Run({IDD_TEXT, IDD_BOX, IDD_TEXT},
                  {ExpectFocus(kNextButtonId), Next, ExpectFocus(IDC_BOX), Next, ExpectFocus(kFinishButtonId), Cancel}),
              0);
}

TEST_F(WizardFocus, ADefaultButtonThatThePageShowsLaterGetsIt)
{
    m_onNotify = [](int nPage, HWND hwndPage, UINT nCode) {
        if (nCode == PSN_SETACTIVE) {
            PostMessageW(GetParent(hwndPage), PSM_SHOWWIZBUTTONS, nPage == 1 ? 0 : PSWIZB_NEXT, PSWIZB_NEXT);
        }
    };
    EXPECT_EQ(Run({IDD_BOX, IDD_TEXT, IDD_BOX}, {[this] { SendMessageW(Frame(), PSM_PRESSBUTTON, PSBTN_NEXT, 0); },
                                                 ExpectFocus(kNextButtonId), Cancel}),
              0);
}

TEST_F(WizardFocus, APageThatPlacesItKeepsIt)
{
    m_onInitDialog = [](int, HWND hwndPage) -> INT_PTR {
        SetFocus(GetDlgItem(hwndPage, IDC_BOX));
        return FALSE;
    };
    EXPECT_EQ(Run({IDD_FIELDS, IDD_FIELDS},
                  {ExpectFocus(IDC_BOX), Next, ExpectFocus(IDC_BOX), Back, ExpectFocus(IDC_EDIT), Cancel}),
              0);
}

TEST_F(WizardFocus, AskingForTheNextControlLeadsOutOfThePage)
{
    m_onInitDialog = [](int nPage, HWND hwndPage) -> INT_PTR {
        if (nPage == 1) {
            PostMessageW(hwndPage, WM_NEXTDLGCTL, 0, 0);
            PostMessageW(GetParent(hwndPage), PSM_SHOWWIZBUTTONS, PSWIZB_NEXT | PSWIZB_CANCEL,
                         PSWIZB_BACK | PSWIZB_NEXT | PSWIZB_CANCEL);
        }
        return TRUE;
    };
    EXPECT_EQ(Run({IDD_BUTTON, IDD_BOX},
                  {ExpectFocus(kNextButtonId), Next, ExpectFocus(IDC_BOX), Back, ExpectFocus(kNextButtonId), Cancel}),
              0);
}

TEST_F(WizardFocus, AskingForTheNextControlWalksWithinThePage)
{
    m_onInitDialog = [](int, HWND hwndPage) -> INT_PTR {
        PostMessageW(hwndPage, WM_NEXTDLGCTL, 0, 0);
        return TRUE;
    };
    EXPECT_EQ(Run({IDD_FIELDS}, {ExpectFocus(IDC_BUTTON), Cancel}), 0);
}

TEST_F(WizardFocus, ItLeavesAButtonThatGetsHidden)
{
    EXPECT_EQ(
        Run({IDD_BOX, IDD_BOX}, {[this] { SetFocus(Button(kNextButtonId)); }, Show(0, PSWIZB_NEXT),
                                 ExpectFocus(IDC_BOX), [this] { SetFocus(Button(IDCANCEL)); },
                                 Show(PSWIZB_NEXT, PSWIZB_NEXT | PSWIZB_CANCEL), ExpectFocus(kNextButtonId), Cancel}),
        0);
}

TEST_F(WizardFocus, ItComesBackAfterAMessageBox)
{
    m_answers[{1, PSN_WIZNEXT}] = -1;
    m_onNotify = [](int, HWND hwndPage, UINT nCode) {
        if (nCode == PSN_WIZNEXT) {
            SetTimer(nullptr, 0, 50, [](HWND, UINT, UINT_PTR nTimer, DWORD) {
                KillTimer(nullptr, nTimer);
                SendMessageW(FindWindowW(L"#32770", L"A box"), WM_COMMAND, IDOK, 0);
            });
            MessageBoxW(hwndPage, L"Text", L"A box", MB_OK);
        }
    };
    EXPECT_EQ(Run({IDD_FIELDS, IDD_BOX}, {[this] { SetFocus(Control(IDC_BOX)); }, [this] { Key(VK_RETURN); }, [] {},
                                          [] {}, [] {}, [] {}, [] {}, ExpectFocus(IDC_BOX), Cancel}),
              0);
}

TEST_F(WizardFocus, TabbingIntoAnEditSelectsItsText)
{
    EXPECT_EQ(Run({IDD_FIELDS}, {[this] {
                                     SetDlgItemTextW(CurrentPage(), IDC_EDIT, L"12345");
                                     SetFocus(Control(IDC_BUTTON));
                                 },
                                 [this] { KeyWith(VK_SHIFT, VK_TAB); },
                                 [this] {
                                     EXPECT_EQ(FocusId(), IDC_EDIT);
                                     EXPECT_EQ(SendMessageW(Control(IDC_EDIT), EM_GETSEL, 0, 0), MAKELRESULT(0, 5));
                                 },
                                 Cancel}),
              0);
}
