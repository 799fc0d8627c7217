// The ports of wireless debugging and of pairing, as the user types them.
#pragma once

#include "app/ground/Platform.h"

constexpr int kPortDigits = 5;
constexpr int kFewestPortDigits = 4;

// Whether the pages take a port: 1024 to 65535.
bool IsUserPort(UINT nPort);

// Tells the user the range of ports, in a box owned by the page.
void ReportInvalidPort(HWND hwndPage);
