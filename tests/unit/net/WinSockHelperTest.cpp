// Addresses as text and back.

#include "net/WinSockHelper.h"

#include "tests/kit/Test.h"
#include "tests/unit/net/Sockets.h"

#include <array>
#include <cstring>

using namespace kit;

namespace {

class AddressText : public Test
{
private:
    Sockets m_sockets;
};

// An address of either family, told by its text.
struct Address
{
    Address(PCWSTR pszAddress, u_short nPort) : m_bIpv6(wcschr(pszAddress, L':') != nullptr)
    {
        if (m_bIpv6) {
            m_ipv6.sin6_family = AF_INET6;
            m_ipv6.sin6_port = htons(nPort);
            InetPtonW(AF_INET6, pszAddress, &m_ipv6.sin6_addr);
        } else {
            m_ipv4 = MakeAddress(pszAddress, nPort);
        }
    }

    const SOCKADDR* Get() const
    {
        return reinterpret_cast<const SOCKADDR*>(&m_ipv6);
    }

    const void* Number() const
    {
        return m_bIpv6 ? static_cast<const void*>(&m_ipv6.sin6_addr) : &m_ipv4.sin_addr;
    }

    bool m_bIpv6;
    union {
        SOCKADDR_IN6 m_ipv6 = {};
        SOCKADDR_IN m_ipv4;
    };
};

class AddressPattern : public AddressText
{
protected:
    // Whether the system is asked for this text, and for which family; 0 for not at all.
    static void ExpectAskedFor(PCWSTR pszAddress, int nFamily)
    {
        SCOPED_TRACE(Narrow(pszAddress));
        SOCKADDR_STORAGE storage = {};
        auto* pStorage = reinterpret_cast<SOCKADDR*>(&storage);
        INT nLength = 93;
        std::wstring strGiven;
        REPLACED(WSAStringToAddressW)
        convert(Maybe([&](PWSTR psz, INT, WSAPROTOCOL_INFOW*, SOCKADDR*, INT* pnLength) -> INT {
            strGiven = psz;
            EXPECT_EQ(*pnLength, 93);
            *pnLength = 7;
            return 0;
        }));
        EXPECT_EQ(CWinSockHelper::StringToAddress(pszAddress, pStorage, nLength), nFamily != 0);
        ASSERT_EQ(convert.Calls(), nFamily != 0 ? 1u : 0u);
        EXPECT_EQ(nLength, nFamily != 0 ? 7 : 93);
        if (nFamily != 0) {
            EXPECT_EQ(strGiven, pszAddress);
            EXPECT_EQ(convert.Arguments(), std::tuple(kAny, nFamily, nullptr, pStorage, kAny));
        }
    }
};

TEST_F(AddressPattern, OfFourNumbersUpTo255IsIpv4)
{
    for (const PCWSTR psz : {L"8.8.8.8", L"0.0.0.0", L"255.255.255.255", L"250.250.250.250", L"249.249.249.249",
                             L"200.200.200.200", L"199.199.199.199", L"100.100.100.100", L"99.99.99.99", L"10.10.10.10",
                             L"01.002.3.4", L"001.001.001.001", L"099.099.099.099", L"192.168.1.100", L"1.23.45.6"}) {
        ExpectAskedFor(psz, 2);
    }
    for (const PCWSTR psz : {L"256.1.1.1", L"1.256.1.1", L"1.1.256.1",  L"1.1.1.256",  L"260.1.1.1", L"1.1.1.260",
                             L"300.1.1.1", L"1.1.1.300", L"1.2.3",      L"1.2.3.",     L"1.2.3.4.",  L".1.2.3.4",
                             L"1.2..4",    L"1.2.3.4.5", L"1.2.3.4 ",   L" 1.2.3.4",   L"1.2.3.4\n", L"1.2.3.4:5555",
                             L"1x2x3x4",   L"1.2.3.A",   L"0001.2.3.4", L"1.2.3.0004", L"-1.2.3.4",  L""}) {
        ExpectAskedFor(psz, 0);
    }
}

TEST_F(AddressPattern, OfEightGroupsInCapitalsIsIpv6)
{
    for (const PCWSTR psz : {L"FE80:0:0:0:0:0:0:1", L"0:0:0:0:0:0:0:0", L"0123:4567:89AB:CDEF:FEDC:BA98:7654:3210",
                             L"1:22:333:4444:F:FF:FFF:FFFF", L"9:9:9:9:A:A:A:A"}) {
        ExpectAskedFor(psz, 23);
    }
    for (const PCWSTR psz :
         {L"fe80:0:0:0:0:0:0:1", L"FE80:0:0:0:0:0:0:a", L"FE80::1", L"::1", L"::", L"1:2:3:4:5:6:7", L"1:2:3:4:5:6:7:",
          L"1:2:3:4:5:6:7:8:9", L"10000:0:0:0:0:0:0:1", L"0:0:0:0:0:0:0:10000", L"G:0:0:0:0:0:0:1", L"0:0:0:0:0:0:0:G",
          L"FE80:0:0:0:0:0:0:1%3", L"[FE80:0:0:0:0:0:0:1]", L"0:0:0:0:0:FFFF:1.2.3.4", L" FE80:0:0:0:0:0:0:1",
          L"FE80:0:0:0:0:0:0:1 ", L"FE80:0:0:0:0:0:0:1\n"}) {
        ExpectAskedFor(psz, 0);
    }
}

TEST_F(AddressText, BecomesAnAddressWhereThereIsRoom)
{
    SOCKADDR_IN ipv4 = {};
    INT nLength = sizeof(ipv4) - 1;
    EXPECT_EQ(CWinSockHelper::StringToAddress(L"8.8.8.8", reinterpret_cast<SOCKADDR*>(&ipv4), nLength), FALSE);
    nLength = sizeof(ipv4);
    EXPECT_EQ(CWinSockHelper::StringToAddress(L"192.168.1.100", reinterpret_cast<SOCKADDR*>(&ipv4), nLength), TRUE);
    EXPECT_EQ(ipv4.sin_family, 2);
    EXPECT_EQ(ipv4.sin_port, 0);
    EXPECT_EQ(ipv4.sin_addr.s_addr, 0x6401A8C0u);
    EXPECT_EQ(nLength, 16);
    SOCKADDR_IN6 ipv6 = {};
    nLength = sizeof(ipv6);
    EXPECT_EQ(CWinSockHelper::StringToAddress(L"FE80:0:0:0:0:0:0:1", reinterpret_cast<SOCKADDR*>(&ipv6), nLength),
              TRUE);
    EXPECT_EQ(ipv6.sin6_family, 23);
    EXPECT_EQ(std::memcmp(&ipv6.sin6_addr, Address(L"fe80::1", 0).Number(), 16), 0);
    EXPECT_EQ(nLength, 28);
}

struct Text
{
    PCWSTR pszAddress;
    u_short nPort;
    PCWSTR pszWithPort;
};

// The longest ones fit.
TEST_F(AddressText, OfASocketAddressHasItsPortOrNot)
{
    for (const Text& text : std::to_array<Text>({
             {L"192.168.1.100", 5555, L"192.168.1.100:5555"},
             {L"192.168.1.100", 43210, L"192.168.1.100:43210"},
             {L"10.0.0.1", 0, L"10.0.0.1"},
             {L"255.255.255.255", 65535, L"255.255.255.255:65535"},
             {L"fe80::1", 5555, L"[fe80::1]:5555"},
             {L"1111:2222:3333:4444:5555:6666:7777:8888", 1, L"[1111:2222:3333:4444:5555:6666:7777:8888]:1"},
         })) {
        SCOPED_TRACE(Narrow(text.pszWithPort));
        const Address address(text.pszAddress, text.nPort);
        CStringW szAddress = L"before";
        EXPECT_EQ(CWinSockHelper::AddressToString(address.Get(), szAddress), TRUE);
        EXPECT_STREQ(szAddress, text.pszWithPort);
        szAddress = L"before";
        EXPECT_EQ(CWinSockHelper::AddressToIpString(address.Get(), szAddress), TRUE);
        EXPECT_STREQ(szAddress, text.pszAddress);
        EXPECT_EQ(szAddress.GetLength(), static_cast<int>(wcslen(text.pszAddress)));
        if (!address.m_bIpv6) {
            szAddress = L"before";
            EXPECT_EQ(CWinSockHelper::Ipv4ToString(&address.m_ipv4.sin_addr, szAddress), TRUE);
            EXPECT_STREQ(szAddress, text.pszAddress);
        }
    }
}

TEST_F(AddressText, OfAnyOtherFamilyIsNoneAndLeavesTheTextAlone)
{
    for (const ADDRESS_FAMILY nFamily : std::to_array<ADDRESS_FAMILY>({0, 1, 3, 22, 24})) {
        SCOPED_TRACE(nFamily);
        Address address(L"1.2.3.4", 5);
        address.m_ipv4.sin_family = nFamily;
        CStringW szAddress = L"as it was";
        EXPECT_EQ(CWinSockHelper::AddressToString(address.Get(), szAddress), FALSE);
        EXPECT_EQ(CWinSockHelper::AddressToIpString(address.Get(), szAddress), FALSE);
        EXPECT_STREQ(szAddress, L"as it was");
    }
}

// Both calls fill their whole buffer, InetNtopW without a terminator.
TEST_F(AddressText, IsAskedForWithTheLengthsOfItsFamily)
{
    const REPLACED(WSAAddressToStringW)
        withPort([](SOCKADDR*, DWORD, WSAPROTOCOL_INFOW*, PWSTR psz, DWORD* pcch) -> INT {
            EXPECT_EQ(*pcch, 128u);
            wmemset(psz, L'x', 127);
            psz[127] = L'\0';
            return 0;
        });
    const REPLACED(InetNtopW)
        withoutPort([](INT, const void*, PWSTR psz, size_t cch) -> PCWSTR { return wmemset(psz, L'9', cch); });
    const Address addresses[] = {{L"1.2.3.4", 5}, {L"::1", 5}};
    for (size_t n = 0; n < 2; ++n) {
        SCOPED_TRACE(n == 0 ? "IPv4" : "IPv6");
        CStringW szAddress = L"before";
        EXPECT_EQ(CWinSockHelper::AddressToString(addresses[n].Get(), szAddress), TRUE);
        EXPECT_EQ(withPort.Arguments(n), std::tuple(addresses[n].Get(), n == 0 ? 16u : 28u, nullptr, kAny, kAny));
        EXPECT_EQ(szAddress.GetLength(), 127);
        EXPECT_NE(withPort.Arg<3>(n), szAddress.GetString());
        EXPECT_EQ(CWinSockHelper::AddressToIpString(addresses[n].Get(), szAddress), TRUE);
        EXPECT_EQ(withoutPort.Arguments(n),
                  std::tuple(n == 0 ? 2 : 23, addresses[n].Number(), kAny, n == 0 ? 16u : 46u));
        EXPECT_EQ(szAddress.GetLength(), n == 0 ? 16 : 46);
    }
}

TEST_F(AddressText, IsEmptyWhenTheSystemCannotTell)
{
    const REPLACED(WSAAddressToStringW) withPort(Returns(INT(SOCKET_ERROR), WSAEFAULT));
    const REPLACED(InetNtopW) withoutPort(Returns(PCWSTR(nullptr)));
    for (const Address& address : {Address(L"1.2.3.4", 5), Address(L"::1", 5)}) {
        SCOPED_TRACE(address.m_bIpv6 ? "IPv6" : "IPv4");
        CStringW szAddress = L"before";
        EXPECT_EQ(CWinSockHelper::AddressToString(address.Get(), szAddress), TRUE);
        EXPECT_STREQ(szAddress, L"");
        szAddress = L"before";
        EXPECT_EQ(CWinSockHelper::AddressToIpString(address.Get(), szAddress), FALSE);
        EXPECT_STREQ(szAddress, L"");
    }
}

} // namespace
