// The route towards an address, as Windows tells it.
#pragma once

#include <windows.h>
#include <winsock2.h>
#include <ws2ipdef.h>

#include <iphlpapi.h>
#include <netioapi.h>

// GetBestRoute2 for an IPv4 destination, answered from the older call for routes. Of the route it tells the interface
// and the next hop, nothing of the source. 1168 when the best route does not leave by that interface, or there is none.
DWORD WINAPI BestRoute(NET_LUID* pInterfaceLuid, NET_IFINDEX nInterfaceIndex, const SOCKADDR_INET* pSource,
                       const SOCKADDR_INET* pDestination, ULONG nSortOptions, PMIB_IPFORWARD_ROW2 pRoute,
                       SOCKADDR_INET* pBestSource);
