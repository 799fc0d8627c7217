#include "frame/BackButton.h"

#include "frame/Owned.h"

#include <commctrl.h>

namespace {

LRESULT CALLBACK ArrowProcedure(HWND hwnd, UINT nMessage, WPARAM wParam, LPARAM lParam, UINT_PTR /*nId*/,
                                DWORD_PTR /*dwData*/)
{
    return DefSubclassProc(hwnd, nMessage == WM_LBUTTONDBLCLK ? WM_LBUTTONDOWN : nMessage, wParam, lParam);
}

} // namespace

void TakeQuickClicks(HWND hwndButton)
{
    SetWindowSubclass(hwndButton, ArrowProcedure, 0, 0);
}

// An arrow to the left in the middle of the button, half as long as that is wide.
void DrawArrow(const DRAWITEMSTRUCT& item)
{
    const HDC hdc = item.hDC;
    const RECT& rect = item.rcItem;
    FillRect(hdc, &rect, GetSysColorBrush(COLOR_WINDOW));
    const LONG nHalf = (rect.right - rect.left) / 4;
    const POINT middle = {(rect.left + rect.right) / 2, (rect.top + rect.bottom) / 2};
    const POINT tip = {middle.x - nHalf, middle.y};
    const POINT head[] = {{middle.x, middle.y - nHalf}, tip, {middle.x, middle.y + nHalf}};
    const POINT shaft[] = {tip, {middle.x + nHalf, middle.y}};
    const CSelection pen(hdc, GetStockObject(BLACK_PEN));
    Polyline(hdc, head, ARRAYSIZE(head));
    Polyline(hdc, shaft, ARRAYSIZE(shaft));
    if ((item.itemState & ODS_FOCUS) != 0) {
        DrawFocusRect(hdc, &rect);
    }
}
