// The pages that only tell the user what to do on the watch.

#include "wizard/InstructionPages.h"

#include "tests/unit/wizard/PageWindow.h"

using namespace kit;

namespace {

struct Row
{
    PCSTR pszName;
    int nDialogId;
    DLGPROC pfnDialogProc;
    int nBodyStringId;
    int nBodyId;
    int nCheckId;
    PCWSTR pszBodyBegins;
    PCWSTR pszBodyEnds;
    PCWSTR pszCheck;
    Buttons ticked = kWithNext;
    Buttons unticked = kWithoutNext;
};

const Row kRows[] = {
    {"ConnectWiFi", 203, CConnectWiFiPage::DialogProc, 220, 1014, 1015,
     L"The watch and your computer must be connected to the same network.",
     L"\t4. Scroll down, choose a Wi-Fi network, and enter Wi-Fi password if necessary.\n\n",
     L" I have connected the Android watch to a Wi-Fi network"},
    {"DeveloperOptionsOn", 202, CDeveloperOptionsOnPage::DialogProc, 205, 1010, 1012,
     L"Developer options needs to be enabled on the watch for the installation.",
     L"\t4. Repeatedly tap Software version until popup saying \"Developer mode turned on.\"",
     L" I have enabled developer options on the Android watch"},
    {"StayAwakeOn", 219, CStayAwakeOnPage::DialogProc, 231, 1046, 1047,
     L"It is very important to enable the \"Stay awake when charging\" developer option.",
     L"\t4. Turn on \"Stay awake while charging.\"",
     L" IMPORTANT - I have turned on the \"Stay awake when charging\" developer option"},
    {"StayAwakeOff", 221, CStayAwakeOffPage::DialogProc, 237, 1050, 1051,
     L"The Solvane application is now installed on the watch.  You may now turn off the \"Stay awake when charging\" "
     L"developer option.",
     L"\t3. Turn off \"Stay awake when charging.\"",
     L" I have turned off the \"Stay awake when charging\" option or want to leave it turned on"},
    {"WirelessDebuggingOff", 222, CWirelessDebuggingOffPage::DialogProc, 203, 1052, 1053,
     L"The Solvane application is now installed on the watch.   You may now turn off wireless debugging.",
     L"\t3. Scroll down and turn off Wireless debugging.",
     L" I have turned off Wireless debugging or want to leave it turned on"},
    {"RevokeAuthorizations", 220, CRevokeAuthorizationsPage::DialogProc, 234, 1048, 1049,
     L"The Solvane application is now installed on the watch.  You may now revoke debugging authorizations (e.g. "
     L"pairings) created during the installation process.",
     L"\t4. Press the blue button to confirm you are sure.",
     L" I have revoked debugging authorizations or want to leave them on the watch."},
    {"DeveloperOptionsOff", 217, CDeveloperOptionsOffPage::DialogProc, 225, 1042, 1043,
     L"The Solvane application is now installed on the watch.  You may now turn off developer options on the watch.",
     L"\t5. The watch model under Software version will disappear indicating developer options is turned off.",
     L" I have turned off developer options on the Android watch or want to leave it turned on"},
    {"DisconnectWiFi", 218, CDisconnectWiFiPage::DialogProc, 228, 1044, 1045,
     L"You may now turn off Wi-Fi on the watch if it is no longer required.", L"\t6. Change the Wi-Fi slider to Off.",
     L" I have turned off Wi-Fi on the Android watch or want to leave it on"},
    {"Finished",
     216,
     CFinishedPage::DialogProc,
     208,
     1040,
     1041,
     L"You may now close this application by pressing the Finish button.",
     L"You may now close this application by pressing the Finish button.",
     L" I want to install Solvane on another watch",
     {0x03, 0x15},
     {0x05, 0x15}},
};

void PrintTo(const Row& row, std::ostream* pOut)
{
    *pOut << row.pszName;
}

class InstructionPage : public Test, public testing::WithParamInterface<Row>
{
protected:
    const Row& Its() const
    {
        return GetParam();
    }

    CWizardData m_data;
};

// A page that was just shown for the first time.
class ShownInstructionPage : public InstructionPage
{
protected:
    ShownInstructionPage()
    {
        m_page.TakeButtons();
    }

    PageWindow m_page{Its().nDialogId, Its().pfnDialogProc, m_data};
};

std::wstring StringOf(int nStringId)
{
    WCHAR szText[2048] = {};
    LoadStringW(GetModuleHandleW(nullptr), static_cast<UINT>(nStringId), szText, 2048);
    return szText;
}

TEST_P(InstructionPage, LoadsItsTextsAndKeepsTheData)
{
    const PageWindow page(Its().nDialogId, Its().pfnDialogProc, m_data);
    EXPECT_EQ(page.InitResult(), TRUE);
    EXPECT_EQ(GetWindowLongPtrW(page.Window(), GWLP_USERDATA), reinterpret_cast<LONG_PTR>(&m_data));
    EXPECT_EQ(page.Text(Its().nCheckId), Its().pszCheck);
    const std::wstring strBody = page.Text(Its().nBodyId);
    EXPECT_EQ(strBody, StringOf(Its().nBodyStringId));
    EXPECT_TRUE(strBody.starts_with(Its().pszBodyBegins)) << Narrow(strBody);
    EXPECT_TRUE(strBody.ends_with(Its().pszBodyEnds)) << Narrow(strBody);
}

TEST_P(InstructionPage, HidesNextWhenItIsFirstShown)
{
    PageWindow page(Its().nDialogId, Its().pfnDialogProc, m_data);
    EXPECT_EQ(page.TakeButtons(), ButtonsList{Its().unticked});
}

TEST_P(InstructionPage, KeepsTheTextsOfTheTemplateWhenNoneCanBeLoaded)
{
    const REPLACED(LoadStringW) load(Returns(0, ERROR_RESOURCE_NAME_NOT_FOUND));
    PageWindow page(Its().nDialogId, Its().pfnDialogProc, m_data);
    EXPECT_EQ(page.Text(Its().nBodyId), L"Static");
    EXPECT_EQ(page.Text(Its().nCheckId), L"Check1");
    EXPECT_EQ(load.Calls(), 2u);
    EXPECT_EQ(load.Arg<1>(0), static_cast<UINT>(Its().nBodyStringId));
    EXPECT_EQ(page.TakeButtons(), ButtonsList{Its().unticked});
}

TEST_P(InstructionPage, LoadsTheTextOfItsBoxAlsoWhenThatOfItsBodyIsMissing)
{
    const REPLACED(LoadStringW) load(InTurn(Returns(0), PassOn()));
    const PageWindow page(Its().nDialogId, Its().pfnDialogProc, m_data);
    EXPECT_EQ(page.Text(Its().nBodyId), L"Static");
    EXPECT_EQ(page.Text(Its().nCheckId), Its().pszCheck);
}

TEST_P(InstructionPage, DoesWithoutItsControls)
{
    PageWindow page(Its().nDialogId, Its().pfnDialogProc, m_data, {Its().nBodyId, Its().nCheckId});
    EXPECT_EQ(page.InitResult(), TRUE);
    EXPECT_EQ(page.TakeButtons(), ButtonsList{Its().unticked});
    EXPECT_EQ(page.Notify(PSN_SETACTIVE), 0);
    EXPECT_EQ(page.TakeButtons(), ButtonsList{Its().unticked});
}

TEST_P(ShownInstructionPage, ShowsNextWhileItsBoxIsTicked)
{
    m_page.Click(Its().nCheckId);
    EXPECT_EQ(m_page.TakeButtons(), ButtonsList{Its().ticked});
    m_page.Click(Its().nCheckId);
    EXPECT_EQ(m_page.TakeButtons(), ButtonsList{Its().unticked});
    m_page.Click(Its().nCheckId);
    EXPECT_EQ(m_page.TakeButtons(), ButtonsList{Its().ticked});
}

TEST_P(ShownInstructionPage, ShowsNextAtOnceWhenTheUserComesBackToATickedBox)
{
    m_page.Click(Its().nCheckId);
    m_page.TakeButtons();
    EXPECT_EQ(m_page.Notify(PSN_KILLACTIVE), 0);
    EXPECT_EQ(m_page.TakeButtons(), ButtonsList{});
    EXPECT_EQ(m_page.Notify(PSN_SETACTIVE), 0);
    EXPECT_EQ(m_page.TakeButtons(), ButtonsList{Its().ticked});
}

TEST_P(ShownInstructionPage, HidesNextWhenTheUserComesBackToABoxNotTicked)
{
    EXPECT_EQ(m_page.Notify(PSN_SETACTIVE), 0);
    EXPECT_EQ(m_page.TakeButtons(), ButtonsList{Its().unticked});
}

TEST_P(ShownInstructionPage, TakesAHalfTickedBoxForNotTicked)
{
    const HWND hwndBox = m_page.Control(Its().nCheckId);
    const LONG nStyle = GetWindowLongW(hwndBox, GWL_STYLE);
    SetWindowLongW(hwndBox, GWL_STYLE, (nStyle & ~BS_TYPEMASK) | BS_AUTO3STATE);
    SendMessageW(hwndBox, BM_SETCHECK, BST_INDETERMINATE, 0);
    ASSERT_EQ(SendMessageW(hwndBox, BM_GETCHECK, 0, 0), BST_INDETERMINATE);
    EXPECT_EQ(m_page.Notify(PSN_SETACTIVE), 0);
    EXPECT_EQ(m_page.TakeButtons(), ButtonsList{Its().unticked});
}

TEST_P(ShownInstructionPage, AnswersTheClickOnItsBox)
{
    SendDlgItemMessageW(m_page.Window(), Its().nCheckId, BM_SETCHECK, BST_CHECKED, 0);
    EXPECT_EQ(m_page.Command(Its().nCheckId, BN_CLICKED), 0);
    EXPECT_EQ(m_page.TakeButtons(), ButtonsList{Its().ticked});
}

TEST_P(ShownInstructionPage, AnswersAnyOtherCommandWithoutTouchingTheButtons)
{
    EXPECT_EQ(m_page.Command(Its().nBodyId, BN_CLICKED), 0);
    EXPECT_EQ(m_page.Command(IDCANCEL, BN_CLICKED), 0);
    EXPECT_EQ(m_page.Command(Its().nCheckId, BN_DOUBLECLICKED), 0);
    EXPECT_EQ(m_page.Command(Its().nCheckId, BN_SETFOCUS), 0);
    EXPECT_EQ(m_page.Command(Its().nCheckId, EN_CHANGE), 0);
    EXPECT_EQ(m_page.TakeButtons(), ButtonsList{});
}

TEST_P(ShownInstructionPage, AnswersAnyOtherNotificationWithoutTouchingTheButtons)
{
    for (const UINT nCode : {PSN_WIZNEXT, PSN_WIZBACK, PSN_WIZFINISH, PSN_QUERYCANCEL, PSN_KILLACTIVE, PSN_RESET,
                             PSN_APPLY, PSN_HELP, IPN_FIELDCHANGED, NM_CLICK}) {
        EXPECT_EQ(m_page.Notify(nCode), 0);
    }
    EXPECT_EQ(m_page.TakeButtons(), ButtonsList{});
}

TEST_P(ShownInstructionPage, LeavesAnyOtherMessageToTheSystem)
{
    for (const UINT nMessage : {WM_CLOSE, WM_TIMER, WM_SIZE, WM_SHOWWINDOW, WM_SYSCOMMAND, WM_USER, WM_DESTROY}) {
        EXPECT_EQ(m_page.Send(nMessage), FALSE);
    }
    EXPECT_EQ(m_page.TakeButtons(), ButtonsList{});
}

TEST_P(ShownInstructionPage, ShowsItsBoxUnlessItIsTheLast)
{
    m_page.Notify(PSN_SETACTIVE);
    const bool bVisible = (GetWindowLongW(m_page.Control(Its().nCheckId), GWL_STYLE) & WS_VISIBLE) != 0;
    EXPECT_EQ(bVisible, Its().nDialogId != 216);
}

const auto kNameOf = [](const testing::TestParamInfo<Row>& info) { return std::string(info.param.pszName); };
INSTANTIATE_TEST_SUITE_P(, InstructionPage, testing::ValuesIn(kRows), kNameOf);
INSTANTIATE_TEST_SUITE_P(, ShownInstructionPage, testing::ValuesIn(kRows), kNameOf);

} // namespace
