// What the frame adds to the window of a page: the white ground that Aero wizards have, and a
// WM_NEXTDLGCTL that does not end at the page's last control.
#pragma once

#include <windows.h>

// Gives the window of a page, a child of the frame, these additions: it leaves WM_NEXTDLGCTL to the frame.
void DressPage(HWND hwndPage);
