// What the frame adds to the window of a page: the white ground that Aero wizards have, and a
// WM_NEXTDLGCTL that does not end at the page's last control.
#pragma once

#include <windows.h>

// Posted by a page that asks for the next control of the whole wizard. wParam: as in WM_NEXTDLGCTL
// with a low word of 0 in lParam, non-zero for the one before.
constexpr UINT kMoveFocusMessage = WM_APP + 1;

// Gives the window of a page, a child of the frame, these additions. They end with the window.
void DressPage(HWND hwndPage);
