// What the screen shows.
#pragma once

#include <windows.h>

#include <string>
#include <vector>

// A window as the screen shows it now: a PNG in base 64. Empty when there is nothing to be seen.
std::string TakePicture(HWND hwnd);

// The pixels of a rectangle of the screen, line by line from the top.
std::vector<COLORREF> ScreenColors(const RECT& rect);

// The pixels of an icon that is drawn as a square of that size on a ground. Empty for one that cannot be drawn.
std::vector<COLORREF> IconColors(HICON hIcon, int nSize, COLORREF ground);
