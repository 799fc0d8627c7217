#include "system/BestRoute.h"

#include <bit>
#include <vector>

namespace {

SOCKADDR_INET ToAddress(DWORD dwAddress)
{
    SOCKADDR_INET address = {};
    address.Ipv4.sin_family = AF_INET;
    address.Ipv4.sin_addr.s_addr = dwAddress;
    return address;
}

// The computer's own address on that interface; 0.0.0.0 when it has none.
DWORD AddressOfInterface(DWORD nIndex)
{
    ULONG cb = 0;
    GetIpAddrTable(nullptr, &cb, FALSE);
    std::vector<BYTE> bytes(cb);
    auto* const pTable = reinterpret_cast<MIB_IPADDRTABLE*>(bytes.data());
    if (cb < sizeof(*pTable) || GetIpAddrTable(pTable, &cb, FALSE) != NO_ERROR) {
        return INADDR_ANY;
    }
    for (DWORD n = 0; n < pTable->dwNumEntries; ++n) {
        if (pTable->table[n].dwIndex == nIndex) {
            return pTable->table[n].dwAddr;
        }
    }
    return INADDR_ANY;
}

bool InterfaceExists(NET_IFINDEX nIndex)
{
    MIB_IFROW row = {};
    row.dwIndex = nIndex;
    return GetIfEntry(&row) == NO_ERROR;
}

MIB_IPFORWARD_ROW2 ToRow2(const MIB_IPFORWARDROW& row)
{
    MIB_IPFORWARD_ROW2 route = {};
    route.InterfaceIndex = row.dwForwardIfIndex;
    ConvertInterfaceIndexToLuid(row.dwForwardIfIndex, &route.InterfaceLuid);
    route.DestinationPrefix.Prefix = ToAddress(row.dwForwardDest);
    route.DestinationPrefix.PrefixLength = static_cast<UINT8>(std::popcount(row.dwForwardMask));
    route.NextHop = ToAddress(row.dwForwardNextHop);
    route.SitePrefixLength = 0;
    route.ValidLifetime = INFINITE;
    route.PreferredLifetime = INFINITE;
    route.Metric = row.dwForwardMetric1;
    route.Protocol = static_cast<NL_ROUTE_PROTOCOL>(row.dwForwardProto);
    route.Age = row.dwForwardAge;
    return route;
}

} // namespace

DWORD WINAPI BestRoute(NET_LUID* pInterfaceLuid, NET_IFINDEX nInterfaceIndex, const SOCKADDR_INET*,
                       const SOCKADDR_INET* pDestination, ULONG, PMIB_IPFORWARD_ROW2 pRoute, SOCKADDR_INET* pBestSource)
{
    if (pDestination == nullptr || pRoute == nullptr || pBestSource == nullptr) {
        return ERROR_INVALID_PARAMETER;
    }
    if (pDestination->si_family != AF_INET) {
        return ERROR_NOT_SUPPORTED;
    }
    if (nInterfaceIndex == 0 && pInterfaceLuid != nullptr && pInterfaceLuid->Value != 0 &&
        ConvertInterfaceLuidToIndex(pInterfaceLuid, &nInterfaceIndex) != NO_ERROR) {
        return ERROR_FILE_NOT_FOUND;
    }
    if (nInterfaceIndex != 0 && !InterfaceExists(nInterfaceIndex)) {
        return ERROR_FILE_NOT_FOUND;
    }
    MIB_IPFORWARDROW row = {};
    if (GetBestRoute(pDestination->Ipv4.sin_addr.s_addr, 0, &row) != NO_ERROR ||
        (nInterfaceIndex != 0 && nInterfaceIndex != row.dwForwardIfIndex)) {
        return ERROR_NOT_FOUND;
    }
    *pRoute = ToRow2(row);
    *pBestSource = ToAddress(AddressOfInterface(row.dwForwardIfIndex));
    return NO_ERROR;
}
