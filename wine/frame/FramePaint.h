// What the frame itself paints: the white ground, the caption and the grey strip.
#pragma once

#include "frame/CloseBox.h"
#include "frame/FrameLayout.h"

#include <windows.h>

#include <string>

struct FRAME_LOOK
{
    const CFrameLayout& layout;
    const CCloseBox& closeBox;
    HFONT hCaptionFont;
    HICON hIcon; // may be null
    const std::wstring& szCaption;
    bool bActive;
};

// Paints all of it into a device context of the frame's size.
void PaintFrame(HDC hdc, const FRAME_LOOK& look);

// The same for what the window must show anew, without flicker.
void PaintFrameWindow(HWND hwnd, const FRAME_LOOK& look);

// The brush of the strip, on which its buttons stand.
HBRUSH StripBrush();

// The colour of the header title.
constexpr COLORREF kHeaderTitleColor = RGB(0, 51, 153);
