// The page that finds the watch.

#include "wizard/WirelessDebuggingOnPage.h"

#include "wizard/IntegerEdit.h"

#include "tests/unit/wizard/AnsweringWatch.h"
#include "tests/unit/wizard/PageWindow.h"

#include <netioapi.h>

#include <cstring>

using namespace kit;

namespace {

constexpr int kBody = 1016;
constexpr int kAddress = 1018;
constexpr int kPort = 1030;
constexpr int kStatus = 1031;

constexpr PCWSTR kCouldNotConnect = L"Could not connect to a watch at the IP address and port you entered.\n"
                                    L"Please verify your workstation and watch are on the same network.\n"
                                    L"Also verify you entered the correct IP address and port.\n\n"
                                    L"If the above does not work, Steps to restart installation:\n"
                                    L"1. Close this installer program.\n"
                                    L"2. Power the watch off and then turn it on again.\n"
                                    L"3. Run the installer program again.\n";

constexpr PCWSTR kPortRange = L"Please enter a port value in the range of 1024 through 65535.";

// A computer with this gateway; with none when there is no text of it.
class Gateway
{
public:
    explicit Gateway(PCWSTR pszGateway)
        : m_interface(Returns(DWORD(NO_ERROR))),
          m_route([pszGateway](NET_LUID*, NET_IFINDEX, const SOCKADDR_INET*, const SOCKADDR_INET*, ULONG,
                               MIB_IPFORWARD_ROW2* pRoute, SOCKADDR_INET*) -> DWORD {
              pRoute->NextHop.Ipv4 = MakeAddress(pszGateway, 0);
              return NO_ERROR;
          })
    {
        m_interface.Optional().Unnoted();
        m_route.Optional().Unnoted();
    }

    size_t Lookups() const
    {
        return m_route.Calls();
    }

private:
    Sockets m_sockets;
    REPLACED(GetBestInterfaceEx) m_interface;
    REPLACED(GetBestRoute2) m_route;
};

class NewWirelessDebuggingOnPage : public Test
{
protected:
    CWizardData m_data;
};

TEST_F(NewWirelessDebuggingOnPage, LoadsItsTextAndKeepsTheData)
{
    const Gateway gateway(L"192.168.1.1");
    const PageWindow page(204, CWirelessDebuggingOnPage::DialogProc, m_data);
    EXPECT_EQ(GetWindowLongPtrW(page.Window(), GWLP_USERDATA), reinterpret_cast<LONG_PTR>(&m_data));
    const std::wstring strBody = page.Text(kBody);
    EXPECT_TRUE(strBody.starts_with(L"Wireless debugging needs to be enabled on the watch for the installation."));
    EXPECT_TRUE(strBody.ends_with(
        L"Important - if the watch's IP subnet does not match the IP subnet shown below, then your watch might not be "
        L"on the same network as your computer."));
    EXPECT_EQ(page.Text(kStatus), L"Enter watch IP address and port, then press next.");
}

TEST_F(NewWirelessDebuggingOnPage, KeepsTheTextOfTheTemplateWhenNoneCanBeLoaded)
{
    const Gateway gateway(L"192.168.1.1");
    const REPLACED(LoadStringW) load(Returns(0));
    const PageWindow page(204, CWirelessDebuggingOnPage::DialogProc, m_data);
    EXPECT_EQ(page.Text(kBody), L"Static");
    EXPECT_EQ(load.Arg<1>(), 223u);
}

struct Prefill
{
    PCWSTR pszGateway;
    PCWSTR pszPrefilled;
};

class WirelessDebuggingOnPrefill : public NewWirelessDebuggingOnPage, public testing::WithParamInterface<Prefill>
{
};

TEST_P(WirelessDebuggingOnPrefill, IsTheFirstThreeOctetsOfTheGateway)
{
    const Gateway gateway(GetParam().pszGateway);
    const PageWindow page(204, CWirelessDebuggingOnPage::DialogProc, m_data);
    EXPECT_EQ(page.TextsOf(kAddress), std::vector<std::wstring>{GetParam().pszPrefilled});
}

INSTANTIATE_TEST_SUITE_P(Gateways, WirelessDebuggingOnPrefill,
                         testing::Values(Prefill{L"192.168.1.1", L"192.168.1."}, Prefill{L"10.0.0.1", L"10.0.0."},
                                         Prefill{L"172.16.255.254", L"172.16.255."},
                                         Prefill{L"255.255.255.255", L"255.255.255."}, Prefill{L"0.0.0.0", L"0.0.0."}));

TEST_F(NewWirelessDebuggingOnPage, PutsTheFocusIntoTheLastFieldOfAPrefilledAddress)
{
    const Gateway gateway(L"10.0.0.1");
    PageWindow page(204, CWirelessDebuggingOnPage::DialogProc, m_data);
    EXPECT_EQ(page.InitResult(), FALSE);
    EXPECT_EQ(page.MessagesTo(kAddress, WM_SETFOCUS).size(), 1u);

    EXPECT_TRUE(page.MessagesTo(kAddress, IPM_SETFOCUS).empty());
    page.Pump();
    const std::vector<ControlMessage> focus = page.MessagesTo(kAddress, IPM_SETFOCUS);
    ASSERT_EQ(focus.size(), 1u);
    EXPECT_EQ(focus[0].wParam, 3u);
    EXPECT_EQ(focus[0].lParam, 0);
    EXPECT_EQ(GetParent(GetFocus()), page.Control(kAddress));
}

TEST_F(NewWirelessDebuggingOnPage, PrefillsTheAddressBeforeItPutsTheFocusIntoIt)
{
    const Gateway gateway(L"10.0.0.1");
    const PageWindow page(204, CWirelessDebuggingOnPage::DialogProc, m_data);
    const std::vector<ControlMessage> messages = page.MessagesTo(kAddress, {WM_SETTEXT, WM_SETFOCUS});
    ASSERT_EQ(messages.size(), 2u);
    EXPECT_EQ(messages[0].nMessage, UINT{WM_SETTEXT});
    EXPECT_EQ(messages[1].nMessage, UINT{WM_SETFOCUS});
}

TEST_F(NewWirelessDebuggingOnPage, AsksForTheAddressAsTheControlWants)
{
    const Gateway gateway(L"10.0.0.1");
    const PageWindow page(204, CWirelessDebuggingOnPage::DialogProc, m_data);
    const std::vector<ControlMessage> questions = page.MessagesTo(kAddress, IPM_GETADDRESS);
    ASSERT_FALSE(questions.empty());
    for (const ControlMessage& question : questions) {
        EXPECT_EQ(question.wParam, 0u);
        EXPECT_NE(question.lParam, 0);
    }
}

TEST_F(NewWirelessDebuggingOnPage, LeavesAddressAndFocusAloneWithoutAGateway)
{
    Gateway gateway(L"10.0.0.1");
    const REPLACED(InetNtopW) text(Returns(PCWSTR(nullptr)));
    PageWindow page(204, CWirelessDebuggingOnPage::DialogProc, m_data);
    EXPECT_EQ(page.InitResult(), TRUE);
    page.Pump();
    EXPECT_TRUE(page.TextsOf(kAddress).empty());
    EXPECT_TRUE(page.MessagesTo(kAddress, IPM_SETFOCUS).empty());
    EXPECT_EQ(gateway.Lookups(), 1u);
}

TEST_F(NewWirelessDebuggingOnPage, TakesAGatewayTextWithoutDotAsItIs)
{
    const Gateway gateway(L"10.0.0.1");
    const REPLACED(InetNtopW) text([](INT, const void*, PWSTR psz, size_t) -> PCWSTR { return wcscpy(psz, L"home"); });
    const PageWindow page(204, CWirelessDebuggingOnPage::DialogProc, m_data);
    EXPECT_EQ(page.TextsOf(kAddress), std::vector<std::wstring>{L"home"});
    EXPECT_EQ(page.InitResult(), FALSE);
}

TEST_F(NewWirelessDebuggingOnPage, DoesNotLookForTheGatewayWithoutAnAddressControl)
{
    const Gateway gateway(L"10.0.0.1");
    PageWindow page(204, CWirelessDebuggingOnPage::DialogProc, m_data, {kAddress});
    EXPECT_EQ(page.InitResult(), TRUE);
    EXPECT_EQ(gateway.Lookups(), 0u);
    EXPECT_EQ(page.LastButtons(), kWithoutNext);
}

TEST_F(NewWirelessDebuggingOnPage, HidesNextAlsoWithoutItsControls)
{
    PageWindow page(204, CWirelessDebuggingOnPage::DialogProc, m_data, {kBody, kAddress, kPort, kStatus});
    EXPECT_EQ(page.InitResult(), TRUE);
    EXPECT_EQ(page.TakeButtons(), ButtonsList{kWithoutNext});
}

TEST_F(NewWirelessDebuggingOnPage, DoesWithoutItsPort)
{
    const Gateway gateway(L"10.0.0.1");
    PageWindow page(204, CWirelessDebuggingOnPage::DialogProc, m_data, {kPort});
    EXPECT_EQ(page.InitResult(), FALSE);
    EXPECT_EQ(page.LastButtons(), kWithoutNext);
    SendDlgItemMessageW(page.Window(), kAddress, IPM_SETADDRESS, 0, 0xC0A80164);
    page.Notify(PSN_SETACTIVE);
    EXPECT_EQ(page.LastButtons(), kWithoutNext);
}

TEST_F(NewWirelessDebuggingOnPage, LooksForTheGatewayOnlyOnce)
{
    const Gateway gateway(L"10.0.0.1");
    PageWindow page(204, CWirelessDebuggingOnPage::DialogProc, m_data);
    page.Notify(PSN_SETACTIVE);
    page.Notify(PSN_KILLACTIVE);
    page.Notify(PSN_SETACTIVE);
    EXPECT_EQ(gateway.Lookups(), 1u);
    EXPECT_EQ(page.TextsOf(kAddress).size(), 1u);
}

TEST_F(NewWirelessDebuggingOnPage, MakesThePortAnEmptyFieldOfFiveDigits)
{
    const Gateway gateway(L"10.0.0.1");
    const REPLACED(SetWindowSubclass) subclass;
    PageWindow page(204, CWirelessDebuggingOnPage::DialogProc, m_data);
    const HWND hwndPort = page.Control(kPort);
    ASSERT_EQ(subclass.Calls(), 1u);
    EXPECT_EQ(subclass.Arg<0>(), hwndPort);
    EXPECT_EQ(subclass.Arg<1>(), &CIntegerEdit::SubclassProc);
    EXPECT_EQ(subclass.Arg<2>(), reinterpret_cast<UINT_PTR>(hwndPort));
    EXPECT_EQ(subclass.Arg<3>(), 0u);
    const std::vector<ControlMessage> limits = page.MessagesTo(kPort, EM_LIMITTEXT);
    ASSERT_EQ(limits.size(), 1u);
    EXPECT_EQ(limits[0].wParam, 5u);
    EXPECT_EQ(page.TextsOf(kPort), std::vector<std::wstring>{L""});

    page.Type(kPort, L"4x3 2a10987");
    EXPECT_EQ(page.Text(kPort), L"43210");
}

TEST_F(NewWirelessDebuggingOnPage, EndsTheProcessWhenThePortCannotBeMadeADigitsField)
{
    const Gateway gateway(L"10.0.0.1");
    const REPLACED(SetWindowSubclass) subclass(Returns(FALSE));
    EXPECT_EQ(ExitCodeOf([this] { const PageWindow page(204, CWirelessDebuggingOnPage::DialogProc, m_data); }), 1u);
    ExpectBox(L"CWirelessDebuggingOnPage::OnInitDialog()\nCIntegerEdit::SetWindowSubclass(hwndCtl, NULL)", L"Error");
}

TEST_F(NewWirelessDebuggingOnPage, EndsTheProcessOnAComputerWithoutIpv4)
{
    const Sockets sockets;
    const REPLACED(GetBestInterfaceEx) interfaceTo(Returns(DWORD(ERROR_NOT_SUPPORTED)));
    EXPECT_EQ(ExitCodeOf([this] { const PageWindow page(204, CWirelessDebuggingOnPage::DialogProc, m_data); }), 1u);
    ExpectBox(L"CWinSockHelper::GetDefaultGateway()\nIPv4 is not available on the local computer", L"Error");
}

// The page, first shown on a computer with a gateway.
class WirelessDebuggingOnPage : public NewWirelessDebuggingOnPage
{
protected:
    WirelessDebuggingOnPage()
    {
        std::memset(&m_data.m_saWatchAddress, 0xA5, sizeof(m_data.m_saWatchAddress));
        m_page.TakeButtons();
        Journal().clear();
    }

    void Enter(PCWSTR pszAddress, PCWSTR pszPort)
    {
        const ULONG nAddress = ntohl(MakeAddress(pszAddress, 0).sin_addr.s_addr);
        SendDlgItemMessageW(m_page.Window(), kAddress, IPM_SETADDRESS, 0, static_cast<LPARAM>(nAddress));
        m_page.SetText(kPort, pszPort);
        m_page.TakeButtons();
    }

    // Leaves three of the address's fields.
    void ClearOneField() const
    {
        SetWindowTextW(GetWindow(m_page.Control(kAddress), GW_CHILD), L"");
    }

    LRESULT Next()
    {
        return m_page.Notify(PSN_WIZNEXT);
    }

    void ExpectNothingStored() const
    {
        const std::string strUntouched(128, '\xA5');
        EXPECT_EQ(std::memcmp(&m_data.m_saWatchAddress, strUntouched.data(), 128), 0);
    }

    Gateway m_gateway{L"192.168.1.1"};
    AnsweringWatch m_watch;
    PageWindow m_page{204, CWirelessDebuggingOnPage::DialogProc, m_data};
};

TEST_F(WirelessDebuggingOnPage, HidesNextAtFirst)
{
    EXPECT_EQ(m_page.Notify(PSN_SETACTIVE), 0);
    EXPECT_EQ(m_page.TakeButtons(), ButtonsList{kWithoutNext});
}

struct Fields
{
    bool bWholeAddress;
    PCWSTR pszPort;
    Buttons buttons;
};

class WirelessDebuggingOnButtons : public WirelessDebuggingOnPage, public testing::WithParamInterface<Fields>
{
};

TEST_P(WirelessDebuggingOnButtons, FollowAddressAndPort)
{
    Enter(L"192.168.1.100", GetParam().pszPort);
    if (!GetParam().bWholeAddress) {
        ClearOneField();
        m_page.TakeButtons();
    }
    EXPECT_EQ(m_page.Notify(PSN_SETACTIVE), 0);
    EXPECT_EQ(m_page.TakeButtons(), ButtonsList{GetParam().buttons});
    EXPECT_EQ(m_page.Notify(IPN_FIELDCHANGED), 0);
    EXPECT_EQ(m_page.TakeButtons(), ButtonsList{GetParam().buttons});
    EXPECT_EQ(m_page.Command(kPort, EN_CHANGE), 0);
    EXPECT_EQ(m_page.TakeButtons(), ButtonsList{GetParam().buttons});
}

INSTANTIATE_TEST_SUITE_P(Fields, WirelessDebuggingOnButtons,
                         testing::Values(Fields{true, L"43210", kWithNext}, Fields{true, L"1024", kWithNext},
                                         Fields{true, L"999", kWithoutNext}, Fields{true, L"", kWithoutNext},
                                         Fields{false, L"43210", kWithoutNext}, Fields{false, L"999", kWithoutNext}));

TEST_F(WirelessDebuggingOnPage, ShowsNextWithTheFourthDigitOfThePort)
{
    Enter(L"192.168.1.100", L"");
    m_page.Type(kPort, L"432");
    EXPECT_EQ(m_page.LastButtons(), kWithoutNext);
    m_page.Type(kPort, L"1");
    EXPECT_EQ(m_page.TakeButtons(), ButtonsList{kWithNext});
    m_page.Type(kPort, L"\b");
    EXPECT_EQ(m_page.TakeButtons(), ButtonsList{kWithoutNext});
}

TEST_F(WirelessDebuggingOnPage, AnswersAnyOtherCommandWithoutTouchingTheButtons)
{
    for (const int nNotification : {EN_UPDATE, EN_SETFOCUS, EN_KILLFOCUS, EN_MAXTEXT, BN_CLICKED}) {
        EXPECT_EQ(m_page.Command(kPort, nNotification), 0);
    }
    EXPECT_EQ(m_page.Command(kAddress, EN_CHANGE), 0);
    EXPECT_EQ(m_page.Command(IDOK, BN_CLICKED), 0);
    EXPECT_EQ(m_page.TakeButtons(), ButtonsList{});
}

TEST_F(WirelessDebuggingOnPage, AnswersAnyOtherNotificationWithoutDoingAnything)
{
    for (const UINT nCode :
         {PSN_WIZBACK, PSN_WIZFINISH, PSN_QUERYCANCEL, PSN_KILLACTIVE, PSN_RESET, PSN_APPLY, PSN_HELP, NM_CLICK}) {
        EXPECT_EQ(m_page.Notify(nCode), 0);
    }
    EXPECT_EQ(m_page.TakeButtons(), ButtonsList{});
    EXPECT_EQ(Journal(), Lines{});
}

TEST_F(WirelessDebuggingOnPage, LeavesAnyOtherMessageToTheSystem)
{
    for (const UINT nMessage : {WM_CLOSE, WM_TIMER, WM_SIZE, WM_SHOWWINDOW, WM_USER, WM_DESTROY}) {
        EXPECT_EQ(m_page.Send(nMessage), FALSE);
    }
}

TEST_F(WirelessDebuggingOnPage, StoresTheAddressOfAWatchThatAnswersBothProbes)
{
    Enter(L"192.168.1.100", L"43210");
    EXPECT_EQ(Next(), 0);
    EXPECT_EQ(Journal(),
              (Lines{"status \"Pinging 192.168.1.100 (1 of 6)\"", "ping 192.168.1.100", "connect 192.168.1.100:43210",
                     "status \"Connecting to 192.168.1.100:43210 (1 of 7)\"", "sleep 200", "status \"\""}));

    // Family, port and address in network order and eight zeros; nothing behind them.
    const BYTE stored[16] = {2, 0, 0xA8, 0xCA, 192, 168, 1, 100};
    EXPECT_EQ(std::memcmp(&m_data.m_saWatchAddress, stored, 16), 0);
    const auto* pBehind = reinterpret_cast<const BYTE*>(&m_data.m_saWatchAddress) + 16;
    EXPECT_TRUE(std::all_of(pBehind, pBehind + 112, [](BYTE b) { return b == 0xA5; }));
    EXPECT_STREQ(m_data.m_szPairingCode, L"000000");
}

TEST_F(WirelessDebuggingOnPage, RefusesAnAddressOfThreeFieldsBeforeItLooksAtThePort)
{
    Enter(L"192.168.1.100", L"1");
    ClearOneField();
    EXPECT_EQ(Next(), -1);
    ExpectBox(m_page.Window(), L"Please enter a valid IP Address, e.g. 192.168.1.100", L"Invalid IP Address");
    EXPECT_EQ(Journal(), Lines{"box \"Please enter a valid IP Address, e.g. 192.168.1.100\""});
    ExpectNothingStored();
}

TEST_F(WirelessDebuggingOnPage, RefusesAnEmptyAddress)
{
    Enter(L"192.168.1.100", L"43210");
    SendDlgItemMessageW(m_page.Window(), kAddress, IPM_CLEARADDRESS, 0, 0);
    EXPECT_EQ(Next(), -1);
    ExpectBox(m_page.Window(), L"Please enter a valid IP Address, e.g. 192.168.1.100", L"Invalid IP Address");
}

class WirelessDebuggingOnBadPort : public WirelessDebuggingOnPage, public testing::WithParamInterface<PCWSTR>
{
};

TEST_P(WirelessDebuggingOnBadPort, IsRefusedBeforeAnyProbe)
{
    Enter(L"192.168.1.100", GetParam());
    EXPECT_EQ(Next(), -1);
    ExpectBox(m_page.Window(), kPortRange, L"Invalid Port Value");
    EXPECT_EQ(Journal(), Lines{std::string("box \"") + Narrow(kPortRange) + '"'});
    ExpectNothingStored();
}

INSTANTIATE_TEST_SUITE_P(Ports, WirelessDebuggingOnBadPort,
                         testing::Values(L"1023", L"65536", L"999", L"99999", L"0", L"", L"4x10", L"-4000",
                                         L"4294968320"));

TEST_F(WirelessDebuggingOnPage, ReadsThePortAsAnUnsignedNumberAndMindsWhetherItIsOne)
{
    Enter(L"192.168.1.100", L"43210");
    const REPLACED(GetDlgItemInt) read([](HWND, int, BOOL* pbTranslated, BOOL) -> UINT {
        *pbTranslated = FALSE;
        return 43210;
    });
    EXPECT_EQ(Next(), -1);
    ExpectBox(m_page.Window(), kPortRange, L"Invalid Port Value");
    EXPECT_EQ(read.Arg<0>(), m_page.Window());
    EXPECT_EQ(read.Arg<1>(), kPort);
    EXPECT_EQ(read.Arg<3>(), FALSE);
}

class WirelessDebuggingOnGoodPort : public WirelessDebuggingOnPage,
                                    public testing::WithParamInterface<std::pair<PCWSTR, u_short>>
{
};

TEST_P(WirelessDebuggingOnGoodPort, IsTriedAndStored)
{
    const auto& [pszPort, nPort] = GetParam();
    Enter(L"192.168.1.100", pszPort);
    EXPECT_EQ(Next(), 0);
    EXPECT_EQ(reinterpret_cast<const SOCKADDR_IN&>(m_data.m_saWatchAddress).sin_port, htons(nPort));
    const std::string strConnect = "connect 192.168.1.100:" + std::to_string(nPort);
    EXPECT_EQ(JournalOf({strConnect}), Lines{strConnect});
}

INSTANTIATE_TEST_SUITE_P(Ports, WirelessDebuggingOnGoodPort,
                         testing::Values(std::pair<PCWSTR, u_short>(L"1024", u_short(1024)),
                                         std::pair<PCWSTR, u_short>(L"65535", u_short(65535)),
                                         std::pair<PCWSTR, u_short>(L"01024", u_short(1024))));

TEST_F(WirelessDebuggingOnPage, LeavesTheWorthOfAnAddressToTheProbes)
{
    Enter(L"0.0.0.0", L"43210");
    EXPECT_EQ(Next(), 0);
    EXPECT_EQ(Journal()[1], "ping 0.0.0.0");
    Enter(L"255.255.255.255", L"43210");
    Journal().clear();
    EXPECT_EQ(Next(), 0);
    EXPECT_EQ(Journal()[1], "ping 255.255.255.255");
}

TEST_F(WirelessDebuggingOnPage, StaysWhenTheWatchDoesNotAnswerAndDoesNotTryItsPort)
{
    m_watch.FallSilent();
    Enter(L"192.168.1.100", L"43210");
    EXPECT_EQ(Next(), -1);
    const Box box = TakeBox();
    EXPECT_EQ(box.hwndOwner, m_page.Window());
    EXPECT_EQ(box.strCaption, L"Invalid IP address");
    Lines expected = SixPings("192.168.1.100");
    expected.emplace_back("status \"Unreachable\"");
    expected.push_back("box \"" + Narrow(box.strText) + '"');
    EXPECT_EQ(Journal(), expected);
    ExpectNothingStored();
}

TEST_F(WirelessDebuggingOnPage, StaysWhenTheWatchDoesNotAcceptTheConnection)
{
    m_watch.CloseItsPort();
    Enter(L"192.168.1.100", L"43210");
    EXPECT_EQ(Next(), -1);
    ExpectBox(m_page.Window(), kCouldNotConnect, L"Wireless Debugging Connection");
    ASSERT_EQ(Journal().size(), 2u + 1u + 7u * 2u + 2u);
    EXPECT_EQ(Lines(Journal().end() - 4, Journal().end()),
              (Lines{"status \"Connecting to 192.168.1.100:43210 (7 of 7)\"", "sleep 200",
                     "status \"Could not connect to 192.168.1.100:43210\"",
                     std::string("box \"") + Narrow(kCouldNotConnect) + '"'}));
    ExpectNothingStored();
}

TEST_F(WirelessDebuggingOnPage, KeepsAnEarlierAddressWhenALaterTryFails)
{
    Enter(L"192.168.1.100", L"43210");
    EXPECT_EQ(Next(), 0);
    const SOCKADDR_STORAGE stored = m_data.m_saWatchAddress;

    Enter(L"192.168.1.101", L"1023");
    EXPECT_EQ(Next(), -1);
    TakeBox();
    EXPECT_EQ(std::memcmp(&m_data.m_saWatchAddress, &stored, sizeof(stored)), 0);

    Enter(L"192.168.1.101", L"43211");
    m_watch.CloseItsPort();
    EXPECT_EQ(Next(), -1);
    TakeBox();
    m_watch.FallSilent();
    EXPECT_EQ(Next(), -1);
    TakeBox();
    EXPECT_EQ(std::memcmp(&m_data.m_saWatchAddress, &stored, sizeof(stored)), 0);
}

TEST_F(WirelessDebuggingOnPage, ChecksEverythingAgainWithEveryNext)
{
    Enter(L"192.168.1.100", L"43210");
    EXPECT_EQ(Next(), 0);
    const Lines first = Journal();
    Journal().clear();
    EXPECT_EQ(Next(), 0);
    EXPECT_EQ(Journal(), first);
}

TEST_F(NewWirelessDebuggingOnPage, EndsTheProcessWhenNoSocketCanBeMade)
{
    const Gateway gateway(L"192.168.1.1");
    const AnsweringWatch watch;
    const REPLACED(socket) open(Returns(INVALID_SOCKET, WSAEMFILE));
    HWND hwndPage = nullptr;
    EXPECT_EQ(ExitCodeOf([&] {
                  PageWindow page(204, CWirelessDebuggingOnPage::DialogProc, m_data);
                  hwndPage = page.Window();
                  SendDlgItemMessageW(hwndPage, kAddress, IPM_SETADDRESS, 0, 0xC0A80164);
                  page.SetText(kPort, L"43210");
                  page.Notify(PSN_WIZNEXT);
              }),
              10024u);
    ExpectBox(hwndPage, L"CWirelessDebuggingOnPage::OnNotify_PSN_WIZNEXT_TcpConnect() > socket.Socket()", L"WSA Error");
}

} // namespace
