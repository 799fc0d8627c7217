#include "frame/PageTexts.h"

#include <commctrl.h>

namespace {

LRESULT CALLBACK StaticProcedure(HWND hwnd, UINT nMessage, WPARAM wParam, LPARAM lParam, UINT_PTR /*nId*/,
                                 DWORD_PTR /*dwData*/)
{
    const LRESULT nResult = DefSubclassProc(hwnd, nMessage, wParam, lParam);
    if (nMessage == WM_SETTEXT && IsWindowVisible(hwnd)) {
        UpdateWindow(hwnd);
        // To ask for messages is to wait for them, if only for no time.
        MsgWaitForMultipleObjects(0, nullptr, FALSE, 0, 0);
    }
    return nResult;
}

} // namespace

void ShowTextsAtOnce(HWND hwndPage)
{
    for (HWND hwnd = GetWindow(hwndPage, GW_CHILD); hwnd != nullptr; hwnd = GetWindow(hwnd, GW_HWNDNEXT)) {
        if ((SendMessageW(hwnd, WM_GETDLGCODE, 0, 0) & DLGC_STATIC) != 0) {
            SetWindowSubclass(hwnd, StaticProcedure, 0, 0);
        }
    }
}
