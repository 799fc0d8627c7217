// Anything at all as an address: accepted when one of the two expressions, run by std::wregex, matches it.
//
// The input's first byte chooses: bit 0, whether the rest are UTF-16 units or bytes that stand for themselves;
// bit 1, whether the system refuses what it is asked to convert.
#include "tests/fuzz/Demand.h"
#include "tests/fuzz/Units.h"

#include "app/ground/ErrorReport.h"
#include "net/WinSockHelper.h"

#include <iphlpapi.h>
#include <netioapi.h>

#include <regex>

namespace {

// The library's expressions go one call deeper for each character.
constexpr size_t kMaxUnits = 1000;

struct CONVERSION
{
    int nCalls;
    std::wstring strAddress;
    INT nFamily;
    SOCKADDR* pAddress;
    INT* pnLength;
    bool bRefused;
};
CONVERSION g_conversion;

INT ExpectedFamily(const std::wstring& strAddress)
{
    static const std::wregex s_ipv4(L"^(?:(?:25[0-5]|2[0-4][0-9]|[01]?[0-9][0-9]?)\\.){3}"
                                    L"(?:25[0-5]|2[0-4][0-9]|[01]?[0-9][0-9]?)$");
    static const std::wregex s_ipv6(L"^(?:[A-F0-9]{1,4}:){7}[A-F0-9]{1,4}$");
    if (std::regex_search(strAddress, s_ipv4)) {
        return AF_INET;
    }
    return std::regex_search(strAddress, s_ipv6) ? AF_INET6 : AF_UNSPEC;
}

} // namespace

INT WSAStringToAddressW(PWSTR pszAddress, INT nFamily, void* pProtocol, SOCKADDR* pAddress, INT* pnLength)
{
    Demand(pProtocol == nullptr, "no protocol is asked for");
    ++g_conversion.nCalls;
    g_conversion.strAddress = pszAddress;
    g_conversion.nFamily = nFamily;
    g_conversion.pAddress = pAddress;
    g_conversion.pnLength = pnLength;
    return g_conversion.bRefused ? SOCKET_ERROR : 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* pData, size_t nSize)
{
    if (nSize == 0) {
        return 0;
    }
    const std::wstring units = UnitsOf({pData + 1, nSize - 1}, (pData[0] & 1) != 0, kMaxUnits);
    const auto pszAddress = TerminatedCopy(units);
    const std::wstring strAddress = pszAddress.get(); // ends at the first NUL
    g_conversion = {};
    g_conversion.bRefused = (pData[0] & 2) != 0;

    SOCKADDR_IN6 address = {};
    auto* const pAddress = reinterpret_cast<SOCKADDR*>(&address);
    INT nLength = sizeof(address);
    const BOOL bConverted = CWinSockHelper::StringToAddress(pszAddress.get(), pAddress, nLength);

    const INT nFamily = ExpectedFamily(strAddress);
    const bool bMatches = nFamily != AF_UNSPEC;
    Demand(bConverted == (bMatches && !g_conversion.bRefused ? TRUE : FALSE), "what matches is converted");
    Demand(g_conversion.nCalls == (bMatches ? 1 : 0), "the system is asked once, and only about what matches");
    if (bMatches) {
        Demand(g_conversion.nFamily == nFamily, "the expression that matches tells the family");
        Demand(g_conversion.strAddress == strAddress, "the address is converted as it stands");
        Demand(g_conversion.pAddress == pAddress && g_conversion.pnLength == &nLength,
               "the address goes where the caller said");
    }
    return 0;
}

// The rest of the file under test calls these; turning an address's text into an address does not.

INT WSAAddressToStringW(SOCKADDR*, DWORD, void*, PWSTR, DWORD*)
{
    Unexpected("WSAAddressToStringW");
}

PCWSTR InetNtopW(INT, const void*, PWSTR, size_t)
{
    Unexpected("InetNtopW");
}

DWORD GetBestInterfaceEx(SOCKADDR*, DWORD*)
{
    Unexpected("GetBestInterfaceEx");
}

DWORD GetBestRoute2(NET_LUID*, DWORD, const SOCKADDR_INET*, const SOCKADDR_INET*, DWORD, MIB_IPFORWARD_ROW2*,
                    SOCKADDR_INET*)
{
    Unexpected("GetBestRoute2");
}

void ReportFatalError(PCWSTR, PCWSTR)
{
    Unexpected("ReportFatalError");
}

void ReportLastErrorAndExit(PCWSTR)
{
    Unexpected("ReportLastErrorAndExit");
}
