// The route towards an address, as Windows tells it.
#pragma once

#include <windows.h>
#include <winsock2.h>
#include <ws2ipdef.h>

#include <iphlpapi.h>
#include <netioapi.h>

// GetBestRoute2 for IPv4, answered from the older call for routes. The interface is named by its index or,
// where that is 0, by its LUID; when both are 0, any will do. Errors as on Windows: 87 for a missing
// argument, 50 for an address that is not IPv4, 2 for an interface that does not exist, 1168 when no route
// leads there.
DWORD WINAPI BestRoute(NET_LUID* pInterfaceLuid, NET_IFINDEX nInterfaceIndex, const SOCKADDR_INET* pSource,
                       const SOCKADDR_INET* pDestination, ULONG nSortOptions, PMIB_IPFORWARD_ROW2 pRoute,
                       SOCKADDR_INET* pBestSource);
