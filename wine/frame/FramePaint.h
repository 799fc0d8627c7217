// What the frame itself paints: the white ground, the caption and the grey strip.
#pragma once

#include "frame/FrameLayout.h"

#include <windows.h>

#include <string>

// hIcon may be null.
void PaintFrame(HDC hdc, const FRAME_LAYOUT& layout, HFONT hCaptionFont, HICON hIcon, const std::wstring& szCaption);

// The colour of the header title.
constexpr COLORREF kHeaderTitleColor = RGB(0, 51, 153);
