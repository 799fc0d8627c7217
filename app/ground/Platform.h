// The platform headers that every file of the product starts from, in the order in which they
// tolerate each other: Windows Sockets 2 before windows.h.
#pragma once

#include <winsock2.h>

#include <windows.h>
#include <ws2tcpip.h>

#include <atlstr.h>
