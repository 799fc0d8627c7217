// The TCP probe of the wireless debugging page.

#include "wizard/WirelessDebuggingOnPage.h"

#include "tests/kit/Test.h"
#include "tests/unit/net/Sockets.h"
#include "tests/unit/net/SoiledStack.h"
#include "tests/unit/wizard/StatusLine.h"

using namespace kit;

namespace {

const HWND kPage = reinterpret_cast<HWND>(0x9A6E);
constexpr SOCKET kSocket = 0x50C;

constexpr PCWSTR kSocketStep = L"CWirelessDebuggingOnPage::OnNotify_PSN_WIZNEXT_TcpConnect() > socket.Socket()";
constexpr PCWSTR kModeStep = L"CWirelessDebuggingOnPage::OnNotify_PSN_WIZNEXT_TcpConnect() > socket.Ioctlsocket()";
constexpr PCWSTR kConnectStep = L"CWirelessDebuggingOnPage::OnNotify_PSN_WIZNEXT_TcpConnect() > socket.Connect()";
constexpr PCWSTR kShutdownStep = L"CWirelessDebuggingOnPage::OnNotify_PSN_WIZNEXT_TcpConnect() > socket.Shutdown()";
constexpr PCWSTR kCloseStep = L"CWirelessDebuggingOnPage::OnNotify_PSN_WIZNEXT_TcpConnect() > socket.CloseSocket()";

class TcpProbe : public Test
{
protected:
    TcpProbe()
    {
        // Whoever reads the reason of a failure only after its box is too late.
        WhenBoxShows([](const Box&) { unreplaced::SetLastError(99); });
    }

    static LRESULT Run(const SOCKADDR_IN& address)
    {
        SoilStack();
        return CWirelessDebuggingOnPage::OnNotify_PSN_WIZNEXT_TcpConnect(kPage, &address, StatusLine::Window());
    }

    static LRESULT Run()
    {
        return Run(MakeAddress(L"192.168.1.100", 43210));
    }

    std::optional<UINT> ExitCode()
    {
        return ExitCodeOf([] { Run(); });
    }

    StatusLine m_status;

private:
    Sockets m_sockets;
};

// What one poll comes to.
struct Poll
{
    int nReady;
    SHORT nEvents;
};

constexpr Poll kTimeout = {0, 0};
constexpr Poll kWritable = {1, POLLWRNORM};
constexpr Poll kRefused = {1, POLLERR | POLLHUP};

// Windows Sockets that start a connection and give the outcomes of its polls one after the other,
// the last one for ever.
class Connection
{
public:
    explicit Connection(std::vector<Poll> polls, int nConnect = SOCKET_ERROR, DWORD dwConnectError = WSAEWOULDBLOCK)
        : m_polls(std::move(polls)), m_socket(Returns(kSocket)), m_mode(Returns(0)),
          m_connect(Returns(nConnect, dwConnectError)), m_poll([this](WSAPOLLFD* pPoll, ULONG, INT) {
              EXPECT_EQ(pPoll->fd, kSocket);
              EXPECT_EQ(pPoll->events, 0x0010);
              EXPECT_EQ(pPoll->revents, 0);
              const Poll& poll = m_polls[std::min(m_poll.Calls(), m_polls.size()) - 1];
              pPoll->revents = poll.nEvents;
              unreplaced::SetLastError(WSAENETDOWN);
              return poll.nReady;
          }),
          m_shutdown(Returns(0)), m_close(Returns(0))
    {
        m_shutdown.Optional();
        m_mode.Unnoted();
    }

    REPLACED(WSAPoll) & Polls()
    {
        return m_poll;
    }

    REPLACED(connect) & Connects()
    {
        return m_connect;
    }

    size_t Shutdowns() const
    {
        return m_shutdown.Calls();
    }

    void ExpectClosedOnce() const
    {
        EXPECT_EQ(m_close.Calls(), 1u);
        EXPECT_EQ(m_close.Arg<0>(), kSocket);
        EXPECT_EQ(m_socket.Calls(), 1u);
    }

private:
    std::vector<Poll> m_polls;
    REPLACED(socket) m_socket;
    REPLACED(ioctlsocket) m_mode;
    REPLACED(connect) m_connect;
    REPLACED(WSAPoll) m_poll;
    REPLACED(shutdown) m_shutdown;
    REPLACED(closesocket) m_close;
};

// The first n of the status texts of 192.168.1.100:43210.
std::vector<std::wstring> Connecting(int nAttempts)
{
    const std::vector<std::wstring> all = {
        L"Connecting to 192.168.1.100:43210 (1 of 7)", L"Connecting to 192.168.1.100:43210 (2 of 7)",
        L"Connecting to 192.168.1.100:43210 (3 of 7)", L"Connecting to 192.168.1.100:43210 (4 of 7)",
        L"Connecting to 192.168.1.100:43210 (5 of 7)", L"Connecting to 192.168.1.100:43210 (6 of 7)",
        L"Connecting to 192.168.1.100:43210 (7 of 7)"};
    return {all.begin(), all.begin() + nAttempts};
}

std::vector<std::wstring> ConnectingThenNothing(int nAttempts)
{
    std::vector<std::wstring> texts = Connecting(nAttempts);
    texts.emplace_back();
    return texts;
}

TEST_F(TcpProbe, SucceedsWhenTheConnectionStandsAndEndsItAtOnce)
{
    const Connection connection({kWritable});
    EXPECT_EQ(Run(), 0);
    EXPECT_EQ(m_status.Texts(), ConnectingThenNothing(1));
    EXPECT_EQ(Journal(), (Lines{"socket", "connect", "status \"Connecting to 192.168.1.100:43210 (1 of 7)\"",
                                "sleep 200", "WSAPoll", "status \"\"", "shutdown", "closesocket"}));
    connection.ExpectClosedOnce();
}

TEST_F(TcpProbe, PollsOneSocketForTwoSeconds)
{
    Connection connection({kTimeout, kWritable});
    EXPECT_EQ(Run(), 0);
    ASSERT_EQ(connection.Polls().Calls(), 2u);
    for (const size_t n : {0u, 1u}) {
        EXPECT_EQ(connection.Polls().Arg<1>(n), 1u);
        EXPECT_EQ(connection.Polls().Arg<2>(n), 2000);
    }
    EXPECT_EQ(m_status.Texts(), ConnectingThenNothing(2));
    EXPECT_EQ(Sleeps(), (std::vector<DWORD>{200, 200}));
}

TEST_F(TcpProbe, SetsTheSocketUpBeforeItConnects)
{
    const REPLACED(socket) open(Returns(kSocket));
    REPLACED(ioctlsocket)
    mode([](SOCKET nSocket, long nCommand, u_long* pnMode) {
        EXPECT_EQ(nSocket, kSocket);
        EXPECT_EQ(static_cast<u_long>(nCommand), 0x8004667Eu);
        EXPECT_EQ(*pnMode, 1u);
        return 0;
    });
    REPLACED(connect)
    connection([](SOCKET nSocket, const SOCKADDR* pAddress, int cb) {
        const auto& address = *reinterpret_cast<const SOCKADDR_IN*>(pAddress);
        EXPECT_EQ(nSocket, kSocket);
        EXPECT_EQ(address.sin_family, 2);
        EXPECT_EQ(address.sin_port, 0xCAA8);
        EXPECT_EQ(address.sin_addr.s_addr, 0x6401A8C0u);
        EXPECT_EQ(cb, 16);
        return SetLastError(WSAENETUNREACH), SOCKET_ERROR;
    });
    const REPLACED(closesocket) close(Returns(0));
    EXPECT_EQ(Run(), -1);
    TakeBox();
    EXPECT_EQ(open.Arg<0>(), 2);
    EXPECT_EQ(open.Arg<1>(), 1);
    EXPECT_EQ(open.Arg<2>(), 6);
    EXPECT_EQ(JournalOf({"socket", "ioctlsocket", "connect"}), (Lines{"socket", "ioctlsocket", "connect"}));
}

TEST_F(TcpProbe, EndsTheConnectionInBothDirections)
{
    const Connection connection({kWritable});
    const REPLACED(shutdown) end(Returns(0));
    EXPECT_EQ(Run(), 0);
    EXPECT_EQ(end.Arg<0>(), kSocket);
    EXPECT_EQ(end.Arg<1>(), 2);
}

TEST_F(TcpProbe, GoesOnWhenTheConnectionStandsAtOnce)
{
    const Connection connection({kWritable}, 0, WSAECONNREFUSED);
    EXPECT_EQ(Run(), 0);
    EXPECT_EQ(m_status.Texts(), ConnectingThenNothing(1));
}

TEST_F(TcpProbe, GivesUpAfterSevenTimeoutsWithoutABox)
{
    Connection connection({kTimeout});
    EXPECT_EQ(Run(), -1);
    EXPECT_EQ(m_status.Texts(), Connecting(7));
    EXPECT_EQ(Sleeps(), std::vector<DWORD>(7, 200));
    EXPECT_EQ(connection.Polls().Calls(), 7u);
    EXPECT_EQ(connection.Shutdowns(), 0u);
    EXPECT_EQ(connection.Connects().Calls(), 1u);
    connection.ExpectClosedOnce();
}

TEST_F(TcpProbe, SucceedsWithTheLastPoll)
{
    const Connection connection({kTimeout, kTimeout, kTimeout, kTimeout, kTimeout, kRefused, kWritable});
    EXPECT_EQ(Run(), 0);
    EXPECT_EQ(m_status.Texts(), ConnectingThenNothing(7));
}

TEST_F(TcpProbe, PollsARefusedConnectionAgainOnTheSameSocket)
{
    Connection connection({kRefused});
    EXPECT_EQ(Run(), -1);
    EXPECT_EQ(m_status.Texts(), Connecting(7));
    EXPECT_EQ(connection.Polls().Calls(), 7u);
    EXPECT_EQ(connection.Connects().Calls(), 1u);
    connection.ExpectClosedOnce();
}

class TcpProbePoll : public TcpProbe, public testing::WithParamInterface<std::pair<SHORT, bool>>
{
};

TEST_P(TcpProbePoll, FailsForTheErrorBitAlone)
{
    const auto [nEvents, bConnected] = GetParam();
    const Connection connection({{1, nEvents}, kWritable});
    EXPECT_EQ(Run(), 0);
    EXPECT_EQ(m_status.Texts(), ConnectingThenNothing(bConnected ? 1 : 2));
}

INSTANTIATE_TEST_SUITE_P(Events, TcpProbePoll,
                         testing::Values(std::pair<SHORT, bool>(0x0001, false), std::pair<SHORT, bool>(0x0011, false),
                                         std::pair<SHORT, bool>(0x0003, false), std::pair<SHORT, bool>(0x0013, false),
                                         std::pair<SHORT, bool>(0x0002, true), std::pair<SHORT, bool>(0x0004, true),
                                         std::pair<SHORT, bool>(0x0000, true), std::pair<SHORT, bool>(0x0012, true),
                                         std::pair<SHORT, bool>(0x0010, true)));

TEST_F(TcpProbe, TakesMoreThanOneReadySocketForSuccess)
{
    const Connection connection({{2, POLLWRNORM}});
    EXPECT_EQ(Run(), 0);
    EXPECT_EQ(m_status.Texts(), ConnectingThenNothing(1));
}

TEST_F(TcpProbe, GoesOnAfterATimeoutThatNamesEvents)
{
    const Connection connection({{0, POLLWRNORM}, kWritable});
    EXPECT_EQ(Run(), 0);
    EXPECT_EQ(m_status.Texts(), ConnectingThenNothing(2));
}

TEST_F(TcpProbe, WithoutASocketEndsTheProcess)
{
    const REPLACED(socket) open(Returns(INVALID_SOCKET, WSAEMFILE));
    EXPECT_EQ(ExitCode(), 10024u);
    ExpectBox(kPage, kSocketStep, L"WSA Error");
    EXPECT_EQ(Journal(), (Lines{"socket", std::string("box \"") + Narrow(kSocketStep) + '"', "exit 10024"}));
}

TEST_F(TcpProbe, WithASocketThatBlocksEndsTheProcess)
{
    const REPLACED(socket) open(Returns(kSocket));
    const REPLACED(ioctlsocket) mode(Returns(SOCKET_ERROR, WSAENETDOWN));
    EXPECT_EQ(ExitCode(), 10050u);
    ExpectBox(kPage, kModeStep, L"WSA Error");
    EXPECT_EQ(Journal(),
              (Lines{"socket", "ioctlsocket", std::string("box \"") + Narrow(kModeStep) + '"', "exit 10050"}));
}

TEST_F(TcpProbe, TellsWhenTheConnectionCannotEvenStart)
{
    const REPLACED(socket) open(Returns(kSocket));
    const REPLACED(ioctlsocket) mode(Returns(0));
    const REPLACED(connect) at(Returns(SOCKET_ERROR, WSAENETUNREACH));
    const REPLACED(closesocket) close(Returns(0));
    EXPECT_EQ(Run(), -1);
    ExpectBox(kPage, kConnectStep, L"WSA Error");
    EXPECT_TRUE(m_status.Texts().empty());
    EXPECT_EQ(Journal(), (Lines{"socket", "ioctlsocket", "connect", std::string("box \"") + Narrow(kConnectStep) + '"',
                                "closesocket"}));
}

TEST_F(TcpProbe, TakesOnlyWouldBlockForAStartedConnection)
{
    for (const DWORD dwError : {WSAEINPROGRESS, WSAEALREADY, WSAEINTR, WSAECONNREFUSED}) {
        const REPLACED(socket) open(Returns(kSocket));
        const REPLACED(ioctlsocket) mode(Returns(0));
        const REPLACED(connect) at(Returns(SOCKET_ERROR, dwError));
        const REPLACED(closesocket) close(Returns(0));
        EXPECT_EQ(Run(), -1);
        ExpectBox(kPage, kConnectStep, L"WSA Error");
    }
}

TEST_F(TcpProbe, TellsWhenItCannotPoll)
{
    Connection connection({kTimeout, {SOCKET_ERROR, POLLWRNORM}});
    EXPECT_EQ(Run(), -1);
    ExpectBox(kPage, kConnectStep, L"WSA Error");
    EXPECT_EQ(m_status.Texts(), Connecting(2));
    EXPECT_EQ(connection.Polls().Calls(), 2u);
    EXPECT_EQ(connection.Shutdowns(), 0u);
    connection.ExpectClosedOnce();
}

TEST_F(TcpProbe, ThatCannotEndTheConnectionEndsTheProcess)
{
    const REPLACED(socket) open(Returns(kSocket));
    const REPLACED(ioctlsocket) mode(Returns(0));
    const REPLACED(connect) at(Returns(0));
    const REPLACED(WSAPoll) poll(Returns(1));
    const REPLACED(shutdown) end(Returns(SOCKET_ERROR, WSAENOTCONN));
    EXPECT_EQ(ExitCode(), 10057u);
    ExpectBox(kShutdownStep, L"WSA Error");
    EXPECT_EQ(m_status.Texts(), ConnectingThenNothing(1));
    EXPECT_EQ(Journal().back(), "exit 10057");
}

TEST_F(TcpProbe, ThatHasAnyOtherResultThanZeroForTheEndEndsTheProcess)
{
    const REPLACED(socket) open(Returns(kSocket));
    const REPLACED(ioctlsocket) mode(Returns(0));
    const REPLACED(connect) at(Returns(0));
    const REPLACED(WSAPoll) poll(Returns(1));
    const REPLACED(shutdown) end(Returns(1, WSAENETDOWN));
    EXPECT_EQ(ExitCode(), 10050u);
    ExpectBox(kShutdownStep, L"WSA Error");
}

TEST_F(TcpProbe, ThatCannotCloseTheSocketEndsTheProcess)
{
    const REPLACED(socket) open(Returns(kSocket));
    const REPLACED(ioctlsocket) mode(Returns(0));
    const REPLACED(connect) at(Returns(0));
    const REPLACED(WSAPoll) poll(Returns(1));
    const REPLACED(shutdown) end(Returns(0));
    const REPLACED(closesocket) close(Returns(SOCKET_ERROR, WSAENETDOWN));
    EXPECT_EQ(ExitCode(), 10050u);
    ExpectBox(kCloseStep, L"WSA Error");
    EXPECT_EQ(close.Calls(), 1u);
    EXPECT_EQ(close.Arg<0>(), kSocket);
}

TEST_F(TcpProbe, ThatCannotCloseTheSocketAfterAFailureEndsTheProcess)
{
    const REPLACED(socket) open(Returns(kSocket));
    const REPLACED(ioctlsocket) mode(Returns(0));
    const REPLACED(connect) at(Returns(SOCKET_ERROR, WSAENETUNREACH));
    const REPLACED(closesocket) close(Returns(SOCKET_ERROR, WSAENOTSOCK));
    EXPECT_EQ(ExitCode(), 10038u);
    ExpectBox(kPage, kConnectStep, L"WSA Error");
    ExpectBox(L"~CSocket()", L"WSA Error");
}

// A TCP port of this computer, on which nobody listens before Listen.
class Port
{
public:
    Port() : m_socket(socket(AF_INET, SOCK_STREAM, IPPROTO_TCP)), m_address(MakeAddress(L"127.0.0.1", 0))
    {
        int cb = sizeof(m_address);
        EXPECT_EQ(bind(m_socket, reinterpret_cast<const SOCKADDR*>(&m_address), cb), 0);
        EXPECT_EQ(getsockname(m_socket, reinterpret_cast<SOCKADDR*>(&m_address), &cb), 0);
    }

    ~Port()
    {
        closesocket(m_socket);
    }

    Port(const Port&) = delete;
    Port& operator=(const Port&) = delete;

    SOCKET Listen()
    {
        EXPECT_EQ(listen(m_socket, 5), 0);
        return m_socket;
    }

    const SOCKADDR_IN& Address() const
    {
        return m_address;
    }

    std::wstring Connecting(int nAttempt) const
    {
        return L"Connecting to 127.0.0.1:" + std::to_wstring(ntohs(m_address.sin_port)) + L" (" +
               std::to_wstring(nAttempt) + L" of 7)";
    }

private:
    SOCKET m_socket;
    SOCKADDR_IN m_address;
};

TEST_F(TcpProbe, FindsAListeningPortAndSendsNothing)
{
    Port port;
    const SOCKET nListening = port.Listen();
    EXPECT_EQ(Run(port.Address()), 0);
    EXPECT_EQ(m_status.Texts(), (std::vector<std::wstring>{port.Connecting(1), L""}));

    const SOCKET nAccepted = accept(nListening, nullptr, nullptr);
    ASSERT_NE(nAccepted, INVALID_SOCKET);
    char ch = 0;
    EXPECT_EQ(recv(nAccepted, &ch, 1, 0), 0);
    closesocket(nAccepted);
}

TEST_F(TcpProbe, FindsNothingOnAClosedPort)
{
    const Port port;
    EXPECT_EQ(Run(port.Address()), -1);
    std::vector<std::wstring> expected;
    for (int n = 1; n <= 7; ++n) {
        expected.push_back(port.Connecting(n));
    }
    EXPECT_EQ(m_status.Texts(), expected);
    EXPECT_EQ(Sleeps(), std::vector<DWORD>(7, 200));
}

} // namespace
