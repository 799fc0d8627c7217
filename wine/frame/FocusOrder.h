// The tab order of the whole wizard: from top to bottom through the frame and the page in it.
#pragma once

#include <windows.h>

// The tab stop after hwndFrom, or the one before it, in hwndRoot; at the end it goes on at the other end.
// What cannot be seen or is disabled is no tab stop. hwndFrom may be a part of a tab stop, such as
// a field of an address, or no tab stop at all. Null when there is none.
HWND NextTabStop(HWND hwndRoot, HWND hwndFrom, bool bBackward);

// The first tab stop in hwndRoot; null when there is none.
HWND FirstTabStop(HWND hwndRoot);

// Moves the keyboard to a control; the text of an edit gets selected, as when one tabs into it.
void GiveFocus(HWND hwndControl);
