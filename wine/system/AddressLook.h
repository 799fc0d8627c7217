// What a control for addresses looks like: fields and dots on one line, in the font of its dialog.
#pragma once

#include <windows.h>

#include <array>

constexpr size_t kAddressFields = 4;

// The control's edits, from left to right. All null unless there are four.
std::array<HWND, kAddressFields> AddressFields(HWND hwnd);

// Answers WM_SETFONT and WM_GETFONT; fields and dots get the font.
LRESULT SetAddressFont(HWND hwnd, WPARAM wParam);
LRESULT GetAddressFont(HWND hwnd);

// Places the fields, when the control's size has changed.
void ArrangeAddressFields(HWND hwnd);

// Answers WM_CTLCOLOREDIT: the ground of the control is that of its fields.
LRESULT AddressGround(HWND hwnd, HDC hdc);

// Answers WM_PAINT; covers all of the control.
LRESULT PaintAddress(HWND hwnd);

// At WM_NCDESTROY.
void ForgetAddressFont(HWND hwnd);
