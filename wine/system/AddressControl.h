// The control for an IP address, as Windows has it.
#pragma once

#include <windows.h>

// Lets every SysIPAddress32 that the calling thread's activation context makes from now on take its
// text: "192.168.1." fills three fields and leaves the fourth blank, as on Windows. To be called on
// a thread that may make windows; calls after the first do nothing. False when there is no such control.
bool MendAddressControl();
