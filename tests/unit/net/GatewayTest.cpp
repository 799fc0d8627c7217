// The gateway of this computer.

#include "net/WinSockHelper.h"

#include "tests/kit/Test.h"
#include "tests/unit/net/Sockets.h"
#include "tests/unit/net/SoiledStack.h"

#include <iphlpapi.h>
#include <netioapi.h>

#include <cstring>

using namespace kit;

namespace {

constexpr DWORD kInterface = 17;

// Answers that lead to a gateway, as GetBestInterfaceEx and GetBestRoute2 give them.
DWORD FindInterface(SOCKADDR*, DWORD* pdwIndex)
{
    *pdwIndex = kInterface;
    return NO_ERROR;
}

auto RouteOver(PCWSTR pszGateway)
{
    return [pszGateway](NET_LUID*, NET_IFINDEX, const SOCKADDR_INET*, const SOCKADDR_INET*, ULONG,
                        MIB_IPFORWARD_ROW2* pRoute, SOCKADDR_INET* pSource) -> DWORD {
        // All of the row but its next hop leads astray.
        std::memset(pRoute, 0x33, sizeof(*pRoute));
        pRoute->NextHop.Ipv4 = MakeAddress(pszGateway, 0);
        pSource->Ipv4 = MakeAddress(L"192.168.1.2", 0);
        return NO_ERROR;
    };
}

class Gateway : public Test
{
protected:
    Gateway()
    {
        wmemset(m_szGateway, L'?', 16);
    }

    // As a caller whose stack was in use before.
    BOOL Get()
    {
        SoilStack();
        return CWinSockHelper::GetDefaultGateway(m_szGateway);
    }

    void ExpectUntouched() const
    {
        EXPECT_EQ(std::wstring(m_szGateway, 16), std::wstring(16, L'?'));
    }

    WCHAR m_szGateway[16];
    REPLACED(GetBestInterfaceEx) m_interfaceTo { Maybe(FindInterface) };

private:
    Sockets m_sockets;
};

// The longest address fills the buffer. Without a gateway between this computer and the destination the next hop is no
// address, which is a text like any.
TEST_F(Gateway, IsTheNextHopOfTheRouteToTheInternet)
{
    for (const PCWSTR pszGateway : {L"192.168.1.1", L"255.255.255.255", L"0.0.0.0"}) {
        SCOPED_TRACE(Narrow(pszGateway));
        Journal().clear();
        const REPLACED(GetBestRoute2) route(RouteOver(pszGateway));
        EXPECT_EQ(Get(), TRUE);
        EXPECT_STREQ(m_szGateway, pszGateway);
        EXPECT_EQ(Journal(), (Lines{"GetBestInterfaceEx", "GetBestRoute2"}));
    }
}

// The system fills the row as it is documented, whatever the header at hand makes of it; the answers of these tests
// are made with the same header and would never tell.
static_assert(sizeof(MIB_IPFORWARD_ROW2) == 104);
static_assert(offsetof(MIB_IPFORWARD_ROW2, InterfaceLuid) == 0);
static_assert(offsetof(MIB_IPFORWARD_ROW2, InterfaceIndex) == 8);
static_assert(offsetof(MIB_IPFORWARD_ROW2, DestinationPrefix) == 12);
static_assert(offsetof(MIB_IPFORWARD_ROW2, NextHop) == 44);
static_assert(offsetof(MIB_IPFORWARD_ROW2, NextHop.Ipv4.sin_addr) == 48);
static_assert(offsetof(MIB_IPFORWARD_ROW2, SitePrefixLength) == 72);
static_assert(offsetof(MIB_IPFORWARD_ROW2, ValidLifetime) == 76);
static_assert(offsetof(MIB_IPFORWARD_ROW2, PreferredLifetime) == 80);
static_assert(offsetof(MIB_IPFORWARD_ROW2, Metric) == 84);
static_assert(offsetof(MIB_IPFORWARD_ROW2, Protocol) == 88);
static_assert(offsetof(MIB_IPFORWARD_ROW2, Loopback) == 92);
static_assert(offsetof(MIB_IPFORWARD_ROW2, Age) == 96);
static_assert(offsetof(MIB_IPFORWARD_ROW2, Origin) == 100);
static_assert(sizeof(SOCKADDR_INET) == 28);
static_assert(sizeof(NET_LUID) == 8);

bool IsZero(const void* p, size_t cb)
{
    const auto* pBytes = static_cast<const BYTE*>(p);
    return std::all_of(pBytes, pBytes + cb, [](BYTE b) { return b == 0; });
}

// 8.8.8.8 without port, the rest zero.
void ExpectProbeDestination(const void* pAddress)
{
    const SOCKADDR_IN expected = MakeAddress(L"8.8.8.8", 0);
    EXPECT_EQ(std::memcmp(pAddress, &expected, sizeof(expected)), 0);
}

TEST_F(Gateway, IsAskedForTowardOneFixedAddress)
{
    REPLACED(WSAStringToAddressW)
    convert([](PWSTR psz, INT nFamily, WSAPROTOCOL_INFOW* pInfo, SOCKADDR* pAddress, INT* pnLength) -> INT {
        EXPECT_STREQ(psz, L"8.8.8.8");
        EXPECT_EQ(nFamily, 2);
        EXPECT_EQ(*pnLength, 16);
        EXPECT_EQ(pAddress->sa_family, 2);
        EXPECT_TRUE(IsZero(pAddress->sa_data, 14));
        return REPLACED(WSAStringToAddressW)::Real(psz, nFamily, pInfo, pAddress, pnLength);
    });
    const REPLACED(GetBestInterfaceEx) interfaceTo([](SOCKADDR* pDestination, DWORD* pdwIndex) {
        ExpectProbeDestination(pDestination);
        return FindInterface(pDestination, pdwIndex);
    });
    const REPLACED(GetBestRoute2) route([](NET_LUID* pLuid, NET_IFINDEX nInterface, const SOCKADDR_INET* pSource,
                                           const SOCKADDR_INET* pDestination, ULONG nOptions,
                                           MIB_IPFORWARD_ROW2* pRoute, SOCKADDR_INET* pBestSource) -> DWORD {
        EXPECT_TRUE(IsZero(pLuid, sizeof(*pLuid)));
        EXPECT_EQ(nInterface, kInterface);
        EXPECT_EQ(pSource, nullptr);
        ExpectProbeDestination(pDestination);
        EXPECT_EQ(nOptions, 0u);
        EXPECT_TRUE(IsZero(pBestSource, sizeof(*pBestSource)));
        return RouteOver(L"10.0.0.1")(pLuid, nInterface, pSource, pDestination, nOptions, pRoute, pBestSource);
    });
    EXPECT_EQ(Get(), TRUE);
    EXPECT_STREQ(m_szGateway, L"10.0.0.1");
}

TEST_F(Gateway, IsUnknownWhenTheDestinationCannotBeConverted)
{
    const REPLACED(WSAStringToAddressW) convert(Returns(INT(SOCKET_ERROR), WSAEINVAL));
    const REPLACED(GetBestRoute2) route(Never());
    EXPECT_EQ(Get(), FALSE);
    ExpectUntouched();
    EXPECT_EQ(m_interfaceTo.Calls(), 0u);
}

TEST_F(Gateway, IsUnknownWhenItsAddressHasNoText)
{
    const REPLACED(GetBestRoute2) route(RouteOver(L"192.168.1.1"));
    const REPLACED(InetNtopW) text(Returns(PCWSTR(nullptr)));
    EXPECT_EQ(Get(), FALSE);
    ExpectUntouched();
}

// What one of the two calls returns, and what is told of it: a text, or else the last error in place of the result.
struct Failure
{
    bool bRoute;
    DWORD dwResult;
    PCWSTR pszDetail = nullptr;
};

constexpr PCWSTR kNoInterface = L"The network interface could not be found, e.g. Wi-Fi turned off.";
constexpr PCWSTR kNoIpv4 = L"IPv4 is not available on the local computer";
constexpr PCWSTR kInvalid = L"Invalid parameter passed";
constexpr Failure kFailures[] = {
    {false, 50, kNoIpv4},    {false, 87, kInvalid},      {false, 1003, L"The operation could not be completed"},
    {true, 2, kNoInterface}, {true, 1168, kNoInterface}, {true, 50, kNoIpv4},
    {true, 87, kInvalid},
};
constexpr Failure kOtherFailures[] = {
    {false, 1}, {false, 2}, {false, 8}, {false, 49},  {false, 86},  {false, 1002}, {false, 1168},
    {true, 1},  {true, 3},  {true, 8},  {true, 1003}, {true, 1167}, {true, 1231},  {false, 1231},
};

class GatewayFailure : public Gateway, public testing::WithParamInterface<Failure>
{
};

TEST_P(GatewayFailure, EndsTheProcessWithItsTextOrTheLastError)
{
    const auto& [bRoute, dwResult, pszDetail] = GetParam();
    const REPLACED(GetBestInterfaceEx) interfaceTo([&](SOCKADDR* pDestination, DWORD* pdwIndex) {
        SetLastError(ERROR_ACCESS_DENIED);
        return bRoute ? FindInterface(pDestination, pdwIndex) : dwResult;
    });
    const REPLACED(GetBestRoute2) route(Maybe(Returns(dwResult, ERROR_ACCESS_DENIED)));
    EXPECT_EQ(ExitCodeOf([this] { Get(); }), pszDetail != nullptr ? 1u : 5u);
    const std::wstring strCall = L"CWinSockHelper::GetDefaultGateway()";
    ExpectBox(strCall + (pszDetail != nullptr ? std::wstring(L"\n") + pszDetail
                                              : L" failed with error 5: " + SystemDescription(5)),
              L"Error");
    EXPECT_EQ(route.Calls(), bRoute ? 1u : 0u);
    ExpectUntouched();
}

constexpr auto kByCall = [](const auto& info) {
    return (info.param.bRoute ? "GetBestRoute2Returns" : "GetBestInterfaceExReturns") +
           std::to_string(info.param.dwResult);
};
INSTANTIATE_TEST_SUITE_P(Known, GatewayFailure, testing::ValuesIn(kFailures), kByCall);
INSTANTIATE_TEST_SUITE_P(Other, GatewayFailure, testing::ValuesIn(kOtherFailures), kByCall);

} // namespace
