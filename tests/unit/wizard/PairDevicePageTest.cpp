// The page that pairs this computer with the watch.

#include "adb/AdbCommands.h"
#include "net/WinSockHelper.h"

#include "tests/unit/wizard/Detour.h"
#include "tests/unit/wizard/PageTest.h"

#include <cstring>

using namespace kit;

namespace {

constexpr int kCode = 1032;
constexpr int kAddress = 1035;
constexpr int kPort = 1036;
constexpr int kSkip = 1037;

constexpr PCSTR kBadPort =
    "Somehow you entered an invalid port number.\n\n"
    "Please enter a valid value (1024 through 65535) the port number and let us know how you managed to enter an "
    "invalid value.";
constexpr PCSTR kBadCode =
    "You have entered an invalid pairing code.\n\n"
    "Please enter a valid six digit pair code value (000000 through 999999).  Please also report to KALVO how caused "
    "this error.";
constexpr PCSTR kCouldNotConnect = "Could not connect to a watch at the IP address and port you entered.\n\n"
                                   "Verify you entered the correct IP address and pairing port.\n\n"
                                   "If the IP address and pairing port are correct, then:\n"
                                   "1. Pressing the Cancel button on the watch for pairing\n"
                                   "2. Repeat the pairing process using the new values.\n\n"
                                   "If the above does not work, Steps to restart installation:\n"
                                   "1. Close this installer program.\n"
                                   "2. Power the watch off and then turn it on again.\n"
                                   "3. Run the installer program again.\n";
constexpr PCSTR kMethod = "CPairDevicePage::OnNotify_PSN_WIZNEXT_Pair";

constexpr PCSTR kPaired = "* daemon not running; starting now at tcp:5037\r\n* daemon started successfully\r\n"
                          "Successfully paired to 192.168.1.100:37777 [guid=adb-R5CW-1]\r\n";
constexpr PCSTR kAlreadyPaired = "";
constexpr PCSTR kFailed = "Failed: Unable to start pairing client.\r\n";
constexpr PCSTR kWrongCode = "Failed: Wrong password or connection was dropped.\r\n";

// What the journal has of each step.

Lines Stopping()
{
    return {"status \"Stopping ADB server\"", "sleep 2000", "adb kill-server"};
}

Lines Pairing(int nAttempt, const std::string& strArguments = "192.168.1.100:37777 123456")
{
    return {"status \"Pairing " + Attempt(nAttempt) + '"', "sleep 2000", "adb pair " + strArguments};
}

Lines Unexpected()
{
    return Told("Pairing Error", "An unexpected error has occurred, please send a screenshot of this message to KALVO");
}

class NewPairDevicePage : public PageTest
{
protected:
    NewPairDevicePage() : PageTest(kPairDevicePage) {}

    DWORD ShownAddress() const
    {
        DWORD dwAddress = 0;
        EXPECT_EQ(
            SendDlgItemMessageW(m_page->Window(), kAddress, IPM_GETADDRESS, 0, reinterpret_cast<LPARAM>(&dwAddress)),
            4);
        return dwAddress;
    }

    void ExpectEndOfOpening(const std::wstring& strReason)
    {
        EXPECT_EQ(ExitCodeOf([this] { Open(); }), 1u);
        ExpectBox(L"CPairDevicePage::OnInitDialog()\n" + strReason, L"Error");
    }
};

TEST_F(NewPairDevicePage, ShowsTheWatchsAddressWhereItCannotBeEdited)
{
    const PageWindow& page = Open();
    EXPECT_EQ(ShownAddress(), 0xC0A80164u);
    EXPECT_FALSE(IsWindowEnabled(page.Control(kAddress)));
    EXPECT_EQ(page.MessagesTo(kAddress, {IPM_SETADDRESS}).size(), 1u);
}

TEST_F(NewPairDevicePage, EndsTheProcessForAnAddressOtherThanIpv4)
{
    const REPLACED(SetWindowSubclass) subclass(Never());
    for (const ADDRESS_FAMILY nFamily : std::vector<ADDRESS_FAMILY>{0, 23}) {
        SCOPED_TRACE(nFamily);
        m_data.m_saWatchAddress.ss_family = nFamily;
        ExpectEndOfOpening(L"Invalid IP address type, e.g. IPv6");
    }
}

TEST_F(NewPairDevicePage, DoesWithoutItsControls)
{
    EXPECT_EQ(Open({kPort, kCode}).TakeButtons(), ButtonsList{kWithoutNext});
    EXPECT_EQ(m_page->InitResult(), TRUE);
    // Without a place for the address nobody minds its family.
    m_data.m_saWatchAddress.ss_family = AF_INET6;
    EXPECT_EQ(Open({kAddress}).InitResult(), TRUE);
}

TEST_F(NewPairDevicePage, MakesPortAndCodeEmptyFieldsOfFiveAndSixDigits)
{
    const REPLACED(SetWindowSubclass) subclass;
    Open();
    EXPECT_EQ(subclass.Calls(), 2u);
    ExpectDigitsField(kPort, L"98765", subclass, 0);
    ExpectDigitsField(kCode, L"987654", subclass, 1);
}

TEST_F(NewPairDevicePage, EndsTheProcessWhenAnEditCannotBeMadeADigitsField)
{
    {
        const REPLACED(SetWindowSubclass) subclass(Returns(FALSE));
        ExpectEndOfOpening(L"CIntegerEdit::SetWindowSubclass(PORT, NULL)");
        EXPECT_EQ(subclass.Calls(), 1u);
    }
    const REPLACED(SetWindowSubclass) subclass(InTurn(PassOn(), Returns(FALSE)));
    ExpectEndOfOpening(L"CIntegerEdit::SetWindowSubclass(CODE, NULL)");
}

// The page, with port and code.
class PairDevicePage : public NewPairDevicePage
{
protected:
    PairDevicePage()
    {
        Open();
        Enter(L"37777", L"123456");
        Journal().clear();
    }

    void Enter(PCWSTR pszPort, PCWSTR pszCode)
    {
        m_page->SetText(kPort, pszPort);
        m_page->SetText(kCode, pszCode);
        m_page->TakeButtons();
    }

    // The texts of both edits and whether they can be changed.
    void ExpectEdits(PCWSTR pszPort, PCWSTR pszCode, bool bEnabled)
    {
        EXPECT_EQ(m_page->Text(kPort), pszPort);
        EXPECT_EQ(m_page->Text(kCode), pszCode);
        EXPECT_EQ(IsWindowEnabled(m_page->Control(kPort)) != FALSE, bEnabled);
        EXPECT_EQ(IsWindowEnabled(m_page->Control(kCode)) != FALSE, bEnabled);
        EXPECT_FALSE(IsWindowEnabled(m_page->Control(kAddress)));
    }

    // Next, with these runs of adb once the server is stopped and the watch has answered.
    void ExpectPairing(LRESULT nAnswer, std::vector<AdbRun> runs, std::vector<Lines> course, PCWSTR pszStoredCode,
                       std::source_location where = std::source_location::current())
    {
        runs.insert(runs.begin(), kStopped);
        course.insert(course.begin(), {Stopping(), Ping()});
        ExpectNext(nAnswer, runs, course, where);
        EXPECT_STREQ(m_data.m_szPairingCode, pszStoredCode) << "at line " << where.line();
        EXPECT_TRUE(IsAddressUntouched());
    }

    // Next pairs at once with what was entered.
    void ExpectPaired(PCWSTR pszPort, PCWSTR pszCode)
    {
        Enter(pszPort, pszCode);
        const std::string strTarget = "192.168.1.100:" + Narrow(pszPort);
        ExpectPairing(0, {kPaired},
                      {Pairing(1, strTarget + ' ' + Narrow(pszCode)),
                       Status("Pairing to " + strTarget + " | " + Narrow(pszCode))},
                      pszCode);
    }
};

TEST_F(PairDevicePage, ShowsNextForPortAndCodeOfTheRightLength)
{
    const std::tuple<PCWSTR, PCWSTR, Buttons> rows[] = {
        {L"37777", L"123456", kWithNext},     {L"3777", L"123456", kWithNext},
        {L"377", L"123456", kWithoutNext},    {L"37777", L"12345", kWithoutNext},
        {L"37777", L"1234567", kWithoutNext}, {L"", L"123456", kWithoutNext},
        {L"37777", L"", kWithoutNext},        {L"", L"", kWithoutNext}};
    for (const auto& [pszPort, pszCode, buttons] : rows) {
        SCOPED_TRACE(Narrow(pszPort) + ' ' + Narrow(pszCode));
        Enter(pszPort, pszCode);
        EXPECT_EQ(m_page->Notify(PSN_SETACTIVE), 0);
        EXPECT_EQ(m_page->Command(kPort, EN_CHANGE), 0);
        EXPECT_EQ(m_page->Command(kCode, EN_CHANGE), 0);
        EXPECT_EQ(m_page->TakeButtons(), (ButtonsList{buttons, buttons, buttons}));
    }
}

TEST_F(PairDevicePage, ShowsNextWithTheLastDigitOfTheCode)
{
    Enter(L"", L"");
    m_page->Type(kPort, L"37777");
    m_page->Type(kCode, L"12345");
    EXPECT_EQ(m_page->LastButtons(), kWithoutNext);
    m_page->Type(kCode, L"6");
    EXPECT_EQ(m_page->TakeButtons(), ButtonsList{kWithNext});
    m_page->Type(kPort, L"\b\b");
    EXPECT_EQ(m_page->LastButtons(), kWithoutNext);
}

TEST_F(PairDevicePage, EmptiesAndDisablesItsEditsWhileTheStepIsSkipped)
{
    m_page->Click(kSkip);
    ExpectEdits(L"", L"", false);
    EXPECT_EQ(m_page->LastButtons(), kWithNext);
    EXPECT_EQ(m_page->Notify(PSN_SETACTIVE), 0);
    EXPECT_EQ(m_page->TakeButtons(), ButtonsList{kWithNext});
    m_page->Click(kSkip);
    ExpectEdits(L"", L"", true);
    EXPECT_EQ(m_page->TakeButtons(), ButtonsList{kWithoutNext});
}

TEST_F(PairDevicePage, LeavesTheTextsWhenTheBoxIsUnticked)
{
    EXPECT_EQ(m_page->Command(kSkip, BN_CLICKED), 0);
    ExpectEdits(L"37777", L"123456", true);
    EXPECT_EQ(m_page->TakeButtons(), ButtonsList{kWithNext});
}

TEST_F(PairDevicePage, MovesOnWithoutAdbWhenTheStepIsSkipped)
{
    m_page->Click(kSkip);
    ExpectNext(0, {}, {Status("Stopping ADB server")});
    EXPECT_STREQ(m_data.m_szPairingCode, L"000000");
}

TEST_F(PairDevicePage, AnswersAnyOtherCommandWithoutDoingAnything)
{
    for (const int nEditId : {kPort, kCode}) {
        for (const int nNotification : {EN_UPDATE, EN_SETFOCUS, EN_KILLFOCUS, EN_MAXTEXT, BN_CLICKED}) {
            EXPECT_EQ(m_page->Command(nEditId, nNotification), 0);
        }
    }
    SendDlgItemMessageW(m_page->Window(), kSkip, BM_SETCHECK, BST_CHECKED, 0);
    EXPECT_EQ(m_page->Command(kSkip, BN_DOUBLECLICKED), 0);
    EXPECT_EQ(m_page->Command(kSkip, EN_CHANGE), 0);
    EXPECT_EQ(m_page->Command(kAddress, EN_CHANGE), 0);
    ExpectEdits(L"37777", L"123456", true);
    EXPECT_EQ(m_page->TakeButtons(), ButtonsList{});
}

// Whether or not there was a server to stop.
TEST_F(PairDevicePage, PairsAndStoresTheCode)
{
    for (const PCSTR pszStop : {kStopped, kNoServer}) {
        ExpectNext(0, {pszStop, kPaired},
                   {Stopping(), Ping(), Pairing(1), Status("Pairing to 192.168.1.100:37777 | 123456")});
        EXPECT_STREQ(m_data.m_szPairingCode, L"123456");
        m_data.m_szPairingCode[0] = L'\0';
    }
}

TEST_F(PairDevicePage, PairsWithTheWatchsAddressAndThePairingPort)
{
    const REPLACED(WSAAddressToStringW)
        convert(Quietly([](SOCKADDR* pAddress, DWORD cb, WSAPROTOCOL_INFOW* pInfo, PWSTR psz, DWORD* pcch) {
            // The rest of the address is zero, whatever is behind that of the watch.
            const SOCKADDR_IN expected = MakeAddress(L"192.168.1.100", 1024);
            EXPECT_EQ(cb, sizeof(expected));
            EXPECT_EQ(std::memcmp(pAddress, &expected, sizeof(expected)), 0);
            return REPLACED(WSAAddressToStringW)::Real(pAddress, cb, pInfo, psz, pcch);
        }));
    ExpectPaired(L"1024", L"000001");
    EXPECT_EQ(convert.Calls(), 1u);
}

TEST_F(PairDevicePage, TakesTheHighestPort)
{
    ExpectPaired(L"65535", L"999999");
}

TEST_F(PairDevicePage, TakesAWatchThatIsAlreadyPairedForSuccess)
{
    ExpectPairing(0, {kAlreadyPaired}, {Pairing(1), Status("Pairing to 192.168.1.100:37777 | 123456")}, L"123456");
}

TEST_F(PairDevicePage, TriesThreeTimesAndThenTellsOnce)
{
    ExpectPairing(-1, {kFailed, kFailed, kFailed},
                  {Pairing(1), Pairing(2), Pairing(3), Status("adb pair - pair failed"),
                   Told("Pair Connection", kCouldNotConnect)},
                  L"000000");
    // Begins anew, and succeeds with the last attempt.
    ExpectPairing(0, {kFailed, kFailed, kPaired},
                  {Pairing(1), Pairing(2), Pairing(3), Status("Pairing to 192.168.1.100:37777 | 123456")}, L"123456");
}

TEST_F(PairDevicePage, TellsAnUnexpectedOutcomeAndDoesNotTryAgain)
{
    ExpectPairing(-1, {kWrongCode}, {Pairing(1), Unexpected(), Status("Error parsing command output")}, L"000000");
    ExpectPairing(-1, {kFailed, kWrongCode},
                  {Pairing(1), Pairing(2), Unexpected(), Status("Error parsing command output")}, L"000000");
    ExpectPairing(-1, {{kPaired, false}}, {Pairing(1), Unexpected(), Status("CConsoleProcess::GetExitCode() failed")},
                  L"000000");
}

TEST_F(PairDevicePage, HasWordsForAnOutcomeThatIsNotInTheTable)
{
    const Detour detour(&Pair, +[](PCWSTR, PCWSTR, std::string*) { return static_cast<ADB_EXIT_CODE>(7); });
    ExpectPairing(-1, {}, {{Pairing(1).front()}, Unexpected(), Status("Unknown ADB Exit Code")}, L"000000");
}

TEST_F(PairDevicePage, StaysWithoutAWordWhenTheAddressHasNoText)
{
    const Detour detour(&CWinSockHelper::AddressToString, +[](const SOCKADDR*, CStringW&) -> BOOL { return FALSE; });
    ExpectPairing(-1, {}, {}, L"000000");
}

TEST_F(PairDevicePage, RefusesAPortThatIsNoNumber)
{
    Enter(L"", L"123456");
    ExpectNext(-1, {}, {Status("Stopping ADB server"), Told(kMethod, kBadPort)});
}

TEST_F(PairDevicePage, ReadsThePortAsAnUnsignedNumberAndMindsWhetherItIsOne)
{
    const REPLACED(GetDlgItemInt) read(Quietly([](HWND, int, BOOL* pbTranslated, BOOL) -> UINT {
        *pbTranslated = FALSE;
        return 37777;
    }));
    ExpectNext(-1, {}, {Status("Stopping ADB server"), Told(kMethod, kBadPort)});
    EXPECT_EQ(read.Arguments(), std::tuple(m_page->Window(), kPort, kAny, FALSE));
}

TEST_F(PairDevicePage, RefusesAPortOutOfRangeBeforeItLooksAtTheCode)
{
    for (const PCWSTR pszPort : {L"0", L"999", L"1023", L"65536", L"99999"}) {
        SCOPED_TRACE(Narrow(pszPort));
        Enter(pszPort, L"");
        ExpectNext(-1, {}, {Status("Stopping ADB server"), Told("Invalid Port Value", kPortRange)});
    }
}

TEST_F(PairDevicePage, RefusesACodeOfFewerThanSixDigitsBeforeAnythingIsDone)
{
    for (const PCWSTR pszCode : {L"", L"1", L"12345"}) {
        SCOPED_TRACE(Narrow(pszCode));
        Enter(L"37777", pszCode);
        ExpectNext(-1, {}, {Status("Stopping ADB server"), Told("Invalid Pairing Code", kBadCode)});
    }
    EXPECT_STREQ(m_data.m_szPairingCode, L"000000");
}

TEST_F(PairDevicePage, ReadsSixCharactersOfTheCode)
{
    Enter(L"37777", L"12345678");
    ExpectPairing(0, {kPaired}, {Pairing(1), Status("Pairing to 192.168.1.100:37777 | 123456")}, L"123456");
}

TEST_F(PairDevicePage, StaysWhenTheServerCannotBeStopped)
{
    for (const AdbRun& run : std::vector<AdbRun>{"what is this\r\n", {kStopped, false}}) {
        SCOPED_TRACE(run.strOutput);
        ExpectNext(-1, {run}, {Stopping(), Told(kMethod, kNotStopped)});
    }
}

TEST_F(PairDevicePage, StaysWhenTheWatchDoesNotAnswer)
{
    m_watch.m_echoes = {kSilence};
    ExpectNext(-1, {kStopped}, {Stopping(), NoAnswer()});
    EXPECT_STREQ(m_data.m_szPairingCode, L"000000");
}

// The user went back and gave another address: the page keeps showing the one it was made with.
TEST_F(PairDevicePage, PairsAtTheAddressOfTheDataAlsoWhenItShowsAnEarlierOne)
{
    m_page->Notify(PSN_SETACTIVE);
    reinterpret_cast<SOCKADDR_IN&>(m_data.m_saWatchAddress) = MakeAddress(L"10.0.0.7", 5555);
    m_page->Notify(PSN_SETACTIVE);
    EXPECT_EQ(ShownAddress(), 0xC0A80164u);
    ExpectNext(0, {kStopped, kPaired},
               {Stopping(),
                {"status \"Pinging 10.0.0.7 (1 of 6)\"", "ping 10.0.0.7"},
                Pairing(1, "10.0.0.7:37777 123456"),
                Status("Pairing to 10.0.0.7:37777 | 123456")});
}

TEST_F(PairDevicePage, KeepsAnEarlierCodeWhenALaterTryFails)
{
    ExpectPaired(L"37778", L"654321");
    Enter(L"37777", L"123456");
    ExpectPairing(-1, {kWrongCode}, {Pairing(1), Unexpected(), Status("Error parsing command output")}, L"654321");
}

} // namespace
