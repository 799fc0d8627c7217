// The keys that mean something in the whole wizard.
#include "tests/WizardTest.h"

class WizardKeyboard : public WizardTest
{
protected:
    std::function<void()> Cancel = [this] { SendMessageW(Frame(), PSM_PRESSBUTTON, PSBTN_CANCEL, 0); };

    std::function<void()> Press(WORD nKey)
    {
        return [=, this] { Key(nKey); };
    }

    std::function<void()> PressWith(WORD nModifier, WORD nKey)
    {
        return [=, this] { KeyWith(nModifier, nKey); };
    }

    std::function<void()> ExpectFocus(int nId)
    {
        return [=, this] { EXPECT_EQ(FocusId(), nId); };
    }

    std::function<void()> ExpectPage(int nNumber)
    {
        return [=, this] { EXPECT_EQ(CurrentNumber(), nNumber); };
    }

    std::function<void()> Show(DWORD dwButtons, DWORD dwMask)
    {
        return [=, this] { ShowButtons(dwButtons, dwMask); };
    }
};

TEST_F(WizardKeyboard, EnterPressesTheDefaultButton)
{
    EXPECT_EQ(Run({IDD_BOX, IDD_FIELDS}, {Press(VK_RETURN), ExpectPage(2), ExpectFocus(IDC_EDIT), Press(VK_RETURN)}),
              1);
}

TEST_F(WizardKeyboard, EnterDoesNothingWithoutADefaultButton)
{
    EXPECT_EQ(Run({IDD_BOX, IDD_BOX}, {Show(0, PSWIZB_NEXT), Press(VK_RETURN), ExpectPage(1), Cancel}), 0);
    EXPECT_EQ(m_journal, (Lines{"1 init", "1 active", "1 querycancel", "1 reset"}));
}

TEST_F(WizardKeyboard, EnterPressesThePushButtonThatHasTheFocus)
{
    std::vector<WORD> commands;
    m_onCommand = [&](int, WORD nId) { commands.push_back(nId); };
    EXPECT_EQ(Run({IDD_FIELDS, IDD_BOX}, {[this] { SetFocus(Control(IDC_BUTTON)); }, Press(VK_RETURN), ExpectPage(1),
                                          [this] { SetFocus(Button(IDCANCEL)); }, Press(VK_RETURN)}),
              0);
    EXPECT_EQ(commands, std::vector<WORD>{IDC_BUTTON});
}

TEST_F(WizardKeyboard, EnterPressesTheArrowThatHasTheFocus)
{
    EXPECT_EQ(Run({IDD_BOX, IDD_BOX}, {Press(VK_RETURN), ExpectPage(2), [this] { SetFocus(Button(kBackButtonId)); },
                                       Press(VK_RETURN), ExpectPage(1), Cancel}),
              0);
}

TEST_F(WizardKeyboard, SpaceTicksABox)
{
    EXPECT_EQ(
        Run({IDD_BOX},
            {Press(VK_SPACE), [this] { EXPECT_EQ(IsDlgButtonChecked(CurrentPage(), IDC_BOX), UINT{BST_CHECKED}); },
             Press(VK_SPACE), [this] { EXPECT_EQ(IsDlgButtonChecked(CurrentPage(), IDC_BOX), UINT{BST_UNCHECKED}); },
             Cancel}),
        0);
}

TEST_F(WizardKeyboard, EscapeCancels)
{
    EXPECT_EQ(Run({IDD_BOX}, {Press(VK_ESCAPE)}), 0);
    EXPECT_EQ(m_journal, (Lines{"1 init", "1 active", "1 querycancel", "1 reset"}));
}

TEST_F(WizardKeyboard, EscapeDoesNothingWhereCancelIsHidden)
{
    EXPECT_EQ(Run({IDD_BOX}, {Show(0, PSWIZB_CANCEL), Press(VK_ESCAPE), ExpectPage(1), Press(VK_RETURN)}), 1);
}

TEST_F(WizardKeyboard, TabWalksThroughPageAndFrameAndBeginsAnew)
{
    EXPECT_EQ(
        Run({IDD_TEXT, IDD_FIELDS, IDD_TEXT},
            {Press(VK_RETURN), ExpectFocus(IDC_EDIT), Press(VK_TAB), ExpectFocus(IDC_BUTTON), Press(VK_TAB),
             ExpectFocus(IDC_BOX), Press(VK_TAB), ExpectFocus(kNextButtonId), Press(VK_TAB), ExpectFocus(IDCANCEL),
             Press(VK_TAB), ExpectFocus(kBackButtonId), Press(VK_TAB), ExpectFocus(IDC_EDIT), Cancel}),
        0);
}

TEST_F(WizardKeyboard, ShiftTabWalksBackwards)
{
    const auto press = PressWith(VK_SHIFT, VK_TAB);
    EXPECT_EQ(Run({IDD_TEXT, IDD_FIELDS, IDD_TEXT},
                  {Press(VK_RETURN), ExpectFocus(IDC_EDIT), press, ExpectFocus(kBackButtonId), press,
                   ExpectFocus(IDCANCEL), press, ExpectFocus(kNextButtonId), press, ExpectFocus(IDC_BOX), press,
                   ExpectFocus(IDC_BUTTON), press, ExpectFocus(IDC_EDIT), Cancel}),
              0);
}

TEST_F(WizardKeyboard, HiddenButtonsLeaveNoGapInTheTabOrder)
{
    EXPECT_EQ(
        Run({IDD_BOX, IDD_TEXT}, {Show(PSWIZB_CANCEL, PSWIZB_BACK | PSWIZB_NEXT | PSWIZB_CANCEL), ExpectFocus(IDC_BOX),
                                  Press(VK_TAB), ExpectFocus(IDCANCEL), Press(VK_TAB), ExpectFocus(IDC_BOX), Cancel}),
        0);
}

TEST_F(WizardKeyboard, ArrowsWalkLikeTabExceptInAnEdit)
{
    EXPECT_EQ(Run({IDD_FIELDS, IDD_TEXT},
                  {Press(VK_DOWN), ExpectFocus(IDC_EDIT), Press(VK_TAB), Press(VK_RIGHT), ExpectFocus(IDC_BOX),
                   Press(VK_DOWN), ExpectFocus(kNextButtonId), Press(VK_RIGHT), ExpectFocus(IDCANCEL), Press(VK_LEFT),
                   ExpectFocus(kNextButtonId), Press(VK_UP), ExpectFocus(IDC_BOX), Cancel}),
              0);
}

TEST_F(WizardKeyboard, AltLeftGoesBack)
{
    EXPECT_EQ(Run({IDD_BOX, IDD_BOX}, {PressWith(VK_MENU, VK_LEFT), ExpectPage(1), Press(VK_RETURN), ExpectPage(2),
                                       PressWith(VK_MENU, VK_LEFT), ExpectPage(1), Cancel}),
              0);
}

TEST_F(WizardKeyboard, MnemonicsPressButtonsOfFrameAndPage)
{
    std::vector<WORD> commands;
    m_onCommand = [&](int, WORD nId) { commands.push_back(nId); };
    EXPECT_EQ(Run({IDD_FIELDS, IDD_BOX}, {PressWith(VK_MENU, 'B'), PressWith(VK_MENU, 'N'), ExpectPage(2),
                                          PressWith(VK_MENU, 'N'), ExpectPage(2), PressWith(VK_MENU, 'F')}),
              1);
    EXPECT_EQ(commands, std::vector<WORD>{IDC_BUTTON});
}
