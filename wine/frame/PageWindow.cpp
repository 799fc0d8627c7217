#include "frame/PageWindow.h"

namespace {

constexpr WCHAR kProcedureProperty[] = L"KalvoPageProcedure";

bool IsEdit(HWND hwnd)
{
    WCHAR szClass[16];
    return GetClassNameW(hwnd, szClass, ARRAYSIZE(szClass)) != 0 && lstrcmpiW(szClass, L"Edit") == 0;
}

// The system's answer is the colour of dialogs; an answer of the page's own is left alone. An edit
// that cannot be written to asks like a static and stays grey.
LRESULT PaintWhite(HDC hdc, HWND hwndControl, LRESULT nAnswer)
{
    if (nAnswer != reinterpret_cast<LRESULT>(GetSysColorBrush(COLOR_3DFACE)) || IsEdit(hwndControl)) {
        return nAnswer;
    }
    SetBkColor(hdc, GetSysColor(COLOR_WINDOW));
    return reinterpret_cast<LRESULT>(GetSysColorBrush(COLOR_WINDOW));
}

LRESULT CALLBACK PageProcedure(HWND hwnd, UINT nMessage, WPARAM wParam, LPARAM lParam)
{
    const auto pfnOriginal = reinterpret_cast<WNDPROC>(GetPropW(hwnd, kProcedureProperty));
    switch (nMessage) {
    case WM_CTLCOLORDLG:
    case WM_CTLCOLORSTATIC:
    case WM_CTLCOLORBTN:
        return PaintWhite(reinterpret_cast<HDC>(wParam), reinterpret_cast<HWND>(lParam),
                          CallWindowProcW(pfnOriginal, hwnd, nMessage, wParam, lParam));
    case WM_NEXTDLGCTL:
        if (LOWORD(lParam) == 0) {
            return SendMessageW(GetParent(hwnd), kMoveFocusMessage, wParam, 0);
        }
        break;
    case WM_NCDESTROY:
        RemovePropW(hwnd, kProcedureProperty);
        SetWindowLongPtrW(hwnd, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(pfnOriginal));
        break;
    default:
        break;
    }
    return CallWindowProcW(pfnOriginal, hwnd, nMessage, wParam, lParam);
}

} // namespace

void DressPage(HWND hwndPage)
{
    const LONG_PTR nOriginal = GetWindowLongPtrW(hwndPage, GWLP_WNDPROC);
    SetPropW(hwndPage, kProcedureProperty, reinterpret_cast<HANDLE>(nOriginal));
    SetWindowLongPtrW(hwndPage, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(PageProcedure));
}
