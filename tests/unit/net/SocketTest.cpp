// The owner of a socket.

#include "net/Socket.h"

#include "tests/kit/Test.h"
#include "tests/unit/net/Sockets.h"

#include <type_traits>

using namespace kit;

namespace {

constexpr SOCKET kSocket = 0x50C;

class Socket : public Test
{
private:
    Sockets m_sockets;
};

static_assert(std::has_virtual_destructor_v<CSocket>);
static_assert(sizeof(CSocket) == 16);

TEST_F(Socket, IsAnIpv4StreamSocketOfTcpAndClosedAtTheEnd)
{
    const REPLACED(socket) open(Returns(kSocket));
    const REPLACED(closesocket) close(Returns(0));
    {
        CSocket owner;
        EXPECT_TRUE(owner.Socket());
        EXPECT_EQ(owner.m_socket, kSocket);
    }
    EXPECT_EQ(open.Arguments(), std::tuple(2, 1, 6));
    EXPECT_EQ(close.Calls(), 1u);
    EXPECT_EQ(close.Arg<0>(), kSocket);
}

TEST_F(Socket, IsNoneAtFirstAndWhenItCannotBeHad)
{
    const REPLACED(socket) open(Returns(INVALID_SOCKET, WSAEMFILE));
    const REPLACED(closesocket) close(Never());
    const CSocket unopened;
    EXPECT_EQ(unopened.m_socket, INVALID_SOCKET);
    CSocket owner;
    EXPECT_FALSE(owner.Socket());
}

TEST_F(Socket, IsOpenedAndClosedForTheSystem)
{
    int nType = 0;
    int cb = sizeof(nType);
    const auto ask = [&](SOCKET n) { return getsockopt(n, SOL_SOCKET, SO_TYPE, reinterpret_cast<char*>(&nType), &cb); };
    SOCKET nSocket = INVALID_SOCKET;
    {
        CSocket owner;
        ASSERT_TRUE(owner.Socket());
        nSocket = owner.m_socket;
        EXPECT_EQ(ask(nSocket), 0);
        EXPECT_EQ(nType, SOCK_STREAM);
    }
    EXPECT_EQ(ask(nSocket), SOCKET_ERROR);
    EXPECT_EQ(WSAGetLastError(), WSAENOTSOCK);
}

// An owner of kSocket; the system is not asked.
struct Owner : CSocket
{
    Owner()
    {
        m_socket = kSocket;
    }
};

TEST_F(Socket, PassesItsCallsOn)
{
    const REPLACED(closesocket) close(Returns(0));
    std::vector<u_long> modes;
    REPLACED(ioctlsocket)
    mode([&](SOCKET, long, u_long* pnMode) {
        modes.push_back(*pnMode);
        return 5;
    });
    const REPLACED(connect) connection(Returns(7));
    const REPLACED(shutdown) end(Returns(3));
    const SOCKADDR_IN address = MakeAddress(L"127.0.0.1", 6000);
    Owner owner;
    EXPECT_EQ(owner.Ioctlsocket(1), 5);
    EXPECT_EQ(owner.Ioctlsocket(0), 5);
    EXPECT_EQ(owner.Connect(&address), 7);
    EXPECT_EQ(owner.Shutdown(), 3);
    EXPECT_EQ(mode.Arguments(), std::tuple(kSocket, static_cast<long>(0x8004667E), kAny));
    EXPECT_EQ(modes, (std::vector<u_long>{1, 0}));
    EXPECT_EQ(connection.Arguments(), std::tuple(kSocket, reinterpret_cast<const SOCKADDR*>(&address), 16));
    EXPECT_EQ(end.Arguments(), std::tuple(kSocket, 2));
    EXPECT_EQ(owner.m_socket, kSocket);
}

TEST_F(Socket, IsKeptWhenItCannotBeClosedAndNoneOnceItIs)
{
    const REPLACED(closesocket) close(InTurn(Returns(SOCKET_ERROR, WSAENETDOWN), Returns(0)));
    Owner owner;
    EXPECT_EQ(owner.CloseSocket(), SOCKET_ERROR);
    EXPECT_EQ(owner.m_socket, kSocket);
    EXPECT_EQ(owner.CloseSocket(), 0);
    EXPECT_EQ(owner.m_socket, INVALID_SOCKET);
    EXPECT_EQ(close.Arg<0>(1), kSocket);
}

TEST_F(Socket, ThatCannotBeClosedAtTheEndEndsTheProcessWithTheReason)
{
    const REPLACED(closesocket) close(Returns(SOCKET_ERROR, WSAENETDOWN));
    WhenBoxShows([](const Box&) { SetLastError(99); });
    EXPECT_EQ(ExitCodeOf([] { const Owner owner; }), 10050u);
    ExpectBox(L"~CSocket()", L"WSA Error");
    EXPECT_EQ(Journal(), (Lines{"closesocket", "box \"~CSocket()\"", "exit 10050"}));
}

} // namespace
