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

std::wstring SystemDescription(DWORD dwCode)
{
    WCHAR szText[512] = {};
    FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr, dwCode, 0, szText, 512,
                   nullptr);
    return szText;
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

    std::optional<UINT> ExitCode()
    {
        return ExitCodeOf([this] { Get(); });
    }

    void ExpectUntouched() const
    {
        EXPECT_EQ(std::wstring(m_szGateway, 16), std::wstring(16, L'?'));
    }

    WCHAR m_szGateway[16];

private:
    Sockets m_sockets;
};

TEST_F(Gateway, IsTheNextHopOfTheRouteToTheInternet)
{
    const REPLACED(GetBestInterfaceEx) interfaceTo(FindInterface);
    const REPLACED(GetBestRoute2) route(RouteOver(L"192.168.1.1"));
    EXPECT_EQ(Get(), TRUE);
    EXPECT_STREQ(m_szGateway, L"192.168.1.1");
    EXPECT_EQ(Journal(), (Lines{"GetBestInterfaceEx", "GetBestRoute2"}));
}

TEST_F(Gateway, OfTheLongestAddressFillsTheBuffer)
{
    const REPLACED(GetBestInterfaceEx) interfaceTo(FindInterface);
    const REPLACED(GetBestRoute2) route(RouteOver(L"255.255.255.255"));
    EXPECT_EQ(Get(), TRUE);
    EXPECT_STREQ(m_szGateway, L"255.255.255.255");
}

// Without a gateway between this computer and the destination the next hop is no address, which is a text like any.
TEST_F(Gateway, MayBeNoAddressAtAll)
{
    const REPLACED(GetBestInterfaceEx) interfaceTo(FindInterface);
    const REPLACED(GetBestRoute2) route(RouteOver(L"0.0.0.0"));
    EXPECT_EQ(Get(), TRUE);
    EXPECT_STREQ(m_szGateway, L"0.0.0.0");
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
    REPLACED(GetBestInterfaceEx) interfaceTo;
    REPLACED(GetBestRoute2) route;
    interfaceTo.Optional();
    route.Optional();
    EXPECT_EQ(Get(), FALSE);
    ExpectUntouched();
    EXPECT_EQ(interfaceTo.Calls() + route.Calls(), 0u);
}

TEST_F(Gateway, IsUnknownWhenItsAddressHasNoText)
{
    const REPLACED(GetBestInterfaceEx) interfaceTo(FindInterface);
    const REPLACED(GetBestRoute2) route(RouteOver(L"192.168.1.1"));
    const REPLACED(InetNtopW) text(Returns(PCWSTR(nullptr)));
    EXPECT_EQ(Get(), FALSE);
    ExpectUntouched();
}

struct Failure
{
    DWORD dwResult;
    PCWSTR pszDetail;
};

class GatewayInterfaceFailure : public Gateway, public testing::WithParamInterface<Failure>
{
};

TEST_P(GatewayInterfaceFailure, EndsTheProcessWithItsText)
{
    const REPLACED(GetBestInterfaceEx) interfaceTo(Returns(GetParam().dwResult, 4711));
    REPLACED(GetBestRoute2) route;
    route.Optional();
    EXPECT_EQ(ExitCode(), 1u);
    ExpectBox(std::wstring(L"CWinSockHelper::GetDefaultGateway()\n") + GetParam().pszDetail, L"Error");
    EXPECT_EQ(route.Calls(), 0u);
    ExpectUntouched();
}

INSTANTIATE_TEST_SUITE_P(Known, GatewayInterfaceFailure,
                         testing::Values(Failure{50, L"IPv4 is not available on the local computer"},
                                         Failure{87, L"Invalid parameter passed"},
                                         Failure{1003, L"The operation could not be completed"}));

class GatewayRouteFailure : public Gateway, public testing::WithParamInterface<Failure>
{
};

TEST_P(GatewayRouteFailure, EndsTheProcessWithItsText)
{
    const REPLACED(GetBestInterfaceEx) interfaceTo(FindInterface);
    const REPLACED(GetBestRoute2) route(Returns(GetParam().dwResult, 4711));
    EXPECT_EQ(ExitCode(), 1u);
    ExpectBox(std::wstring(L"CWinSockHelper::GetDefaultGateway()\n") + GetParam().pszDetail, L"Error");
    ExpectUntouched();
}

INSTANTIATE_TEST_SUITE_P(
    Known, GatewayRouteFailure,
    testing::Values(Failure{2, L"The network interface could not be found, e.g. Wi-Fi turned off."},
                    Failure{1168, L"The network interface could not be found, e.g. Wi-Fi turned off."},
                    Failure{50, L"IPv4 is not available on the local computer"},
                    Failure{87, L"Invalid parameter passed"}));

class GatewayInterfaceOtherFailure : public Gateway, public testing::WithParamInterface<DWORD>
{
};

TEST_P(GatewayInterfaceOtherFailure, EndsTheProcessWithTheLastErrorAndNotTheResult)
{
    const REPLACED(GetBestInterfaceEx) interfaceTo(Returns(GetParam(), ERROR_ACCESS_DENIED));
    EXPECT_EQ(ExitCode(), 5u);
    ExpectBox(L"CWinSockHelper::GetDefaultGateway() failed with error 5: " + SystemDescription(5), L"Error");
    ExpectUntouched();
}

INSTANTIATE_TEST_SUITE_P(Any, GatewayInterfaceOtherFailure, testing::Values(1, 2, 8, 49, 86, 1002, 1168, 1231));

class GatewayRouteOtherFailure : public Gateway, public testing::WithParamInterface<DWORD>
{
};

TEST_P(GatewayRouteOtherFailure, EndsTheProcessWithTheLastErrorAndNotTheResult)
{
    const REPLACED(GetBestInterfaceEx) interfaceTo(FindInterface);
    const REPLACED(GetBestRoute2) route(Returns(GetParam(), ERROR_ACCESS_DENIED));
    EXPECT_EQ(ExitCode(), 5u);
    ExpectBox(L"CWinSockHelper::GetDefaultGateway() failed with error 5: " + SystemDescription(5), L"Error");
    ExpectUntouched();
}

INSTANTIATE_TEST_SUITE_P(Any, GatewayRouteOtherFailure, testing::Values(1, 3, 8, 1003, 1167, 1231));

} // namespace
