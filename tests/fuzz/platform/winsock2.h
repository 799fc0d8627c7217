// Stands in for the platform's header of the same name: socket addresses, as the system at hand declares them.
#pragma once

#include <windows.h>

#include <netinet/in.h>
#include <sys/socket.h>

#define SOCKET_ERROR (-1)

typedef struct sockaddr SOCKADDR;
typedef struct sockaddr_in SOCKADDR_IN;
typedef struct sockaddr_in6 SOCKADDR_IN6;
typedef struct in_addr IN_ADDR;

INT WSAStringToAddressW(PWSTR pszAddress, INT nFamily, void* pProtocol, SOCKADDR* pAddress, INT* pnLength);
INT WSAAddressToStringW(SOCKADDR* pAddress, DWORD dwLength, void* pProtocol, PWSTR pszAddress, DWORD* pcchAddress);
