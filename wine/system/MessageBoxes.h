// Message boxes of which every word can be read.
#pragma once

#include <windows.h>

// MessageBoxW. Windows makes a box as wide as its caption needs, Wine only as wide as its text; and where there is
// no picture, Wine leaves the empty place of one over the text, which it sometimes wipes out.
int WINAPI ShowMessageBox(HWND hwndOwner, LPCWSTR pszText, LPCWSTR pszCaption, UINT nType);
