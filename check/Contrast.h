// How well words stand out from what is behind them.
#pragma once

#include <windows.h>

// Of two colors: from 1, when they are the same, to 21, black and white. The larger relative luminance to the smaller,
// each with 0.05 added.
double ContrastRatio(COLORREF one, COLORREF other);

// Of a piece of the screen: between its ground, which is the color that most of it has, and the color in it that stands
// out most.
double ContrastOnScreen(const RECT& rect);
