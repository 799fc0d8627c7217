// The control for an IP address, as Windows has it.
#pragma once

#include <windows.h>

#include <array>

// Gives every SysIPAddress32 that the calling thread's activation context makes from now on what Wine's lacks:
// - it takes its text: "192.168.1." fills three fields and leaves the fourth blank; the text that Wine gives it at
//   first, 0.0.0.0, fills none;
// - it tells its parent of every change of a field that a user makes (IPN_FIELDCHANGED, without field and value),
//   Backspace included;
// - its fields and dots have its font and one line, and are grey when it is made disabled.
// To be called on a thread that may make windows; calls after the first do nothing.
void MendAddressControl();

// The control's edits, from left to right.
std::array<HWND, 4> AddressFields(HWND hwnd);
