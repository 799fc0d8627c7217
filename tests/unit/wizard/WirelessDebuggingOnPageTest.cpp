// The page that finds the watch.

#include "tests/unit/wizard/PageTest.h"

#include <netioapi.h>

#include <algorithm>
#include <cstring>

using namespace kit;

namespace {

constexpr int kBody = 1016;
constexpr int kAddress = 1018;
constexpr int kPort = 1030;
constexpr int kStatus = 1031;

constexpr PCSTR kBadAddress = "Please enter a valid IP Address, e.g. 192.168.1.100";
constexpr PCSTR kCouldNotConnect = "Could not connect to a watch at the IP address and port you entered.\n"
                                   "Please verify your workstation and watch are on the same network.\n"
                                   "Also verify you entered the correct IP address and port.\n\n"
                                   "If the above does not work, Steps to restart installation:\n"
                                   "1. Close this installer program.\n"
                                   "2. Power the watch off and then turn it on again.\n"
                                   "3. Run the installer program again.\n";

// What the journal has of a connection: seven attempts, or one that stands at once.
Lines Connecting(const std::string& strAddress, int nAttempts)
{
    Lines lines = {"connect " + strAddress};
    for (int n = 1; n <= nAttempts; ++n) {
        lines.push_back("status \"Connecting to " + strAddress + " (" + std::to_string(n) + " of 7)\"");
        lines.emplace_back("sleep 200");
    }
    return lines;
}

// A computer with this gateway.
class Gateway
{
public:
    explicit Gateway(PCWSTR pszGateway)
        : m_route(Quietly([pszGateway](NET_LUID*, NET_IFINDEX, const SOCKADDR_INET*, const SOCKADDR_INET*, ULONG,
                                       MIB_IPFORWARD_ROW2* pRoute, SOCKADDR_INET*) -> DWORD {
              pRoute->NextHop.Ipv4 = MakeAddress(pszGateway, 0);
              return NO_ERROR;
          }))
    {
    }

    size_t Lookups() const
    {
        return m_route.Calls();
    }

private:
    REPLACED(GetBestInterfaceEx) m_interface { Quietly(Returns(DWORD(NO_ERROR))) };
    REPLACED(GetBestRoute2) m_route;
};

class NewWirelessDebuggingOnPage : public PageTest
{
protected:
    NewWirelessDebuggingOnPage() : PageTest(kWirelessDebuggingOnPage) {}

    void Enter(PCWSTR pszAddress, PCWSTR pszPort)
    {
        const ULONG nAddress = ntohl(MakeAddress(pszAddress, 0).sin_addr.s_addr);
        SendDlgItemMessageW(m_page->Window(), kAddress, IPM_SETADDRESS, 0, static_cast<LPARAM>(nAddress));
        m_page->SetText(kPort, pszPort);
        m_page->TakeButtons();
    }

    Gateway m_gateway{L"10.0.0.1"};
};

TEST_F(NewWirelessDebuggingOnPage, BeginsTheAddressWithTheFirstThreeOctetsOfTheGateway)
{
    const std::pair<PCWSTR, PCWSTR> rows[] = {{L"192.168.1.1", L"192.168.1."},
                                              {L"10.0.0.1", L"10.0.0."},
                                              {L"172.16.255.254", L"172.16.255."},
                                              {L"255.255.255.255", L"255.255.255."},
                                              {L"0.0.0.0", L"0.0.0."}};
    for (const auto& [pszGateway, pszPrefilled] : rows) {
        SCOPED_TRACE(Narrow(pszGateway));
        const Gateway gateway(pszGateway);
        EXPECT_EQ(Open().TextsOf(kAddress), std::vector<std::wstring>{pszPrefilled});
    }
}

TEST_F(NewWirelessDebuggingOnPage, PutsTheFocusIntoTheLastFieldOfAPrefilledAddress)
{
    PageWindow& page = Open();
    EXPECT_EQ(page.InitResult(), FALSE);
    const std::vector<ControlMessage> messages = page.MessagesTo(kAddress, {WM_SETTEXT, WM_SETFOCUS, IPM_SETFOCUS});
    ASSERT_EQ(messages.size(), 2u);
    EXPECT_EQ(messages[0].nMessage, UINT{WM_SETTEXT});
    EXPECT_EQ(messages[1].nMessage, UINT{WM_SETFOCUS});

    page.Pump();
    const std::vector<ControlMessage> focus = page.MessagesTo(kAddress, {IPM_SETFOCUS});
    ASSERT_EQ(focus.size(), 1u);
    EXPECT_EQ(focus[0].wParam, 3u);
    EXPECT_EQ(focus[0].lParam, 0);
    EXPECT_EQ(GetParent(GetFocus()), page.Control(kAddress));
}

TEST_F(NewWirelessDebuggingOnPage, AsksForTheAddressAsTheControlWants)
{
    const std::vector<ControlMessage> questions = Open().MessagesTo(kAddress, {IPM_GETADDRESS});
    ASSERT_FALSE(questions.empty());
    for (const ControlMessage& question : questions) {
        EXPECT_EQ(question.wParam, 0u);
        EXPECT_NE(question.lParam, 0);
    }
}

TEST_F(NewWirelessDebuggingOnPage, LeavesAddressAndFocusAloneWithoutAGateway)
{
    const REPLACED(InetNtopW) text(Returns(PCWSTR(nullptr)));
    PageWindow& page = Open();
    EXPECT_EQ(page.InitResult(), TRUE);
    page.Pump();
    EXPECT_TRUE(page.TextsOf(kAddress).empty());
    EXPECT_TRUE(page.MessagesTo(kAddress, {IPM_SETFOCUS}).empty());
    EXPECT_EQ(m_gateway.Lookups(), 1u);
}

TEST_F(NewWirelessDebuggingOnPage, TakesAGatewayTextWithoutDotAsItIs)
{
    const REPLACED(InetNtopW) text([](INT, const void*, PWSTR psz, size_t) -> PCWSTR { return wcscpy(psz, L"home"); });
    const PageWindow& page = Open();
    EXPECT_EQ(page.TextsOf(kAddress), std::vector<std::wstring>{L"home"});
    EXPECT_EQ(page.InitResult(), FALSE);
}

TEST_F(NewWirelessDebuggingOnPage, DoesWithoutItsControls)
{
    for (const std::vector<int>& missing : {std::vector{kAddress}, {kBody, kAddress, kPort, kStatus}}) {
        SCOPED_TRACE(missing.size());
        PageWindow& page = Open(missing);
        EXPECT_EQ(page.InitResult(), TRUE);
        EXPECT_EQ(page.LastButtons(), kWithoutNext);
    }
    EXPECT_EQ(m_gateway.Lookups(), 0u);

    EXPECT_EQ(Open({kPort}).InitResult(), FALSE);
    EXPECT_EQ(m_page->LastButtons(), kWithoutNext);
    Enter(L"192.168.1.100", L"");
    m_page->Notify(PSN_SETACTIVE);
    EXPECT_EQ(m_page->LastButtons(), kWithoutNext);
}

TEST_F(NewWirelessDebuggingOnPage, LooksForTheGatewayOnlyOnce)
{
    PageWindow& page = Open();
    page.Notify(PSN_SETACTIVE);
    page.Notify(PSN_KILLACTIVE);
    page.Notify(PSN_SETACTIVE);
    EXPECT_EQ(m_gateway.Lookups(), 1u);
    EXPECT_EQ(page.TextsOf(kAddress).size(), 1u);
}

TEST_F(NewWirelessDebuggingOnPage, MakesThePortAnEmptyFieldOfFiveDigits)
{
    const REPLACED(SetWindowSubclass) subclass;
    Open();
    EXPECT_EQ(subclass.Calls(), 1u);
    ExpectDigitsField(kPort, L"98765", subclass, 0);
}

TEST_F(NewWirelessDebuggingOnPage, EndsTheProcessWhenThePortCannotBeMadeADigitsField)
{
    const REPLACED(SetWindowSubclass) subclass(Returns(FALSE));
    EXPECT_EQ(ExitCodeOf([this] { Open(); }), 1u);
    ExpectBox(L"CWirelessDebuggingOnPage::OnInitDialog()\nCIntegerEdit::SetWindowSubclass(hwndCtl, NULL)", L"Error");
}

TEST_F(NewWirelessDebuggingOnPage, EndsTheProcessOnAComputerWithoutIpv4)
{
    const REPLACED(GetBestInterfaceEx) interfaceTo(Returns(DWORD(ERROR_NOT_SUPPORTED)));
    EXPECT_EQ(ExitCodeOf([this] { Open(); }), 1u);
    ExpectBox(L"CWinSockHelper::GetDefaultGateway()\nIPv4 is not available on the local computer", L"Error");
}

TEST_F(NewWirelessDebuggingOnPage, EndsTheProcessWhenNoSocketCanBeMade)
{
    const REPLACED(socket) open(Returns(INVALID_SOCKET, WSAEMFILE));
    HWND hwndPage = nullptr;
    EXPECT_EQ(ExitCodeOf([&] {
                  hwndPage = Open().Window();
                  Enter(L"192.168.1.100", L"43210");
                  m_page->Notify(PSN_WIZNEXT);
              }),
              10024u);
    ExpectBox(hwndPage, L"CWirelessDebuggingOnPage::OnNotify_PSN_WIZNEXT_TcpConnect() > socket.Socket()", L"WSA Error");
}

// The page, with address and port.
class WirelessDebuggingOnPage : public NewWirelessDebuggingOnPage
{
protected:
    WirelessDebuggingOnPage()
    {
        Open();
        Enter(L"192.168.1.100", L"43210");
        Journal().clear();
    }

    // Leaves three of the address's fields.
    void ClearOneField() const
    {
        SetWindowTextW(GetWindow(m_page->Control(kAddress), GW_CHILD), L"");
    }

    // Next, with this box and nothing else.
    void ExpectRefusal(PCSTR pszCaption, PCSTR pszText, std::source_location where = std::source_location::current())
    {
        ExpectNext(-1, {}, {Told(pszCaption, pszText)}, where);
        EXPECT_TRUE(IsAddressUntouched());
    }
};

TEST_F(WirelessDebuggingOnPage, ShowsNextForAWholeAddressAndAPortOfFourDigits)
{
    const std::tuple<bool, PCWSTR, Buttons> rows[] = {{true, L"43210", kWithNext},     {true, L"1024", kWithNext},
                                                      {true, L"999", kWithoutNext},    {true, L"", kWithoutNext},
                                                      {false, L"43210", kWithoutNext}, {false, L"999", kWithoutNext}};
    for (const auto& [bWholeAddress, pszPort, buttons] : rows) {
        SCOPED_TRACE(Narrow(pszPort) + (bWholeAddress ? "" : " and three fields"));
        Enter(L"192.168.1.100", pszPort);
        if (!bWholeAddress) {
            ClearOneField();
            m_page->TakeButtons();
        }
        EXPECT_EQ(m_page->Notify(PSN_SETACTIVE), 0);
        EXPECT_EQ(m_page->Notify(IPN_FIELDCHANGED), 0);
        EXPECT_EQ(m_page->Command(kPort, EN_CHANGE), 0);
        EXPECT_EQ(m_page->TakeButtons(), (ButtonsList{buttons, buttons, buttons}));
    }
}

TEST_F(WirelessDebuggingOnPage, ShowsNextWithTheFourthDigitOfThePort)
{
    Enter(L"192.168.1.100", L"");
    m_page->Type(kPort, L"432");
    EXPECT_EQ(m_page->LastButtons(), kWithoutNext);
    m_page->Type(kPort, L"1");
    EXPECT_EQ(m_page->TakeButtons(), ButtonsList{kWithNext});
    m_page->Type(kPort, L"\b");
    EXPECT_EQ(m_page->TakeButtons(), ButtonsList{kWithoutNext});
}

TEST_F(WirelessDebuggingOnPage, AnswersAnyOtherCommandWithoutTouchingTheButtons)
{
    for (const int nNotification : {EN_UPDATE, EN_SETFOCUS, EN_KILLFOCUS, EN_MAXTEXT, BN_CLICKED}) {
        EXPECT_EQ(m_page->Command(kPort, nNotification), 0);
    }
    EXPECT_EQ(m_page->Command(kAddress, EN_CHANGE), 0);
    EXPECT_EQ(m_page->TakeButtons(), ButtonsList{});
}

TEST_F(WirelessDebuggingOnPage, StoresTheAddressOfAWatchThatAnswersBothProbes)
{
    // With every Next anew.
    for ([[maybe_unused]] const int nTime : {1, 2}) {
        ExpectNext(0, {}, {Ping(), Connecting("192.168.1.100:43210", 1), Status("")});
    }
    // Family, port and address in network order and eight zeros; nothing behind them.
    const BYTE stored[16] = {2, 0, 0xA8, 0xCA, 192, 168, 1, 100};
    EXPECT_EQ(std::memcmp(&m_data.m_saWatchAddress, stored, 16), 0);
    const auto* pBehind = reinterpret_cast<const BYTE*>(&m_data.m_saWatchAddress) + 16;
    EXPECT_TRUE(std::all_of(pBehind, pBehind + 112, [](BYTE b) { return b == 0xA5; }));
    EXPECT_STREQ(m_data.m_szPairingCode, L"000000");
}

TEST_F(WirelessDebuggingOnPage, RefusesAnAddressThatIsNotWholeBeforeItLooksAtThePort)
{
    Enter(L"192.168.1.100", L"1");
    ClearOneField();
    ExpectRefusal("Invalid IP Address", kBadAddress);
    Enter(L"192.168.1.100", L"43210");
    SendDlgItemMessageW(m_page->Window(), kAddress, IPM_CLEARADDRESS, 0, 0);
    ExpectRefusal("Invalid IP Address", kBadAddress);
}

TEST_F(WirelessDebuggingOnPage, RefusesABadPortBeforeAnyProbe)
{
    for (const PCWSTR pszPort : {L"1023", L"65536", L"999", L"99999", L"0", L"", L"4x10", L"-4000", L"4294968320"}) {
        SCOPED_TRACE(Narrow(pszPort));
        Enter(L"192.168.1.100", pszPort);
        ExpectRefusal("Invalid Port Value", kPortRange);
    }
}

TEST_F(WirelessDebuggingOnPage, ReadsThePortAsAnUnsignedNumberAndMindsWhetherItIsOne)
{
    const REPLACED(GetDlgItemInt) read(Quietly([](HWND, int, BOOL* pbTranslated, BOOL) -> UINT {
        *pbTranslated = FALSE;
        return 43210;
    }));
    ExpectRefusal("Invalid Port Value", kPortRange);
    EXPECT_EQ(read.Arguments(), std::tuple(m_page->Window(), kPort, kAny, FALSE));
}

TEST_F(WirelessDebuggingOnPage, TriesAndStoresAPortFrom1024To65535)
{
    const std::pair<PCWSTR, u_short> rows[] = {{L"1024", 1024}, {L"65535", 65535}, {L"01024", 1024}};
    for (const auto& [pszPort, nPort] : rows) {
        Enter(L"192.168.1.100", pszPort);
        ExpectNext(0, {}, {Ping(), Connecting("192.168.1.100:" + std::to_string(nPort), 1), Status("")});
        EXPECT_EQ(reinterpret_cast<const SOCKADDR_IN&>(m_data.m_saWatchAddress).sin_port, htons(nPort));
    }
}

TEST_F(WirelessDebuggingOnPage, LeavesTheWorthOfAnAddressToTheProbes)
{
    for (const std::string strAddress : {"0.0.0.0", "255.255.255.255"}) {
        Enter(std::wstring(strAddress.begin(), strAddress.end()).c_str(), L"43210");
        ExpectNext(0, {},
                   {Status("Pinging " + strAddress + " (1 of 6)"),
                    {"ping " + strAddress},
                    Connecting(strAddress + ":43210", 1),
                    Status("")});
    }
}

TEST_F(WirelessDebuggingOnPage, StaysWhenTheWatchDoesNotAnswerAndDoesNotTryItsPort)
{
    m_watch.m_echoes = {kSilence};
    ExpectNext(-1, {}, {NoAnswer()});
    EXPECT_TRUE(IsAddressUntouched());
}

TEST_F(WirelessDebuggingOnPage, StaysWhenTheWatchDoesNotAcceptTheConnection)
{
    m_watch.m_polls = {kRefused};
    ExpectNext(-1, {},
               {Ping(), Connecting("192.168.1.100:43210", 7), Status("Could not connect to 192.168.1.100:43210"),
                Told("Wireless Debugging Connection", kCouldNotConnect)});
    EXPECT_TRUE(IsAddressUntouched());
}

TEST_F(WirelessDebuggingOnPage, KeepsAnEarlierAddressWhenALaterTryFails)
{
    EXPECT_EQ(m_page->Notify(PSN_WIZNEXT), 0);
    const SOCKADDR_STORAGE stored = m_data.m_saWatchAddress;

    Enter(L"192.168.1.101", L"1023");
    EXPECT_EQ(m_page->Notify(PSN_WIZNEXT), -1);
    Enter(L"192.168.1.101", L"43211");
    m_watch.m_polls = {kRefused};
    EXPECT_EQ(m_page->Notify(PSN_WIZNEXT), -1);
    m_watch.m_echoes = {kSilence};
    EXPECT_EQ(m_page->Notify(PSN_WIZNEXT), -1);
    for (const PCWSTR pszCaption : {L"Invalid Port Value", L"Wireless Debugging Connection", L"Invalid IP address"}) {
        EXPECT_EQ(TakeBox().strCaption, pszCaption);
    }
    EXPECT_EQ(std::memcmp(&m_data.m_saWatchAddress, &stored, sizeof(stored)), 0);
}

} // namespace
