// Bringing the window of another process to the front, as Windows does.
#pragma once

#include <windows.h>

// SetForegroundWindow. Wine's makes the window the active one among Windows' own, but leaves it behind whatever
// covers it on the screen, and the keyboard with that. Where a message box belongs to the window, it is what
// comes to the front. Never waits for the other process.
BOOL WINAPI BringToForeground(HWND hwnd);
