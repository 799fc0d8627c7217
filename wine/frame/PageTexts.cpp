#include "frame/PageTexts.h"

namespace {

constexpr WCHAR kProcedureProperty[] = L"KalvoStaticProcedure";

LRESULT CALLBACK StaticProcedure(HWND hwnd, UINT nMessage, WPARAM wParam, LPARAM lParam)
{
    const auto pfnOriginal = reinterpret_cast<WNDPROC>(GetPropW(hwnd, kProcedureProperty));
    if (nMessage == WM_NCDESTROY) {
        RemovePropW(hwnd, kProcedureProperty);
        SetWindowLongPtrW(hwnd, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(pfnOriginal));
    }
    const LRESULT nResult = CallWindowProcW(pfnOriginal, hwnd, nMessage, wParam, lParam);
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
        WCHAR szClass[16];
        if (GetClassNameW(hwnd, szClass, ARRAYSIZE(szClass)) != 0 && lstrcmpiW(szClass, L"Static") == 0) {
            const LONG_PTR nOriginal = GetWindowLongPtrW(hwnd, GWLP_WNDPROC);
            SetPropW(hwnd, kProcedureProperty, reinterpret_cast<HANDLE>(nOriginal));
            SetWindowLongPtrW(hwnd, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(StaticProcedure));
        }
    }
}
