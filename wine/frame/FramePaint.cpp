#include "frame/FramePaint.h"

#include "frame/Owned.h"

namespace {

constexpr COLORREF kOutline = RGB(112, 112, 112);
constexpr COLORREF kStripLine = RGB(223, 223, 223);

// The cross is 10 pixels wide in a box that is 29 high.
void PaintCross(HDC hdc, const RECT& box)
{
    const LONG nHalf = (box.bottom - box.top) * 5 / 29;
    const POINT middle = {(box.left + box.right) / 2, (box.top + box.bottom) / 2};
    const CSelection pen(hdc, GetStockObject(BLACK_PEN));
    MoveToEx(hdc, middle.x - nHalf, middle.y - nHalf, nullptr);
    LineTo(hdc, middle.x + nHalf + 1, middle.y + nHalf + 1);
    MoveToEx(hdc, middle.x - nHalf, middle.y + nHalf, nullptr);
    LineTo(hdc, middle.x + nHalf + 1, middle.y - nHalf - 1);
}

} // namespace

void PaintFrame(HDC hdc, const FRAME_LAYOUT& layout, HFONT hCaptionFont, HICON hIcon, const std::wstring& szCaption)
{
    auto* const hBrush = static_cast<HBRUSH>(GetStockObject(DC_BRUSH));
    const RECT all = {0, 0, layout.frame.cx, layout.frame.cy};
    FillRect(hdc, &all, GetSysColorBrush(COLOR_WINDOW));
    FillRect(hdc, &layout.strip, GetSysColorBrush(COLOR_3DFACE));
    const RECT line = {0, layout.strip.top, layout.strip.right, layout.strip.top + 1};
    SetDCBrushColor(hdc, kStripLine);
    FillRect(hdc, &line, hBrush);
    SetDCBrushColor(hdc, kOutline);
    FrameRect(hdc, &all, hBrush);
    PaintCross(hdc, layout.closeBox);
    if (hIcon != nullptr) {
        DrawIconEx(hdc, layout.icon.left, layout.icon.top, hIcon, layout.icon.right - layout.icon.left,
                   layout.icon.bottom - layout.icon.top, 0, nullptr, DI_NORMAL);
    }
    RECT text = layout.captionText;
    const CSelection font(hdc, hCaptionFont);
    SetBkMode(hdc, TRANSPARENT);
    DrawTextW(hdc, szCaption.c_str(), -1, &text, DT_SINGLELINE | DT_VCENTER | DT_NOPREFIX | DT_END_ELLIPSIS);
}
