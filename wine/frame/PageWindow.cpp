#include "frame/PageWindow.h"

#include <commctrl.h>

namespace {

bool IsEdit(HWND hwnd)
{
    return (SendMessageW(hwnd, WM_GETDLGCODE, 0, 0) & DLGC_HASSETSEL) != 0;
}

LRESULT CALLBACK PageProcedure(HWND hwnd, UINT nMessage, WPARAM wParam, LPARAM lParam, UINT_PTR /*nId*/,
                               DWORD_PTR /*dwData*/)
{
    if (nMessage == WM_NEXTDLGCTL && LOWORD(lParam) == 0) {
        return SendMessageW(GetParent(hwnd), nMessage, wParam, lParam);
    }
    const LRESULT nResult = DefSubclassProc(hwnd, nMessage, wParam, lParam);
    switch (nMessage) {
    case WM_CTLCOLORDLG:
    case WM_CTLCOLORSTATIC:
    case WM_CTLCOLORBTN:
        // An edit that cannot be written to asks like a static and stays grey.
        if (IsEdit(reinterpret_cast<HWND>(lParam))) {
            return nResult;
        }
        SetBkColor(reinterpret_cast<HDC>(wParam), GetSysColor(COLOR_WINDOW));
        return reinterpret_cast<LRESULT>(GetSysColorBrush(COLOR_WINDOW));
    default:
        return nResult;
    }
}

} // namespace

void DressPage(HWND hwndPage)
{
    SetWindowSubclass(hwndPage, PageProcedure, 0, 0);
}
