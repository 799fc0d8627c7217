// The page that pairs this computer with the watch.

#include "wizard/PairDevicePage.h"

#include "adb/ConsoleProcess.h"
#include "net/WinSockHelper.h"
#include "wizard/IntegerEdit.h"

#include "tests/kit/AnsweringAdb.h"
#include "tests/unit/wizard/AnsweringWatch.h"
#include "tests/unit/wizard/Detour.h"
#include "tests/unit/wizard/PageWindow.h"

#include <cstring>

using namespace kit;

namespace {

constexpr int kBody = 1034;
constexpr int kCode = 1032;
constexpr int kAddress = 1035;
constexpr int kPort = 1036;
constexpr int kSkip = 1037;
constexpr int kStatus = 1033;

constexpr PCWSTR kBadPortText =
    L"Somehow you entered an invalid port number.\n\n"
    L"Please enter a valid value (1024 through 65535) the port number and let us know how you managed to enter an "
    L"invalid value.";
constexpr PCWSTR kPortRange = L"Please enter a port value in the range of 1024 through 65535.";
constexpr PCWSTR kBadCode =
    L"You have entered an invalid pairing code.\n\n"
    L"Please enter a valid six digit pair code value (000000 through 999999).  Please also report to KALVO how caused "
    L"this error.";
constexpr PCWSTR kNotStopped = L"Unable to stop the adb service. Please report this error to KALVO\n";
constexpr PCWSTR kUnexpected = L"An unexpected error has occurred, please send a screenshot of this message to KALVO";
constexpr PCWSTR kCouldNotConnect = L"Could not connect to a watch at the IP address and port you entered.\n\n"
                                    L"Verify you entered the correct IP address and pairing port.\n\n"
                                    L"If the IP address and pairing port are correct, then:\n"
                                    L"1. Pressing the Cancel button on the watch for pairing\n"
                                    L"2. Repeat the pairing process using the new values.\n\n"
                                    L"If the above does not work, Steps to restart installation:\n"
                                    L"1. Close this installer program.\n"
                                    L"2. Power the watch off and then turn it on again.\n"
                                    L"3. Run the installer program again.\n";
constexpr PCWSTR kMethod = L"CPairDevicePage::OnNotify_PSN_WIZNEXT_Pair";

constexpr PCSTR kStopped = "";
constexpr PCSTR kNoServer =
    "cannot connect to daemon at tcp:5037: cannot connect to 127.0.0.1:5037: Connection refused. (10061)\r\n";
constexpr PCSTR kPaired = "* daemon not running; starting now at tcp:5037\r\n* daemon started successfully\r\n"
                          "Successfully paired to 192.168.1.100:37777 [guid=adb-R5CW-1]\r\n";
constexpr PCSTR kAlreadyPaired = "";
constexpr PCSTR kFailed = "Failed: Unable to start pairing client.\r\n";
constexpr PCSTR kWrongCode = "Failed: Wrong password or connection was dropped.\r\n";

std::string BoxLine(PCWSTR pszText)
{
    return "box \"" + Narrow(pszText) + '"';
}

class NewPairDevicePage : public Test
{
protected:
    NewPairDevicePage()
    {
        auto& address = reinterpret_cast<SOCKADDR_IN&>(m_data.m_saWatchAddress);
        address = MakeAddress(L"192.168.1.100", 43210);
        std::memset(address.sin_zero, 0xA5, sizeof(address.sin_zero));
    }

    Sockets m_sockets;
    CWizardData m_data;
};

TEST_F(NewPairDevicePage, LoadsItsTextAndKeepsTheData)
{
    PageWindow page(215, CPairDevicePage::DialogProc, m_data);
    EXPECT_EQ(page.InitResult(), TRUE);
    EXPECT_EQ(GetWindowLongPtrW(page.Window(), GWLP_USERDATA), reinterpret_cast<LONG_PTR>(&m_data));
    const std::wstring strBody = page.Text(kBody);
    EXPECT_TRUE(strBody.starts_with(L"To use wireless debugging, you must pair your watch to your workstation"));
    EXPECT_TRUE(strBody.ends_with(L"\t7. Note: the port will be different from port entered in previous step."));
    EXPECT_EQ(page.Text(kSkip), L"Skip this step, the watch is already paired to this workstation.");
    EXPECT_EQ(page.Text(kStatus), L"Enter port number and pairing code");
    EXPECT_EQ(page.TakeButtons().back(), kWithoutNext);
}

TEST_F(NewPairDevicePage, KeepsTheTextOfTheTemplateWhenNoneCanBeLoaded)
{
    const REPLACED(LoadStringW) load(Returns(0));
    const PageWindow page(215, CPairDevicePage::DialogProc, m_data);
    EXPECT_EQ(page.Text(kBody), L"Static");
    EXPECT_EQ(load.Arg<1>(), 216u);
}

TEST_F(NewPairDevicePage, ShowsTheWatchsAddressWhereItCannotBeEdited)
{
    const PageWindow page(215, CPairDevicePage::DialogProc, m_data);
    DWORD dwAddress = 0;
    EXPECT_EQ(SendDlgItemMessageW(page.Window(), kAddress, IPM_GETADDRESS, 0, reinterpret_cast<LPARAM>(&dwAddress)), 4);
    EXPECT_EQ(dwAddress, 0xC0A80164u);
    EXPECT_FALSE(IsWindowEnabled(page.Control(kAddress)));
    EXPECT_EQ(page.MessagesTo(kAddress, IPM_SETADDRESS).size(), 1u);
}

class PairDeviceFamily : public NewPairDevicePage, public testing::WithParamInterface<ADDRESS_FAMILY>
{
};

TEST_P(PairDeviceFamily, OtherThanIpv4EndsTheProcess)
{
    m_data.m_saWatchAddress.ss_family = GetParam();
    REPLACED(SetWindowSubclass) subclass;
    subclass.Optional();
    EXPECT_EQ(ExitCodeOf([this] { const PageWindow page(215, CPairDevicePage::DialogProc, m_data); }), 1u);
    ExpectBox(L"CPairDevicePage::OnInitDialog()\nInvalid IP address type, e.g. IPv6", L"Error");
    EXPECT_EQ(subclass.Calls(), 0u);
}

INSTANTIATE_TEST_SUITE_P(NoneAndIpv6, PairDeviceFamily, testing::Values(0, 23));

TEST_F(NewPairDevicePage, DoesNotMindTheFamilyWithoutAnAddressControl)
{
    m_data.m_saWatchAddress.ss_family = AF_INET6;
    const PageWindow page(215, CPairDevicePage::DialogProc, m_data, {kAddress});
    EXPECT_EQ(page.InitResult(), TRUE);
}

TEST_F(NewPairDevicePage, DoesWithoutItsEdits)
{
    PageWindow page(215, CPairDevicePage::DialogProc, m_data, {kPort, kCode});
    EXPECT_EQ(page.InitResult(), TRUE);
    EXPECT_EQ(page.TakeButtons(), ButtonsList{kWithoutNext});
}

TEST_F(NewPairDevicePage, MakesPortAndCodeEmptyFieldsOfFiveAndSixDigits)
{
    const REPLACED(SetWindowSubclass) subclass;
    PageWindow page(215, CPairDevicePage::DialogProc, m_data);
    ASSERT_EQ(subclass.Calls(), 2u);
    const int edits[] = {kPort, kCode};
    const WPARAM limits[] = {5, 6};
    const PCWSTR filled[] = {L"98765", L"987654"};
    for (const size_t n : {0u, 1u}) {
        const HWND hwndEdit = page.Control(edits[n]);
        EXPECT_EQ(subclass.Arg<0>(n), hwndEdit);
        EXPECT_EQ(subclass.Arg<1>(n), &CIntegerEdit::SubclassProc);
        EXPECT_EQ(subclass.Arg<2>(n), reinterpret_cast<UINT_PTR>(hwndEdit));
        EXPECT_EQ(subclass.Arg<3>(n), 0u);
        const std::vector<ControlMessage> limit = page.MessagesTo(edits[n], EM_LIMITTEXT);
        ASSERT_EQ(limit.size(), 1u);
        EXPECT_EQ(limit[0].wParam, limits[n]);
        EXPECT_EQ(page.TextsOf(edits[n]), std::vector<std::wstring>{L""});
        page.Type(edits[n], L"9a87 65x4321");
        EXPECT_EQ(page.Text(edits[n]), filled[n]);
    }
}

TEST_F(NewPairDevicePage, EndsTheProcessWhenThePortCannotBeMadeADigitsField)
{
    const REPLACED(SetWindowSubclass) subclass(Returns(FALSE));
    EXPECT_EQ(ExitCodeOf([this] { const PageWindow page(215, CPairDevicePage::DialogProc, m_data); }), 1u);
    ExpectBox(L"CPairDevicePage::OnInitDialog()\nCIntegerEdit::SetWindowSubclass(PORT, NULL)", L"Error");
    EXPECT_EQ(subclass.Calls(), 1u);
}

TEST_F(NewPairDevicePage, EndsTheProcessWhenTheCodeCannotBeMadeADigitsField)
{
    const REPLACED(SetWindowSubclass) subclass(InTurn(PassOn(), Returns(FALSE)));
    EXPECT_EQ(ExitCodeOf([this] { const PageWindow page(215, CPairDevicePage::DialogProc, m_data); }), 1u);
    ExpectBox(L"CPairDevicePage::OnInitDialog()\nCIntegerEdit::SetWindowSubclass(CODE, NULL)", L"Error");
}

// The page, shown for the first time, with a watch that answers pings and an adb that the test
// scripts.
class PairDevicePage : public NewPairDevicePage
{
protected:
    PairDevicePage()
    {
        m_page.TakeButtons();
        Journal().clear();
    }

    void Enter(PCWSTR pszPort, PCWSTR pszCode)
    {
        m_page.SetText(kPort, pszPort);
        m_page.SetText(kCode, pszCode);
        m_page.TakeButtons();
    }

    LRESULT Next()
    {
        return m_page.Notify(PSN_WIZNEXT);
    }

    void ExpectCode(PCWSTR pszCode) const
    {
        EXPECT_STREQ(m_data.m_szPairingCode, pszCode);
    }

    AnsweringWatch m_watch;
    AnsweringAdb m_adb;
    PageWindow m_page{215, CPairDevicePage::DialogProc, m_data};
};

struct Entered
{
    PCWSTR pszPort;
    PCWSTR pszCode;
    Buttons buttons;
};

class PairDeviceButtons : public PairDevicePage, public testing::WithParamInterface<Entered>
{
};

TEST_P(PairDeviceButtons, FollowPortAndCode)
{
    Enter(GetParam().pszPort, GetParam().pszCode);
    EXPECT_EQ(m_page.Notify(PSN_SETACTIVE), 0);
    EXPECT_EQ(m_page.TakeButtons(), ButtonsList{GetParam().buttons});
    EXPECT_EQ(m_page.Command(kPort, EN_CHANGE), 0);
    EXPECT_EQ(m_page.TakeButtons(), ButtonsList{GetParam().buttons});
    EXPECT_EQ(m_page.Command(kCode, EN_CHANGE), 0);
    EXPECT_EQ(m_page.TakeButtons(), ButtonsList{GetParam().buttons});
}

INSTANTIATE_TEST_SUITE_P(
    Entered, PairDeviceButtons,
    testing::Values(Entered{L"37777", L"123456", kWithNext}, Entered{L"3777", L"123456", kWithNext},
                    Entered{L"377", L"123456", kWithoutNext}, Entered{L"37777", L"12345", kWithoutNext},
                    Entered{L"37777", L"1234567", kWithoutNext}, Entered{L"", L"123456", kWithoutNext},
                    Entered{L"37777", L"", kWithoutNext}, Entered{L"", L"", kWithoutNext}));

TEST_F(PairDevicePage, ShowsNextWithTheLastDigitOfTheCode)
{
    m_page.Type(kPort, L"37777");
    m_page.Type(kCode, L"12345");
    EXPECT_EQ(m_page.LastButtons(), kWithoutNext);
    m_page.Type(kCode, L"6");
    EXPECT_EQ(m_page.TakeButtons(), ButtonsList{kWithNext});
    m_page.Type(kPort, L"\b\b");
    EXPECT_EQ(m_page.LastButtons(), kWithoutNext);
}

TEST_F(PairDevicePage, EmptiesAndDisablesItsEditsWhenTheStepIsSkipped)
{
    Enter(L"37777", L"123456");
    m_page.Click(kSkip);
    EXPECT_EQ(m_page.Text(kPort), L"");
    EXPECT_EQ(m_page.Text(kCode), L"");
    EXPECT_FALSE(IsWindowEnabled(m_page.Control(kPort)));
    EXPECT_FALSE(IsWindowEnabled(m_page.Control(kCode)));
    EXPECT_EQ(m_page.LastButtons(), kWithNext);
}

TEST_F(PairDevicePage, EnablesItsEmptyEditsWhenTheStepIsNotSkippedAfterAll)
{
    Enter(L"37777", L"123456");
    m_page.Click(kSkip);
    m_page.TakeButtons();
    m_page.Click(kSkip);
    EXPECT_EQ(m_page.Text(kPort), L"");
    EXPECT_EQ(m_page.Text(kCode), L"");
    EXPECT_TRUE(IsWindowEnabled(m_page.Control(kPort)));
    EXPECT_TRUE(IsWindowEnabled(m_page.Control(kCode)));
    EXPECT_EQ(m_page.TakeButtons(), ButtonsList{kWithoutNext});
    EXPECT_FALSE(IsWindowEnabled(m_page.Control(kAddress)));
}

TEST_F(PairDevicePage, LeavesTheTextsWhenTheBoxIsUnticked)
{
    m_page.SetText(kPort, L"37777");
    m_page.SetText(kCode, L"123456");
    m_page.TakeButtons();
    EXPECT_EQ(m_page.Command(kSkip, BN_CLICKED), 0);
    EXPECT_EQ(m_page.Text(kPort), L"37777");
    EXPECT_EQ(m_page.Text(kCode), L"123456");
    EXPECT_EQ(m_page.TakeButtons(), ButtonsList{kWithNext});
}

TEST_F(PairDevicePage, ShowsNextWhenTheUserComesBackToASkippedStep)
{
    m_page.Click(kSkip);
    m_page.TakeButtons();
    EXPECT_EQ(m_page.Notify(PSN_SETACTIVE), 0);
    EXPECT_EQ(m_page.TakeButtons(), ButtonsList{kWithNext});
}

TEST_F(PairDevicePage, MovesOnWithoutAdbWhenTheStepIsSkipped)
{
    m_page.Click(kSkip);
    EXPECT_EQ(Next(), 0);
    EXPECT_EQ(Journal(), Lines{"status \"Stopping ADB server\""});
    EXPECT_EQ(m_page.Text(kStatus), L"Stopping ADB server");
    ExpectCode(L"000000");
}

TEST_F(PairDevicePage, AnswersAnyOtherCommandWithoutDoingAnything)
{
    Enter(L"37777", L"123456");
    for (const int nEditId : {kPort, kCode}) {
        for (const int nNotification : {EN_UPDATE, EN_SETFOCUS, EN_KILLFOCUS, EN_MAXTEXT, BN_CLICKED}) {
            EXPECT_EQ(m_page.Command(nEditId, nNotification), 0);
        }
    }
    SendDlgItemMessageW(m_page.Window(), kSkip, BM_SETCHECK, BST_CHECKED, 0);
    EXPECT_EQ(m_page.Command(kSkip, BN_DOUBLECLICKED), 0);
    EXPECT_EQ(m_page.Command(kSkip, EN_CHANGE), 0);
    EXPECT_EQ(m_page.Command(kAddress, EN_CHANGE), 0);
    EXPECT_EQ(m_page.Command(IDOK, BN_CLICKED), 0);
    EXPECT_EQ(m_page.Text(kPort), L"37777");
    EXPECT_TRUE(IsWindowEnabled(m_page.Control(kCode)));
    EXPECT_EQ(m_page.TakeButtons(), ButtonsList{});
}

TEST_F(PairDevicePage, AnswersAnyOtherNotificationWithoutDoingAnything)
{
    for (const UINT nCode : {PSN_WIZBACK, PSN_WIZFINISH, PSN_QUERYCANCEL, PSN_KILLACTIVE, PSN_RESET, PSN_APPLY,
                             PSN_HELP, IPN_FIELDCHANGED, NM_CLICK}) {
        EXPECT_EQ(m_page.Notify(nCode), 0);
    }
    EXPECT_EQ(m_page.TakeButtons(), ButtonsList{});
    EXPECT_EQ(Journal(), Lines{});
}

TEST_F(PairDevicePage, LeavesAnyOtherMessageToTheSystem)
{
    for (const UINT nMessage : {WM_CLOSE, WM_TIMER, WM_SIZE, WM_SHOWWINDOW, WM_USER, WM_DESTROY}) {
        EXPECT_EQ(m_page.Send(nMessage), FALSE);
    }
}

TEST_F(PairDevicePage, PairsAndStoresTheCode)
{
    m_adb.Prints(kStopped).Prints(kPaired);
    Enter(L"37777", L"123456");
    EXPECT_EQ(Next(), 0);
    EXPECT_EQ(Journal(),
              (Lines{"status \"Stopping ADB server\"", "sleep 2000", "adb kill-server",
                     "status \"Pinging 192.168.1.100 (1 of 6)\"", "ping 192.168.1.100",
                     "status \"Pairing attempt 1 of 3\"", "sleep 2000", "adb pair 192.168.1.100:37777 123456",
                     "status \"Pairing to 192.168.1.100:37777 | 123456\""}));
    ExpectCode(L"123456");
}

TEST_F(PairDevicePage, LeavesTheWatchsAddressAsItIs)
{
    const SOCKADDR_STORAGE before = m_data.m_saWatchAddress;
    m_adb.Prints(kStopped).Prints(kPaired);
    Enter(L"37777", L"123456");
    EXPECT_EQ(Next(), 0);
    EXPECT_EQ(std::memcmp(&m_data.m_saWatchAddress, &before, sizeof(before)), 0);
}

TEST_F(PairDevicePage, PairsWithTheWatchsAddressAndThePairingPort)
{
    REPLACED(WSAAddressToStringW)
    convert([](SOCKADDR* pAddress, DWORD cb, WSAPROTOCOL_INFOW* pInfo, PWSTR psz, DWORD* pcch) {
        // The rest of the address is zero, whatever is behind that of the watch.
        const SOCKADDR_IN expected = MakeAddress(L"192.168.1.100", 1024);
        EXPECT_EQ(cb, sizeof(expected));
        EXPECT_EQ(std::memcmp(pAddress, &expected, sizeof(expected)), 0);
        return REPLACED(WSAAddressToStringW)::Real(pAddress, cb, pInfo, psz, pcch);
    });
    convert.Unnoted();
    m_adb.Prints(kStopped).Prints(kPaired);
    Enter(L"1024", L"000001");
    EXPECT_EQ(Next(), 0);
    EXPECT_EQ(m_adb.Commands()[1], L" pair 192.168.1.100:1024 000001");
    ExpectCode(L"000001");
}

TEST_F(PairDevicePage, TakesTheHighestPort)
{
    m_adb.Prints(kStopped).Prints(kPaired);
    Enter(L"65535", L"999999");
    EXPECT_EQ(Next(), 0);
    EXPECT_EQ(m_adb.Commands()[1], L" pair 192.168.1.100:65535 999999");
    ExpectCode(L"999999");
}

TEST_F(PairDevicePage, TakesAWatchThatIsAlreadyPairedForSuccess)
{
    m_adb.Prints(kStopped).Prints(kAlreadyPaired);
    Enter(L"37777", L"123456");
    EXPECT_EQ(Next(), 0);
    EXPECT_EQ(m_page.Text(kStatus), L"Pairing to 192.168.1.100:37777 | 123456");
    ExpectCode(L"123456");
}

TEST_F(PairDevicePage, DoesNotMindThatThereIsNoServerToStop)
{
    m_adb.Prints(kNoServer).Prints(kPaired);
    Enter(L"37777", L"123456");
    EXPECT_EQ(Next(), 0);
    ExpectCode(L"123456");
}

TEST_F(PairDevicePage, TriesThreeTimesAndThenTellsOnce)
{
    m_adb.Prints(kStopped).Prints(kFailed).Prints(kFailed).Prints(kFailed);
    Enter(L"37777", L"123456");
    EXPECT_EQ(Next(), -1);
    ExpectBox(m_page.Window(), kCouldNotConnect, L"Pair Connection");
    EXPECT_EQ(Lines(Journal().begin() + 5, Journal().end()),
              (Lines{"status \"Pairing attempt 1 of 3\"", "sleep 2000", "adb pair 192.168.1.100:37777 123456",
                     "status \"Pairing attempt 2 of 3\"", "sleep 2000", "adb pair 192.168.1.100:37777 123456",
                     "status \"Pairing attempt 3 of 3\"", "sleep 2000", "adb pair 192.168.1.100:37777 123456",
                     "status \"adb pair - pair failed\"", BoxLine(kCouldNotConnect)}));
    ExpectCode(L"000000");
}

TEST_F(PairDevicePage, SucceedsWithTheLastAttempt)
{
    m_adb.Prints(kStopped).Prints(kFailed).Prints(kFailed).Prints(kPaired);
    Enter(L"37777", L"123456");
    EXPECT_EQ(Next(), 0);
    EXPECT_EQ(m_page.TextsOf(kStatus).back(), L"Pairing to 192.168.1.100:37777 | 123456");
    ExpectCode(L"123456");
}

TEST_F(PairDevicePage, TellsAnUnexpectedOutcomeAndDoesNotTryAgain)
{
    m_adb.Prints(kStopped).Prints(kWrongCode);
    Enter(L"37777", L"123456");
    EXPECT_EQ(Next(), -1);
    ExpectBox(m_page.Window(), kUnexpected, L"Pairing Error");
    EXPECT_EQ(Lines(Journal().begin() + 5, Journal().end()),
              (Lines{"status \"Pairing attempt 1 of 3\"", "sleep 2000", "adb pair 192.168.1.100:37777 123456",
                     BoxLine(kUnexpected), "status \"Error parsing command output\""}));
    ExpectCode(L"000000");
}

TEST_F(PairDevicePage, TellsAnUnexpectedOutcomeAlsoAfterAFailedAttempt)
{
    m_adb.Prints(kStopped).Prints(kFailed).Prints(kWrongCode);
    Enter(L"37777", L"123456");
    EXPECT_EQ(Next(), -1);
    ExpectBox(m_page.Window(), kUnexpected, L"Pairing Error");
    EXPECT_EQ(m_page.Text(kStatus), L"Error parsing command output");
}

TEST_F(PairDevicePage, TakesAFailedRunOfAdbForAnUnexpectedOutcome)
{
    m_adb.Prints(kStopped).PrintsAndHidesItsExitCode(kPaired);
    Enter(L"37777", L"123456");
    EXPECT_EQ(Next(), -1);
    ExpectBox(m_page.Window(), kUnexpected, L"Pairing Error");
    EXPECT_EQ(m_page.Text(kStatus), L"CConsoleProcess::GetExitCode() failed");
    ExpectCode(L"000000");
}

// Runs of adb that end with an outcome of which nothing is known, but for the first.
int g_nRun = 0;

ADB_EXIT_CODE RunWithUnknownOutcome(std::string& /*strOutput*/, PWSTR /*pszCommandLine*/)
{
    return g_nRun++ == 0 ? ADB_SUCCESS : static_cast<ADB_EXIT_CODE>(7);
}

TEST_F(PairDevicePage, HasWordsForAnOutcomeThatIsNotInTheTable)
{
    g_nRun = 0;
    const Detour detour(&RunAdbCommand, &RunWithUnknownOutcome);
    Enter(L"37777", L"123456");
    EXPECT_EQ(Next(), -1);
    ExpectBox(m_page.Window(), kUnexpected, L"Pairing Error");
    EXPECT_EQ(m_page.Text(kStatus), L"Unknown ADB Exit Code");
    EXPECT_EQ(g_nRun, 2);
}

BOOL HasNoText(const SOCKADDR* /*pAddress*/, CStringW& /*szAddress*/)
{
    return FALSE;
}

TEST_F(PairDevicePage, StaysWithoutAWordWhenTheAddressHasNoText)
{
    const Detour detour(&CWinSockHelper::AddressToString, &HasNoText);
    m_adb.Prints(kStopped);
    Enter(L"37777", L"123456");
    EXPECT_EQ(Next(), -1);
    EXPECT_EQ(Journal().back(), "ping 192.168.1.100");
    ExpectCode(L"000000");
}

TEST_F(PairDevicePage, RefusesAPortThatIsNoNumber)
{
    Enter(L"", L"123456");
    EXPECT_EQ(Next(), -1);
    ExpectBox(m_page.Window(), kBadPortText, kMethod);
    EXPECT_EQ(Journal(), (Lines{"status \"Stopping ADB server\"", BoxLine(kBadPortText)}));
}

TEST_F(PairDevicePage, ReadsThePortAsAnUnsignedNumberAndMindsWhetherItIsOne)
{
    Enter(L"37777", L"123456");
    const REPLACED(GetDlgItemInt) read([](HWND, int, BOOL* pbTranslated, BOOL) -> UINT {
        *pbTranslated = FALSE;
        return 37777;
    });
    EXPECT_EQ(Next(), -1);
    ExpectBox(m_page.Window(), kBadPortText, kMethod);
    EXPECT_EQ(read.Arg<0>(), m_page.Window());
    EXPECT_EQ(read.Arg<1>(), kPort);
    EXPECT_EQ(read.Arg<3>(), FALSE);
}

class PairDevicePortRange : public PairDevicePage, public testing::WithParamInterface<PCWSTR>
{
};

TEST_P(PairDevicePortRange, IsCheckedBeforeTheCode)
{
    Enter(GetParam(), L"");
    EXPECT_EQ(Next(), -1);
    ExpectBox(m_page.Window(), kPortRange, L"Invalid Port Value");
    EXPECT_EQ(Journal(), (Lines{"status \"Stopping ADB server\"", BoxLine(kPortRange)}));
}

INSTANTIATE_TEST_SUITE_P(Ports, PairDevicePortRange, testing::Values(L"0", L"999", L"1023", L"65536", L"99999"));

class PairDeviceBadCode : public PairDevicePage, public testing::WithParamInterface<PCWSTR>
{
};

TEST_P(PairDeviceBadCode, IsRefusedBeforeAnythingIsDone)
{
    Enter(L"37777", GetParam());
    EXPECT_EQ(Next(), -1);
    ExpectBox(m_page.Window(), kBadCode, L"Invalid Pairing Code");
    EXPECT_EQ(Journal(), (Lines{"status \"Stopping ADB server\"", BoxLine(kBadCode)}));
    ExpectCode(L"000000");
}

INSTANTIATE_TEST_SUITE_P(Codes, PairDeviceBadCode, testing::Values(L"", L"1", L"12345"));

TEST_F(PairDevicePage, ReadsSixCharactersOfTheCode)
{
    m_adb.Prints(kStopped).Prints(kPaired);
    Enter(L"37777", L"12345678");
    EXPECT_EQ(Next(), 0);
    EXPECT_EQ(m_adb.Commands()[1], L" pair 192.168.1.100:37777 123456");
    ExpectCode(L"123456");
}

TEST_F(PairDevicePage, StaysWhenTheServerCannotBeStopped)
{
    m_adb.Prints("what is this\r\n");
    Enter(L"37777", L"123456");
    EXPECT_EQ(Next(), -1);
    ExpectBox(m_page.Window(), kNotStopped, kMethod);
    EXPECT_EQ(Journal(),
              (Lines{"status \"Stopping ADB server\"", "sleep 2000", "adb kill-server", BoxLine(kNotStopped)}));
}

TEST_F(PairDevicePage, StaysWhenStoppingTheServerCannotBeJudged)
{
    m_adb.PrintsAndHidesItsExitCode(kStopped);
    Enter(L"37777", L"123456");
    EXPECT_EQ(Next(), -1);
    ExpectBox(m_page.Window(), kNotStopped, kMethod);
}

TEST_F(PairDevicePage, StaysWhenTheWatchDoesNotAnswer)
{
    m_watch.FallSilent();
    m_adb.Prints(kStopped);
    Enter(L"37777", L"123456");
    EXPECT_EQ(Next(), -1);
    const Box box = TakeBox();
    EXPECT_EQ(box.hwndOwner, m_page.Window());
    EXPECT_EQ(box.strCaption, L"Invalid IP address");
    Lines expected = SixPings("192.168.1.100");
    expected.emplace_back("status \"Unreachable\"");
    EXPECT_EQ(Lines(Journal().begin() + 3, Journal().end() - 1), expected);
    ExpectCode(L"000000");
}

TEST_F(PairDevicePage, BeginsAnewWithEveryNext)
{
    m_adb.Prints(kStopped).Prints(kFailed).Prints(kPaired);
    m_adb.Prints(kNoServer).Prints(kPaired);
    Enter(L"37777", L"123456");
    EXPECT_EQ(Next(), 0);
    Enter(L"37778", L"654321");
    EXPECT_EQ(Next(), 0);
    EXPECT_EQ(m_adb.Commands(), (std::vector<std::wstring>{L" kill-server", L" pair 192.168.1.100:37777 123456",
                                                           L" pair 192.168.1.100:37777 123456", L" kill-server",
                                                           L" pair 192.168.1.100:37778 654321"}));
    EXPECT_EQ(JournalOf({"status \"Pairing attempt 1 of 3\""}).size(), 2u);
    ExpectCode(L"654321");
}

// The user went back and gave another address: the page keeps showing the one it was made with.
TEST_F(PairDevicePage, PairsAtTheAddressOfTheDataAlsoWhenItShowsAnEarlierOne)
{
    m_page.Notify(PSN_SETACTIVE);
    reinterpret_cast<SOCKADDR_IN&>(m_data.m_saWatchAddress) = MakeAddress(L"10.0.0.7", 5555);
    m_page.Notify(PSN_SETACTIVE);
    DWORD dwShown = 0;
    SendDlgItemMessageW(m_page.Window(), kAddress, IPM_GETADDRESS, 0, reinterpret_cast<LPARAM>(&dwShown));
    EXPECT_EQ(dwShown, 0xC0A80164u);

    m_adb.Prints(kStopped).Prints(kPaired);
    Enter(L"37777", L"123456");
    EXPECT_EQ(Next(), 0);
    EXPECT_EQ(JournalOf({"ping 10.0.0.7"}).size(), 1u);
    EXPECT_EQ(m_adb.Commands().back(), L" pair 10.0.0.7:37777 123456");
}

TEST_F(PairDevicePage, KeepsAnEarlierCodeWhenALaterTryFails)
{
    m_adb.Prints(kStopped).Prints(kPaired);
    m_adb.Prints(kStopped).Prints(kWrongCode);
    Enter(L"37777", L"123456");
    EXPECT_EQ(Next(), 0);
    Enter(L"37777", L"654321");
    EXPECT_EQ(Next(), -1);
    TakeBox();
    ExpectCode(L"123456");
}

} // namespace
