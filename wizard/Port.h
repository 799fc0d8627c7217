// The ports that a watch chooses for wireless debugging and for pairing, as the user types them.
#pragma once

#include "app/ground/Platform.h"

constexpr int kPortDigits = 5;
constexpr int kFewestPortDigits = 4;

// Whether a port is one that the watch may have chosen: 1024 to 65535.
bool IsUserPort(UINT nPort);

// Tells the user the range of ports, in a box owned by the page.
void ReportInvalidPort(HWND hwndPage);
