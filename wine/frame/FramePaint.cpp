#include "frame/FramePaint.h"

#include "frame/Owned.h"

namespace {

constexpr COLORREF kOutline = RGB(112, 112, 112);
constexpr COLORREF kInactiveOutline = RGB(170, 170, 170);
constexpr COLORREF kCaption = RGB(0, 0, 0);
constexpr COLORREF kInactiveCaption = RGB(153, 153, 153);
constexpr COLORREF kStrip = RGB(240, 240, 240);
constexpr COLORREF kStripLine = RGB(223, 223, 223);

void Fill(HDC hdc, const RECT& rect, COLORREF color)
{
    const CBrushHandle hBrush(CreateSolidBrush(color));
    FillRect(hdc, &rect, hBrush.get());
}

void PaintStrip(HDC hdc, const CFrameLayout& layout)
{
    RECT strip = layout.Strip();
    FillRect(hdc, &strip, StripBrush());
    strip.bottom = strip.top + layout.LineWidth();
    Fill(hdc, strip, kStripLine);
}

void PaintCaption(HDC hdc, const FRAME_LOOK& look)
{
    const COLORREF color = look.bActive ? kCaption : kInactiveCaption;
    look.closeBox.Draw(hdc, look.layout.CloseBox(), color);
    if (look.hIcon != nullptr) {
        const RECT icon = look.layout.Icon();
        DrawIconEx(hdc, icon.left, icon.top, look.hIcon, icon.right - icon.left, icon.bottom - icon.top, 0, nullptr,
                   DI_NORMAL);
    }
    RECT text = look.layout.CaptionText();
    const CSelection selection(hdc, look.hCaptionFont);
    SetTextColor(hdc, color);
    SetBkMode(hdc, TRANSPARENT);
    DrawTextW(hdc, look.szCaption.c_str(), -1, &text, DT_SINGLELINE | DT_VCENTER | DT_NOPREFIX | DT_END_ELLIPSIS);
}

void PaintOutline(HDC hdc, const FRAME_LOOK& look)
{
    const SIZE size = look.layout.Frame();
    RECT rect = {0, 0, size.cx, size.cy};
    const CBrushHandle hBrush(CreateSolidBrush(look.bActive ? kOutline : kInactiveOutline));
    for (int n = 0; n < look.layout.LineWidth(); ++n) {
        FrameRect(hdc, &rect, hBrush.get());
        InflateRect(&rect, -1, -1);
    }
}

} // namespace

HBRUSH StripBrush()
{
    static const CBrushHandle s_hBrush(CreateSolidBrush(kStrip));
    return s_hBrush.get();
}

void PaintFrame(HDC hdc, const FRAME_LOOK& look)
{
    const SIZE size = look.layout.Frame();
    const RECT rect = {0, 0, size.cx, size.cy};
    FillRect(hdc, &rect, GetSysColorBrush(COLOR_WINDOW));
    PaintStrip(hdc, look.layout);
    PaintCaption(hdc, look);
    PaintOutline(hdc, look);
}

void PaintFrameWindow(HWND hwnd, const FRAME_LOOK& look)
{
    PAINTSTRUCT paint;
    const HDC hdc = BeginPaint(hwnd, &paint);
    if (hdc != nullptr) {
        const SIZE size = look.layout.Frame();
        const CMemoryDc hdcMemory(hdc);
        const CBitmapHandle hBitmap(CreateCompatibleBitmap(hdc, size.cx, size.cy));
        const CSelection selection(hdcMemory, hBitmap.get());
        PaintFrame(hdcMemory, look);
        BitBlt(hdc, 0, 0, size.cx, size.cy, hdcMemory, 0, 0, SRCCOPY);
    }
    EndPaint(hwnd, &paint);
}
