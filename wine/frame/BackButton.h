// The arrow in the frame's caption: a button in every respect but its looks.
#pragma once

#include <windows.h>

// Makes a button that draws itself (BS_OWNERDRAW) take two quick clicks as two, as other buttons do.
void TakeQuickClicks(HWND hwndButton);

// Answers the frame's WM_DRAWITEM.
void DrawArrow(const DRAWITEMSTRUCT& item);
