// The ICMP probe as the working pages show it.
#pragma once

#include "app/ground/Platform.h"

// Sends up to six ICMP echo requests to the address (network order, its port is ignored), about a second each when
// nothing answers, and blocks meanwhile. Writes each attempt and an address out of reach into the status control; boxes
// owned by the page tell what went wrong. Returns 0 when the watch answered, -1 when not.
LRESULT PingWatch(HWND hwndPage, const SOCKADDR_IN* pAddress, HWND hwndStatus);
