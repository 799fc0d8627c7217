// The TCP probe of the wireless debugging page.

#include "tests/unit/net/SoiledStack.h"
#include "tests/unit/wizard/AnsweringWatch.h"
#include "tests/unit/wizard/ProbeTest.h"

using namespace kit;

namespace {

LRESULT Connect(const SOCKADDR_IN& address = MakeAddress(L"192.168.1.100", 43210))
{
    SoilStack();
    return CWirelessDebuggingOnPage::OnNotify_PSN_WIZNEXT_TcpConnect(kPage, &address, kStatusLine);
}

std::wstring Step(const std::wstring& strCall)
{
    return L"CWirelessDebuggingOnPage::OnNotify_PSN_WIZNEXT_TcpConnect() > socket." + strCall + L"()";
}

class TcpProbe : public ProbeTest
{
protected:
    TcpProbe()
    {
        // Whoever reads the reason of a failure only after its box is too late.
        WhenBoxShows([](const Box&) { unreplaced::SetLastError(99); });
    }

    // With these outcomes of its polls the probe has this result and needs so many of them, on one socket.
    void Expect(LRESULT nResult, int nPolls, std::vector<Poll> polls,
                std::source_location where = std::source_location::current())
    {
        const testing::ScopedTrace trace(where.file_name(), static_cast<int>(where.line()), "the probe expected here");
        m_watch.m_polls = std::move(polls);
        m_texts.clear();
        Journal().clear();
        EXPECT_EQ(Connect(), nResult);
        EXPECT_EQ(m_texts,
                  Attempts("Connecting to 192.168.1.100:43210", nPolls, 7, nResult == 0 ? Lines{""} : Lines{}));
        Lines waits;
        for (int n = 0; n < nPolls; ++n) {
            waits.emplace_back("sleep 200");
            waits.emplace_back("WSAPoll");
        }
        EXPECT_EQ(JournalOf({"sleep 200", "WSAPoll"}), waits);
        EXPECT_EQ(JournalOf({"socket", "shutdown", "closesocket"}),
                  nResult == 0 ? (Lines{"socket", "shutdown", "closesocket"}) : (Lines{"socket", "closesocket"}));
        EXPECT_EQ(JournalOf({"connect"}).size(), 1u);
        EXPECT_EQ(m_close.Arg<0>(m_close.Calls() - 1), kSocket);
        for (size_t n = 0; n < m_poll.Calls(); ++n) {
            EXPECT_EQ(m_poll.Arguments(n), std::tuple(kAny, 1u, 2000));
        }
    }

    // The probe ends the process with this code, after a box that tells the step.
    void ExpectEnd(UINT nExitCode, HWND hwndOwner, const std::wstring& strStep,
                   std::source_location where = std::source_location::current())
    {
        Journal().clear();
        EXPECT_EQ(ExitCodeOf([] { Connect(); }), nExitCode);
        ExpectBox(hwndOwner, strStep, L"WSA Error", where);
        EXPECT_EQ(Lines(Journal().end() - 2, Journal().end()),
                  (Lines{"box \"" + Narrow(strStep) + '"', "exit " + std::to_string(nExitCode)}));
    }

    AnsweringWatch m_watch;
    REPLACED(socket) m_socket { Maybe() };
    REPLACED(connect) m_connect { Maybe() };
    REPLACED(WSAPoll) m_poll { Maybe() };
    REPLACED(shutdown) m_shutdown { Maybe() };
    REPLACED(closesocket) m_close { Maybe() };
};

TEST_F(TcpProbe, SucceedsWhenTheConnectionStandsAndEndsItAtOnce)
{
    Expect(0, 1, {kWritable});
    EXPECT_EQ(Journal(), (Lines{"socket", "connect", "connect 192.168.1.100:43210",
                                "status \"Connecting to 192.168.1.100:43210 (1 of 7)\"", "sleep 200", "WSAPoll",
                                "status \"\"", "shutdown", "closesocket"}));
    EXPECT_EQ(m_shutdown.Arguments(), std::tuple(kSocket, 2)); // both directions
}

TEST_F(TcpProbe, SetsTheSocketUpBeforeItConnects)
{
    const REPLACED(ioctlsocket) mode([](SOCKET nSocket, long nCommand, u_long* pnMode) {
        EXPECT_EQ(nSocket, kSocket);
        EXPECT_EQ(static_cast<u_long>(nCommand), 0x8004667Eu);
        EXPECT_EQ(*pnMode, 1u);
        return 0;
    });
    const REPLACED(connect) connection([](SOCKET nSocket, const SOCKADDR* pAddress, int cb) {
        const auto& address = *reinterpret_cast<const SOCKADDR_IN*>(pAddress);
        EXPECT_EQ(nSocket, kSocket);
        EXPECT_EQ(address.sin_family, 2);
        EXPECT_EQ(address.sin_port, 0xCAA8);
        EXPECT_EQ(address.sin_addr.s_addr, 0x6401A8C0u);
        EXPECT_EQ(cb, 16);
        SetLastError(WSAECONNREFUSED);
        return 0; // it stands at once
    });
    Expect(0, 1, {kWritable});
    EXPECT_EQ(m_socket.Arguments(), std::tuple(2, 1, 6));
    EXPECT_EQ(JournalOf({"socket", "ioctlsocket", "connect"}), (Lines{"socket", "ioctlsocket", "connect"}));
}

TEST_F(TcpProbe, GivesUpAfterSevenTimeoutsWithoutABox)
{
    Expect(-1, 7, {kTimeout});
}

TEST_F(TcpProbe, PollsARefusedConnectionAgainOnTheSameSocket)
{
    Expect(-1, 7, {kRefused});
}

TEST_F(TcpProbe, SucceedsWithTheLastPoll)
{
    Expect(0, 7, {kTimeout, kTimeout, kTimeout, kTimeout, kTimeout, kRefused, kWritable});
}

TEST_F(TcpProbe, JudgesAPollByTheReadySocketAndTheErrorBitAlone)
{
    for (const Poll& failed : std::vector<Poll>{{1, 0x0001}, {1, 0x0011}, {1, 0x0003}, {1, 0x0013}, {0, POLLWRNORM}}) {
        SCOPED_TRACE(failed.nEvents);
        Expect(0, 2, {failed, kWritable});
    }
    for (const Poll& stands : std::vector<Poll>{{1, 2}, {1, 4}, {1, 0}, {1, 0x0012}, {1, 0x0010}, {2, POLLWRNORM}}) {
        SCOPED_TRACE(stands.nEvents);
        Expect(0, 1, {stands, kRefused});
    }
}

TEST_F(TcpProbe, WithoutASocketEndsTheProcess)
{
    const REPLACED(socket) open(Returns(INVALID_SOCKET, WSAEMFILE));
    ExpectEnd(10024, kPage, Step(L"Socket"));
    EXPECT_EQ(Journal().size(), 3u); // it is closed by nobody
}

TEST_F(TcpProbe, WithASocketThatBlocksEndsTheProcess)
{
    const REPLACED(ioctlsocket) mode(Returns(SOCKET_ERROR, WSAENETDOWN));
    ExpectEnd(10050, kPage, Step(L"Ioctlsocket"));
    EXPECT_EQ(Journal().size(), 4u);
}

TEST_F(TcpProbe, TellsWhenTheConnectionCannotEvenStart)
{
    // Only "would block" is a start.
    for (const DWORD dwError : {WSAENETUNREACH, WSAEINPROGRESS, WSAEALREADY, WSAEINTR, WSAECONNREFUSED}) {
        SCOPED_TRACE(dwError);
        const REPLACED(connect) connection(Returns(SOCKET_ERROR, dwError));
        Expect(-1, 0, {kWritable});
        ExpectBox(kPage, Step(L"Connect"), L"WSA Error");
        EXPECT_EQ(Journal(), (Lines{"socket", "connect", "box \"" + Narrow(Step(L"Connect")) + '"', "closesocket"}));
    }
}

TEST_F(TcpProbe, TellsWhenItCannotPoll)
{
    Expect(-1, 2, {kTimeout, {SOCKET_ERROR, POLLWRNORM}});
    ExpectBox(kPage, Step(L"Connect"), L"WSA Error");
}

TEST_F(TcpProbe, ThatCannotEndTheConnectionEndsTheProcess)
{
    // With anything else than 0.
    for (const int nResult : {SOCKET_ERROR, 1}) {
        SCOPED_TRACE(nResult);
        const REPLACED(shutdown) end(Returns(nResult, WSAENOTCONN));
        ExpectEnd(10057, nullptr, Step(L"Shutdown"));
        EXPECT_EQ(m_texts.back(), "");
    }
}

TEST_F(TcpProbe, ThatCannotCloseTheSocketEndsTheProcess)
{
    const REPLACED(closesocket) close(Returns(SOCKET_ERROR, WSAENETDOWN));
    ExpectEnd(10050, nullptr, Step(L"CloseSocket"));
    EXPECT_EQ(close.Calls(), 1u);
    EXPECT_EQ(close.Arg<0>(), kSocket);
}

TEST_F(TcpProbe, ThatCannotCloseTheSocketAfterAFailureEndsTheProcess)
{
    const REPLACED(connect) connection(Returns(SOCKET_ERROR, WSAENETUNREACH));
    const REPLACED(closesocket) close(Returns(SOCKET_ERROR, WSAENOTSOCK));
    EXPECT_EQ(ExitCodeOf([] { Connect(); }), 10038u);
    ExpectBox(kPage, Step(L"Connect"), L"WSA Error");
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

    Lines Connecting(int nAttempts, const Lines& behind) const
    {
        return Attempts("Connecting to 127.0.0.1:" + std::to_string(ntohs(m_address.sin_port)), nAttempts, 7, behind);
    }

private:
    SOCKET m_socket;
    SOCKADDR_IN m_address;
};

class TcpProbeForReal : public ProbeTest
{
};

TEST_F(TcpProbeForReal, FindsAListeningPortAndSendsNothing)
{
    Port port;
    const SOCKET nListening = port.Listen();
    EXPECT_EQ(Connect(port.Address()), 0);
    EXPECT_EQ(m_texts, port.Connecting(1, {""}));

    const SOCKET nAccepted = accept(nListening, nullptr, nullptr);
    ASSERT_NE(nAccepted, INVALID_SOCKET);
    char ch = 0;
    EXPECT_EQ(recv(nAccepted, &ch, 1, 0), 0);
    closesocket(nAccepted);
}

TEST_F(TcpProbeForReal, FindsNothingOnAClosedPort)
{
    const Port port;
    EXPECT_EQ(Connect(port.Address()), -1);
    EXPECT_EQ(m_texts, port.Connecting(7, {}));
    EXPECT_EQ(Sleeps(), std::vector<DWORD>(7, 200));
}

} // namespace
