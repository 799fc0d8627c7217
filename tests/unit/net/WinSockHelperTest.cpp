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

SOCKADDR_IN6 MakeIpv6Address(PCWSTR pszAddress, u_short nPort)
{
    SOCKADDR_IN6 address = {};
    address.sin6_family = AF_INET6;
    address.sin6_port = htons(nPort);
    InetPtonW(AF_INET6, pszAddress, &address.sin6_addr);
    return address;
}

template<typename Address>
const SOCKADDR* Generic(const Address& address)
{
    return reinterpret_cast<const SOCKADDR*>(&address);
}

struct Pattern
{
    PCWSTR pszAddress;
    int nFamily; // 0: refused
};

class AddressPattern : public AddressText, public testing::WithParamInterface<Pattern>
{
};

TEST_P(AddressPattern, DecidesWhetherAndAsWhatTheSystemIsAsked)
{
    const Pattern& pattern = GetParam();
    SOCKADDR_STORAGE storage = {};
    INT nLength = 93;
    std::wstring strGiven;
    REPLACED(WSAStringToAddressW)
    convert([&](PWSTR psz, INT, WSAPROTOCOL_INFOW*, SOCKADDR*, INT* pnLength) -> INT {
        strGiven = psz;
        EXPECT_EQ(*pnLength, 93);
        *pnLength = 7;
        return 0;
    });
    convert.Optional();

    const BOOL bConverted =
        CWinSockHelper::StringToAddress(pattern.pszAddress, reinterpret_cast<SOCKADDR*>(&storage), nLength);

    if (pattern.nFamily == 0) {
        EXPECT_EQ(bConverted, FALSE);
        EXPECT_EQ(convert.Calls(), 0u);
        EXPECT_EQ(nLength, 93);
        return;
    }
    EXPECT_EQ(bConverted, TRUE);
    ASSERT_EQ(convert.Calls(), 1u);
    EXPECT_EQ(strGiven, pattern.pszAddress);
    EXPECT_EQ(convert.Arg<1>(), pattern.nFamily);
    EXPECT_EQ(convert.Arg<2>(), nullptr);
    EXPECT_EQ(convert.Arg<3>(), reinterpret_cast<SOCKADDR*>(&storage));
    EXPECT_EQ(nLength, 7);
}

constexpr Pattern Ipv4(PCWSTR pszAddress)
{
    return {pszAddress, 2};
}

constexpr Pattern Ipv6(PCWSTR pszAddress)
{
    return {pszAddress, 23};
}

constexpr Pattern Refused(PCWSTR pszAddress)
{
    return {pszAddress, 0};
}

INSTANTIATE_TEST_SUITE_P(DottedAccepted, AddressPattern,
                         testing::Values(Ipv4(L"8.8.8.8"), Ipv4(L"0.0.0.0"), Ipv4(L"255.255.255.255"),
                                         Ipv4(L"250.250.250.250"), Ipv4(L"249.249.249.249"), Ipv4(L"200.200.200.200"),
                                         Ipv4(L"199.199.199.199"), Ipv4(L"100.100.100.100"), Ipv4(L"99.99.99.99"),
                                         Ipv4(L"10.10.10.10"), Ipv4(L"01.002.3.4"), Ipv4(L"001.001.001.001"),
                                         Ipv4(L"099.099.099.099"), Ipv4(L"192.168.1.100"), Ipv4(L"1.23.45.6")));

INSTANTIATE_TEST_SUITE_P(DottedRefused, AddressPattern,
                         testing::Values(Refused(L"256.1.1.1"), Refused(L"1.256.1.1"), Refused(L"1.1.256.1"),
                                         Refused(L"1.1.1.256"), Refused(L"260.1.1.1"), Refused(L"1.1.1.260"),
                                         Refused(L"300.1.1.1"), Refused(L"1.1.1.300"), Refused(L"1.2.3"),
                                         Refused(L"1.2.3."), Refused(L"1.2.3.4."), Refused(L".1.2.3.4"),
                                         Refused(L"1.2..4"), Refused(L"1.2.3.4.5"), Refused(L"1.2.3.4 "),
                                         Refused(L" 1.2.3.4"), Refused(L"1.2.3.4\n"), Refused(L"1.2.3.4:5555"),
                                         Refused(L"1x2x3x4"), Refused(L"1.2.3.A"), Refused(L"0001.2.3.4"),
                                         Refused(L"1.2.3.0004"), Refused(L"-1.2.3.4"), Refused(L"")));

INSTANTIATE_TEST_SUITE_P(EightGroupsAccepted, AddressPattern,
                         testing::Values(Ipv6(L"FE80:0:0:0:0:0:0:1"), Ipv6(L"0:0:0:0:0:0:0:0"),
                                         Ipv6(L"0123:4567:89AB:CDEF:FEDC:BA98:7654:3210"),
                                         Ipv6(L"1:22:333:4444:F:FF:FFF:FFFF"), Ipv6(L"9:9:9:9:A:A:A:A")));

INSTANTIATE_TEST_SUITE_P(EightGroupsRefused, AddressPattern,
                         testing::Values(Refused(L"fe80:0:0:0:0:0:0:1"), Refused(L"FE80:0:0:0:0:0:0:a"),
                                         Refused(L"FE80::1"), Refused(L"::1"), Refused(L"::"),
                                         Refused(L"1:2:3:4:5:6:7"), Refused(L"1:2:3:4:5:6:7:"),
                                         Refused(L"1:2:3:4:5:6:7:8:9"), Refused(L"10000:0:0:0:0:0:0:1"),
                                         Refused(L"0:0:0:0:0:0:0:10000"), Refused(L"G:0:0:0:0:0:0:1"),
                                         Refused(L"0:0:0:0:0:0:0:G"), Refused(L"FE80:0:0:0:0:0:0:1%3"),
                                         Refused(L"[FE80:0:0:0:0:0:0:1]"), Refused(L"0:0:0:0:0:FFFF:1.2.3.4"),
                                         Refused(L" FE80:0:0:0:0:0:0:1"), Refused(L"FE80:0:0:0:0:0:0:1 "),
                                         Refused(L"FE80:0:0:0:0:0:0:1\n")));

TEST_F(AddressText, IsNoAddressWhenTheSystemRefusesIt)
{
    const REPLACED(WSAStringToAddressW) convert(Returns(INT(SOCKET_ERROR), WSAEINVAL));
    SOCKADDR_IN address = {};
    INT nLength = sizeof(address);
    EXPECT_EQ(CWinSockHelper::StringToAddress(L"8.8.8.8", reinterpret_cast<SOCKADDR*>(&address), nLength), FALSE);
}

TEST_F(AddressText, BecomesAnIpv4Address)
{
    SOCKADDR_IN address = {};
    INT nLength = sizeof(address);
    EXPECT_EQ(CWinSockHelper::StringToAddress(L"192.168.1.100", reinterpret_cast<SOCKADDR*>(&address), nLength), TRUE);
    EXPECT_EQ(address.sin_family, 2);
    EXPECT_EQ(address.sin_port, 0);
    EXPECT_EQ(address.sin_addr.s_addr, 0x6401A8C0u);
    EXPECT_EQ(nLength, 16);
}

TEST_F(AddressText, BecomesAnIpv6Address)
{
    SOCKADDR_IN6 address = {};
    INT nLength = sizeof(address);
    EXPECT_EQ(CWinSockHelper::StringToAddress(L"FE80:0:0:0:0:0:0:1", reinterpret_cast<SOCKADDR*>(&address), nLength),
              TRUE);
    EXPECT_EQ(address.sin6_family, 23);
    const SOCKADDR_IN6 expected = MakeIpv6Address(L"fe80::1", 0);
    EXPECT_EQ(std::memcmp(&address.sin6_addr, &expected.sin6_addr, 16), 0);
    EXPECT_EQ(nLength, 28);
}

TEST_F(AddressText, NeedsRoomForTheAddress)
{
    SOCKADDR_IN address = {};
    INT nLength = sizeof(address) - 1;
    EXPECT_EQ(CWinSockHelper::StringToAddress(L"8.8.8.8", reinterpret_cast<SOCKADDR*>(&address), nLength), FALSE);
}

TEST_F(AddressText, OfASocketAddressHasItsPort)
{
    CStringW szAddress;
    EXPECT_EQ(CWinSockHelper::AddressToString(Generic(MakeAddress(L"192.168.1.100", 5555)), szAddress), TRUE);
    EXPECT_STREQ(szAddress, L"192.168.1.100:5555");
    EXPECT_EQ(CWinSockHelper::AddressToString(Generic(MakeAddress(L"192.168.1.100", 43210)), szAddress), TRUE);
    EXPECT_STREQ(szAddress, L"192.168.1.100:43210");
}

TEST_F(AddressText, OfASocketAddressWithoutPortIsTheBareAddress)
{
    CStringW szAddress;
    EXPECT_EQ(CWinSockHelper::AddressToString(Generic(MakeAddress(L"192.168.1.100", 0)), szAddress), TRUE);
    EXPECT_STREQ(szAddress, L"192.168.1.100");
}

TEST_F(AddressText, OfAnIpv6SocketAddressHasItsPortBehindBrackets)
{
    CStringW szAddress;
    EXPECT_EQ(CWinSockHelper::AddressToString(Generic(MakeIpv6Address(L"fe80::1", 5555)), szAddress), TRUE);
    EXPECT_STREQ(szAddress, L"[fe80::1]:5555");
}

TEST_F(AddressText, OfAnyOtherFamilyIsNoneAndLeavesTheTextAlone)
{
    for (const ADDRESS_FAMILY nFamily : std::to_array<ADDRESS_FAMILY>({0, 1, 3, 22, 24})) {
        SOCKADDR_STORAGE address = {};
        address.ss_family = nFamily;
        CStringW szAddress = L"as it was";
        EXPECT_EQ(CWinSockHelper::AddressToString(Generic(address), szAddress), FALSE);
        EXPECT_STREQ(szAddress, L"as it was");
        EXPECT_EQ(CWinSockHelper::AddressToIpString(Generic(address), szAddress), FALSE);
        EXPECT_STREQ(szAddress, L"as it was");
    }
}

// How the system is asked for the text of a socket address of one family.
void ExpectAskedForText(const SOCKADDR* pAddress, DWORD dwLength)
{
    PWSTR pszBuffer = nullptr;
    REPLACED(WSAAddressToStringW)
    convert([&](SOCKADDR*, DWORD, WSAPROTOCOL_INFOW*, PWSTR psz, DWORD* pcch) -> INT {
        EXPECT_EQ(*pcch, 128u);
        pszBuffer = psz;
        std::wstring strLongest(127, L'x');
        wmemcpy(psz, strLongest.c_str(), 128);
        return 0;
    });
    CStringW szAddress = L"before";
    EXPECT_EQ(CWinSockHelper::AddressToString(pAddress, szAddress), TRUE);
    ASSERT_EQ(convert.Calls(), 1u);
    EXPECT_EQ(convert.Arg<0>(), pAddress);
    EXPECT_EQ(convert.Arg<1>(), dwLength);
    EXPECT_EQ(convert.Arg<2>(), nullptr);
    EXPECT_EQ(szAddress.GetLength(), 127);
    EXPECT_NE(pszBuffer, szAddress.GetString());
}

TEST_F(AddressText, OfASocketAddressIsAskedForWithTheLengthOfItsFamily)
{
    const SOCKADDR_IN ipv4 = MakeAddress(L"1.2.3.4", 5);
    ExpectAskedForText(Generic(ipv4), 16);
    const SOCKADDR_IN6 ipv6 = MakeIpv6Address(L"::1", 5);
    ExpectAskedForText(Generic(ipv6), 28);
}

TEST_F(AddressText, OfASocketAddressIsEmptyWhenTheSystemHasNone)
{
    const REPLACED(WSAAddressToStringW) convert(Returns(INT(SOCKET_ERROR), WSAEFAULT));
    CStringW szAddress = L"before";
    EXPECT_EQ(CWinSockHelper::AddressToString(Generic(MakeAddress(L"1.2.3.4", 5)), szAddress), TRUE);
    EXPECT_STREQ(szAddress, L"");
}

TEST_F(AddressText, WithoutPortOfAnIpv4SocketAddress)
{
    CStringW szAddress = L"before";
    EXPECT_EQ(CWinSockHelper::AddressToIpString(Generic(MakeAddress(L"192.168.1.100", 43210)), szAddress), TRUE);
    EXPECT_STREQ(szAddress, L"192.168.1.100");
    EXPECT_EQ(szAddress.GetLength(), 13);
}

TEST_F(AddressText, WithoutPortOfAnIpv6SocketAddress)
{
    CStringW szAddress = L"before";
    EXPECT_EQ(CWinSockHelper::AddressToIpString(Generic(MakeIpv6Address(L"fe80::1", 43210)), szAddress), TRUE);
    EXPECT_STREQ(szAddress, L"fe80::1");
    EXPECT_EQ(szAddress.GetLength(), 7);
}

TEST_F(AddressText, OfAnIpv4AddressIsDotted)
{
    const IN_ADDR address = MakeAddress(L"10.0.0.1", 0).sin_addr;
    CStringW szAddress;
    EXPECT_EQ(CWinSockHelper::Ipv4ToString(&address, szAddress), TRUE);
    EXPECT_STREQ(szAddress, L"10.0.0.1");
    EXPECT_EQ(szAddress.GetLength(), 8);
}

TEST_F(AddressText, OfTheLongestIpv4AddressFits)
{
    const IN_ADDR address = MakeAddress(L"255.255.255.255", 0).sin_addr;
    CStringW szAddress;
    EXPECT_EQ(CWinSockHelper::Ipv4ToString(&address, szAddress), TRUE);
    EXPECT_STREQ(szAddress, L"255.255.255.255");
}

TEST_F(AddressText, OfTheLongestIpv6AddressFits)
{
    CStringW szAddress;
    EXPECT_EQ(CWinSockHelper::AddressToIpString(Generic(MakeIpv6Address(L"1111:2222:3333:4444:5555:6666:7777:8888", 0)),
                                                szAddress),
              TRUE);
    EXPECT_STREQ(szAddress, L"1111:2222:3333:4444:5555:6666:7777:8888");
}

// InetNtopW that fills its whole buffer and forgets the terminator.
PCWSTR Overfill(INT, const void*, PWSTR psz, size_t cch)
{
    wmemset(psz, L'9', cch);
    return psz;
}

TEST_F(AddressText, OfAnIpv4AddressIsAskedForInSixteenCharacters)
{
    const REPLACED(InetNtopW) convert(Overfill);
    const SOCKADDR_IN address = MakeAddress(L"1.2.3.4", 0);
    CStringW szAddress;
    EXPECT_EQ(CWinSockHelper::AddressToIpString(Generic(address), szAddress), TRUE);
    EXPECT_EQ(convert.Arg<0>(), 2);
    EXPECT_EQ(convert.Arg<1>(), &address.sin_addr);
    EXPECT_EQ(convert.Arg<3>(), 16u);
    EXPECT_EQ(szAddress.GetLength(), 16);
}

TEST_F(AddressText, OfAnIpv6AddressIsAskedForInFortySixCharacters)
{
    const REPLACED(InetNtopW) convert(Overfill);
    const SOCKADDR_IN6 address = MakeIpv6Address(L"::1", 0);
    CStringW szAddress;
    EXPECT_EQ(CWinSockHelper::AddressToIpString(Generic(address), szAddress), TRUE);
    EXPECT_EQ(convert.Arg<0>(), 23);
    EXPECT_EQ(convert.Arg<1>(), &address.sin6_addr);
    EXPECT_EQ(convert.Arg<3>(), 46u);
    EXPECT_EQ(szAddress.GetLength(), 46);
}

TEST_F(AddressText, IsEmptyWhenTheSystemCannotTell)
{
    const REPLACED(InetNtopW) convert(Returns(PCWSTR(nullptr)));
    const SOCKADDR_IN ipv4 = MakeAddress(L"1.2.3.4", 0);
    CStringW szAddress = L"before";
    EXPECT_EQ(CWinSockHelper::Ipv4ToString(&ipv4.sin_addr, szAddress), FALSE);
    EXPECT_STREQ(szAddress, L"");
    szAddress = L"before";
    EXPECT_EQ(CWinSockHelper::AddressToIpString(Generic(ipv4), szAddress), FALSE);
    EXPECT_STREQ(szAddress, L"");
    szAddress = L"before";
    EXPECT_EQ(CWinSockHelper::AddressToIpString(Generic(MakeIpv6Address(L"::1", 0)), szAddress), FALSE);
    EXPECT_STREQ(szAddress, L"");
}

} // namespace
