// Pictures of windows.
#pragma once

#include <windows.h>

#include <string>

// A window as the screen shows it now: a PNG in base 64. Empty when there is nothing to be seen.
std::string TakePicture(HWND hwnd);

// The pixels of a rectangle of the screen, to be compared with others.
std::string ScreenPixels(const RECT& rect);
