#include "system/AddressControl.h"

#include "system/AddressLook.h"
#include "system/AddressText.h"

#include <commctrl.h>

#include <algorithm>
#include <cwchar>
#include <utility>

namespace {

WNDPROC g_pfnOriginal;

// The control that is being told of a change in one of its fields: it answers by setting its own text to
// what the fields say, which must not fill the fields again.
HWND g_hwndFollowing;

// The control that a program is filling; only what a user changes is told.
HWND g_hwndFilling;

// Runs while the fields change by a program's doing.
template<typename FILL>
LRESULT Fill(HWND hwnd, FILL fill)
{
    const HWND hwndBefore = std::exchange(g_hwndFilling, hwnd);
    const LRESULT nResult = fill();
    g_hwndFilling = hwndBefore;
    return nResult;
}

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

// Tells the dialog at every change of a field; Wine tells it only when a field is full or left.
void NotifyFieldChanged(HWND hwnd, HWND hwndField)
{
    const std::array<HWND, kAddressFields> fields = AddressFields(hwnd);
    const auto* const pField = std::ranges::find(fields, hwndField);
    if (pField == fields.end()) {
        return;
    }
    WCHAR szValue[4] = {};
    GetWindowTextW(hwndField, szValue, ARRAYSIZE(szValue));
    NMIPADDRESS notification = {};
    notification.hdr.hwndFrom = hwnd;
    notification.hdr.idFrom = static_cast<UINT_PTR>(GetDlgCtrlID(hwnd));
    notification.hdr.code = static_cast<UINT>(IPN_FIELDCHANGED);
    notification.iField = static_cast<int>(pField - fields.begin());
    notification.iValue = szValue[0] == L'\0' ? -1 : static_cast<int>(wcstol(szValue, nullptr, 10));
    SendMessageW(GetParent(hwnd), WM_NOTIFY, notification.hdr.idFrom, reinterpret_cast<LPARAM>(&notification));
}

LRESULT OnCommand(HWND hwnd, WPARAM wParam, LPARAM lParam)
{
    const LRESULT nResult = CallOriginal(hwnd, WM_COMMAND, wParam, lParam);
    if (HIWORD(wParam) == EN_CHANGE && hwnd != g_hwndFilling) {
        NotifyFieldChanged(hwnd, reinterpret_cast<HWND>(lParam));
    }
    return nResult;
}

// Blank from the start; Wine begins with 0.0.0.0.
LRESULT OnCreate(HWND hwnd, WPARAM wParam, LPARAM lParam)
{
    return Fill(hwnd, [=] {
        const LRESULT nResult = CallOriginal(hwnd, WM_CREATE, wParam, lParam);
        CallOriginal(hwnd, IPM_CLEARADDRESS, 0, 0);
        return nResult;
    });
}

LRESULT CALLBACK Procedure(HWND hwnd, UINT nMessage, WPARAM wParam, LPARAM lParam)
{
    switch (nMessage) {
    case WM_CREATE:
        return OnCreate(hwnd, wParam, lParam);
    case WM_SETTEXT:
        if (hwnd != g_hwndFollowing) {
            return Fill(hwnd, [=] { return SetText(hwnd, reinterpret_cast<PCWSTR>(lParam)); });
        }
        break;
    case IPM_SETADDRESS:
    case IPM_CLEARADDRESS:
        return Fill(hwnd, [=] { return CallOriginal(hwnd, nMessage, wParam, lParam); });
    case WM_COMMAND:
        return OnCommand(hwnd, wParam, lParam);
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
