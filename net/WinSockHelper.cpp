#include "net/WinSockHelper.h"

#include "app/ground/ErrorReport.h"

#include <iphlpapi.h>
#include <netioapi.h>

#include <ctre.hpp>

#include <string_view>

namespace {

// An address of the internet: the route toward it leads through the gateway. Nothing is sent to it.
constexpr WCHAR kProbeDestination[] = L"8.8.8.8";

constexpr WCHAR kGetDefaultGateway[] = L"CWinSockHelper::GetDefaultGateway()";

constexpr int kIpv6TextLength = 46;

struct FATAL_RESULT
{
    DWORD dwResult;
    PCWSTR pszDetail;
};

// The two calls share most of their texts, not all; kept so on purpose.
constexpr FATAL_RESULT kBestInterfaceResults[] = {
    {ERROR_NOT_SUPPORTED, L"IPv4 is not available on the local computer"},
    {ERROR_INVALID_PARAMETER, L"Invalid parameter passed"},
    {ERROR_CAN_NOT_COMPLETE, L"The operation could not be completed"},
};
constexpr FATAL_RESULT kBestRouteResults[] = {
    {ERROR_FILE_NOT_FOUND, L"The network interface could not be found, e.g. Wi-Fi turned off."},
    {ERROR_NOT_FOUND, L"The network interface could not be found, e.g. Wi-Fi turned off."},
    {ERROR_NOT_SUPPORTED, L"IPv4 is not available on the local computer"},
    {ERROR_INVALID_PARAMETER, L"Invalid parameter passed"},
};

// Ends the process for every result but success. One that is not in the table is reported with the
// thread's last error instead of the result; kept so on purpose.
template<size_t N>
void ExitUnlessSuccess(DWORD dwResult, const FATAL_RESULT (&results)[N])
{
    if (dwResult == NO_ERROR) {
        return;
    }
    for (const FATAL_RESULT& result : results) {
        if (result.dwResult == dwResult) {
            ReportFatalError(kGetDefaultGateway, result.pszDetail);
        }
    }
    ReportLastErrorAndExit(kGetDefaultGateway);
}

BOOL NumericAddressToString(int nFamily, const void* pAddress, int cchReserved, CStringW& szAddress)
{
    szAddress.Empty();
    const PWSTR psz = szAddress.GetBuffer(cchReserved);
    const BOOL bConverted = InetNtopW(nFamily, pAddress, psz, static_cast<size_t>(cchReserved)) != nullptr;
    szAddress.ReleaseBufferSetLength(static_cast<int>(wcsnlen(psz, static_cast<size_t>(cchReserved))));
    return bConverted;
}

} // namespace

BOOL CWinSockHelper::GetDefaultGateway(WCHAR (&szGateway)[kIpv4TextLength])
{
    SOCKADDR_IN destination = {};
    destination.sin_family = AF_INET;
    INT nLength = sizeof(destination);
    if (!StringToAddress(kProbeDestination, reinterpret_cast<SOCKADDR*>(&destination), nLength)) {
        return FALSE;
    }

    DWORD dwInterface = 0;
    ExitUnlessSuccess(GetBestInterfaceEx(reinterpret_cast<SOCKADDR*>(&destination), &dwInterface),
                      kBestInterfaceResults);

    NET_LUID luid = {};
    SOCKADDR_INET remote = {};
    remote.Ipv4 = destination;
    MIB_IPFORWARD_ROW2 route = {};
    SOCKADDR_INET source = {};
    ExitUnlessSuccess(GetBestRoute2(&luid, dwInterface, nullptr, &remote, 0, &route, &source), kBestRouteResults);

    CStringW szNextHop;
    if (!Ipv4ToString(&route.NextHop.Ipv4.sin_addr, szNextHop)) {
        return FALSE;
    }
    wcscpy_s(szGateway, szNextHop);
    return TRUE;
}

BOOL CWinSockHelper::StringToAddress(PCWSTR pszAddress, SOCKADDR* pAddress, INT& nLength)
{
    CStringW szAddress(pszAddress);
    const std::wstring_view address(szAddress.GetString(), static_cast<size_t>(szAddress.GetLength()));
    INT nFamily = 0;
    if (ctre::search<LR"(^(?:(?:25[0-5]|2[0-4][0-9]|[01]?[0-9][0-9]?)\.){3}(?:25[0-5]|2[0-4][0-9]|[01]?[0-9][0-9]?)$)">(
            address)) {
        nFamily = AF_INET;
    } else if (ctre::search<L"^(?:[A-F0-9]{1,4}:){7}[A-F0-9]{1,4}$">(address)) {
        nFamily = AF_INET6;
    } else {
        return FALSE;
    }
    return WSAStringToAddressW(szAddress.GetBuffer(), nFamily, nullptr, pAddress, &nLength) != SOCKET_ERROR;
}

BOOL CWinSockHelper::Ipv4ToString(const IN_ADDR* pAddress, CStringW& szAddress)
{
    return NumericAddressToString(AF_INET, pAddress, kIpv4TextLength, szAddress);
}

BOOL CWinSockHelper::AddressToString(const SOCKADDR* pAddress, CStringW& szAddress)
{
    DWORD dwLength = 0;
    switch (pAddress->sa_family) {
    case AF_INET:
        dwLength = sizeof(SOCKADDR_IN);
        break;
    case AF_INET6:
        dwLength = sizeof(SOCKADDR_IN6);
        break;
    default:
        return FALSE;
    }
    WCHAR szText[128] = {};
    DWORD cchText = ARRAYSIZE(szText);
    WSAAddressToStringW(const_cast<SOCKADDR*>(pAddress), dwLength, nullptr, szText, &cchText);
    szAddress = szText;
    return TRUE;
}

BOOL CWinSockHelper::AddressToIpString(const SOCKADDR* pAddress, CStringW& szAddress)
{
    switch (pAddress->sa_family) {
    case AF_INET:
        return Ipv4ToString(&reinterpret_cast<const SOCKADDR_IN*>(pAddress)->sin_addr, szAddress);
    case AF_INET6:
        return NumericAddressToString(AF_INET6, &reinterpret_cast<const SOCKADDR_IN6*>(pAddress)->sin6_addr,
                                      kIpv6TextLength, szAddress);
    default:
        return FALSE;
    }
}
