#include "system/BestRoute.h"

DWORD WINAPI BestRoute(NET_LUID* /*pInterfaceLuid*/, NET_IFINDEX nInterfaceIndex, const SOCKADDR_INET* /*pSource*/,
                       const SOCKADDR_INET* pDestination, ULONG /*nSortOptions*/, PMIB_IPFORWARD_ROW2 pRoute,
                       SOCKADDR_INET* /*pBestSource*/)
{
    MIB_IPFORWARDROW row = {};
    if (GetBestRoute(pDestination->Ipv4.sin_addr.s_addr, 0, &row) != NO_ERROR ||
        nInterfaceIndex != row.dwForwardIfIndex) {
        return ERROR_NOT_FOUND;
    }
    *pRoute = {};
    pRoute->InterfaceIndex = row.dwForwardIfIndex;
    pRoute->NextHop.Ipv4.sin_family = AF_INET;
    pRoute->NextHop.Ipv4.sin_addr.s_addr = row.dwForwardNextHop;
    return NO_ERROR;
}
