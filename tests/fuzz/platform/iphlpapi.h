// Stands in for the platform's header of the same name.
#pragma once

#include <winsock2.h>

DWORD GetBestInterfaceEx(SOCKADDR* pDestination, DWORD* pdwInterface);
