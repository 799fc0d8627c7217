// Stands in for the platform's header of the same name.
#pragma once

#include <winsock2.h>

struct NET_LUID
{
    uint64_t Value;
};

union SOCKADDR_INET {
    SOCKADDR_IN Ipv4;
    SOCKADDR_IN6 Ipv6;
};

struct MIB_IPFORWARD_ROW2
{
    SOCKADDR_INET NextHop;
};

DWORD GetBestRoute2(NET_LUID* pLuid, DWORD dwInterface, const SOCKADDR_INET* pSource, const SOCKADDR_INET* pDestination,
                    DWORD dwSortOptions, MIB_IPFORWARD_ROW2* pRoute, SOCKADDR_INET* pBestSource);
