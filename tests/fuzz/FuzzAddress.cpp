// Anything at all as an address: accepted when one of the two expressions, run by std::wregex, matches it.
//
// The input's first byte chooses: bit 0, whether the rest are UTF-16 units or bytes that stand for themselves;
// bit 1, whether the system refuses what it is asked to convert.
#include "tests/fuzz/Demand.h"
#include "tests/fuzz/Units.h"

#include "app/ground/ErrorReport.h"
#include "net/WinSockHelper.h"

#include <regex>
#include <vector>

namespace {

// The library's expressions go one call deeper for each character.
constexpr size_t kMaxUnits = 1000;

// What the system is asked to convert, and to where.
struct QUESTION
{
    std::wstring strAddress;
    INT nFamily;
    const SOCKADDR* pAddress;
    const INT* pnLength;

    bool operator==(const QUESTION&) const = default;
};
std::vector<QUESTION> g_questions;
bool g_bRefused = false;

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
    g_questions.push_back({pszAddress, nFamily, pAddress, pnLength});
    return g_bRefused ? SOCKET_ERROR : 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* pData, size_t nSize)
{
    if (nSize == 0) {
        return 0;
    }
    const auto pszAddress = TextOf({pData + 1, nSize - 1}, (pData[0] & 1) != 0, kMaxUnits);
    g_bRefused = (pData[0] & 2) != 0;
    g_questions.clear();

    SOCKADDR_IN6 address = {};
    auto* const pAddress = reinterpret_cast<SOCKADDR*>(&address);
    INT nLength = sizeof(address);
    const BOOL bConverted = CWinSockHelper::StringToAddress(pszAddress.get(), pAddress, nLength);

    std::vector<QUESTION> expected;
    if (const INT nFamily = ExpectedFamily(pszAddress.get()); nFamily != AF_UNSPEC) {
        expected.push_back({pszAddress.get(), nFamily, pAddress, &nLength});
    }
    Demand(g_questions == expected, "just what matches is converted, once, as it stands, as what matches it");
    Demand(bConverted == (!expected.empty() && !g_bRefused ? TRUE : FALSE), "the system's answer is passed on");
    return 0;
}

// The rest of the file under test calls these; turning an address's text into an address does not.
UNEXPECTED(INT WSAAddressToStringW(SOCKADDR*, DWORD, void*, PWSTR, DWORD*))
UNEXPECTED(PCWSTR InetNtopW(INT, const void*, PWSTR, size_t))
UNEXPECTED(DWORD GetBestInterfaceEx(SOCKADDR*, DWORD*))
UNEXPECTED(DWORD GetBestRoute2(NET_LUID*, DWORD, const SOCKADDR_INET*, const SOCKADDR_INET*, DWORD, MIB_IPFORWARD_ROW2*,
                               SOCKADDR_INET*))
UNEXPECTED(void ReportFatalError(PCWSTR, PCWSTR))
UNEXPECTED(void ReportLastErrorAndExit(PCWSTR))
