#include "system/AddressControl.h"

#include "system/AddressLook.h"
#include "system/AddressText.h"

#include <commctrl.h>

namespace {

WNDPROC g_pfnOriginal;

// The control that is being told of a change in one of its fields: it answers by setting its own text to
// what the fields say, which must not fill the fields again.
HWND g_hwndFollowing;

LRESULT SetText(HWND hwnd, PCWSTR pszText)
{
    const std::array<std::wstring, kAddressFields> texts = SplitAddress(pszText != nullptr ? pszText : L"");
    const std::array<HWND, kAddressFields> fields = AddressFields(hwnd);
    for (size_t n = 0; n < kAddressFields; ++n) {
        SetWindowTextW(fields[n], texts[n].c_str());
    }
    return TRUE;
}

LRESULT CallOriginal(HWND hwnd, UINT nMessage, WPARAM wParam, LPARAM lParam)
{
    const HWND hwndBefore = g_hwndFollowing;
    if (nMessage == WM_COMMAND) {
        g_hwndFollowing = hwnd;
    }
    const LRESULT nResult = CallWindowProcW(g_pfnOriginal, hwnd, nMessage, wParam, lParam);
    g_hwndFollowing = hwndBefore;
    return nResult;
}

LRESULT CALLBACK Procedure(HWND hwnd, UINT nMessage, WPARAM wParam, LPARAM lParam)
{
    switch (nMessage) {
    case WM_SETTEXT:
        if (hwnd != g_hwndFollowing) {
            return SetText(hwnd, reinterpret_cast<PCWSTR>(lParam));
        }
        break;
    case WM_SETFONT:
        return SetAddressFont(hwnd, wParam);
    case WM_GETFONT:
        return GetAddressFont(hwnd);
    case WM_SIZE:
        ArrangeAddressFields(hwnd);
        break;
    case WM_ENABLE:
        InvalidateRect(hwnd, nullptr, TRUE);
        break;
    case WM_CTLCOLOREDIT:
        return AddressGround(hwnd, reinterpret_cast<HDC>(wParam));
    case WM_ERASEBKGND:
        return TRUE; // PaintAddress covers all of it
    case WM_PAINT:
        return PaintAddress(hwnd);
    case WM_NCDESTROY:
        ForgetAddressFont(hwnd);
        break;
    default:
        break;
    }
    return CallOriginal(hwnd, nMessage, wParam, lParam);
}

} // namespace

bool MendAddressControl()
{
    if (g_pfnOriginal != nullptr) {
        return true;
    }
    const INITCOMMONCONTROLSEX controls = {sizeof(controls), ICC_INTERNET_CLASSES};
    InitCommonControlsEx(&controls);
    const HWND hwnd =
        CreateWindowExW(0, WC_IPADDRESSW, nullptr, WS_POPUP, 0, 0, 0, 0, nullptr, nullptr, nullptr, nullptr);
    if (hwnd == nullptr) {
        return false;
    }
    // The procedure of the class, so that windows made later have the new one from the start.
    g_pfnOriginal =
        reinterpret_cast<WNDPROC>(SetClassLongPtrW(hwnd, GCLP_WNDPROC, reinterpret_cast<LONG_PTR>(Procedure)));
    DestroyWindow(hwnd);
    return g_pfnOriginal != nullptr;
}
