#include "system/AddressControl.h"

#include "frame/Owned.h"
#include "system/AddressText.h"

#include <commctrl.h>

#include <algorithm>
#include <utility>

namespace {

WNDPROC g_pfnOriginal;

// The control whose fields are being changed by a program, or which follows a change of one of its fields: it then sets
// its own text to what the fields say, which must not fill the fields again, and nothing of it is to be told.
HWND g_hwndChanging;

template<typename Change>
LRESULT WhileChanging(HWND hwnd, Change change)
{
    const HWND hwndBefore = std::exchange(g_hwndChanging, hwnd);
    const LRESULT nResult = change();
    g_hwndChanging = hwndBefore;
    return nResult;
}

LRESULT CallOriginal(HWND hwnd, UINT nMessage, WPARAM wParam, LPARAM lParam)
{
    return CallWindowProcW(g_pfnOriginal, hwnd, nMessage, wParam, lParam);
}

// Wine learns only later of being disabled.
LRESULT Create(HWND hwnd, WPARAM wParam, LPARAM lParam)
{
    const LRESULT nResult = CallOriginal(hwnd, WM_CREATE, wParam, lParam);
    if (!IsWindowEnabled(hwnd)) {
        CallOriginal(hwnd, WM_ENABLE, FALSE, 0);
    }
    return nResult;
}

LRESULT SetText(HWND hwnd, PCWSTR pszText)
{
    const std::array<std::wstring, 4> texts = SplitAddress(pszText != nullptr ? pszText : L"");
    const std::array<HWND, 4> fields = AddressFields(hwnd);
    for (size_t n = 0; n < fields.size(); ++n) {
        SetWindowTextW(fields[n], texts[n].c_str());
    }
    return TRUE;
}

RECT PlaceOf(HWND hwndField)
{
    RECT rect = {};
    GetWindowRect(hwndField, &rect);
    MapWindowPoints(nullptr, GetParent(hwndField), reinterpret_cast<POINT*>(&rect), 2);
    return rect;
}

LRESULT SetFont(HWND hwnd, WPARAM wFont)
{
    for (const HWND hwndField : AddressFields(hwnd)) {
        SendMessageW(hwndField, WM_SETFONT, wFont, TRUE);
    }
    return 0;
}

// Wine's dots are lower than the numbers and have another font.
LRESULT Paint(HWND hwnd)
{
    CallOriginal(hwnd, WM_PAINT, 0, 0);
    const bool bEnabled = IsWindowEnabled(hwnd) != FALSE;
    const std::array<HWND, 4> fields = AddressFields(hwnd);
    const HDC hdc = GetDC(hwnd);
    {
        const CSelection font(hdc, reinterpret_cast<HGDIOBJ>(SendMessageW(fields[0], WM_GETFONT, 0, 0)));
        SetTextColor(hdc, GetSysColor(bEnabled ? COLOR_WINDOWTEXT : COLOR_GRAYTEXT));
        SetBkMode(hdc, TRANSPARENT);
        for (size_t n = 1; n < fields.size(); ++n) {
            const RECT left = PlaceOf(fields[n - 1]);
            RECT gap = {left.right, left.top, PlaceOf(fields[n]).left, left.bottom};
            FillRect(hdc, &gap, GetSysColorBrush(bEnabled ? COLOR_WINDOW : COLOR_3DFACE));
            DrawTextW(hdc, L".", 1, &gap, DT_SINGLELINE | DT_CENTER | DT_TOP);
        }
    }
    ReleaseDC(hwnd, hdc);
    return 0;
}

// Tells the dialog at every change of a field; Wine tells it only when a field is full or left.
LRESULT OnCommand(HWND hwnd, WPARAM wParam, LPARAM lParam)
{
    const bool bTell = HIWORD(wParam) == EN_CHANGE && hwnd != g_hwndChanging;
    const LRESULT nResult = WhileChanging(hwnd, [=] { return CallOriginal(hwnd, WM_COMMAND, wParam, lParam); });
    if (bTell) {
        NMIPADDRESS notification = {};
        notification.hdr.hwndFrom = hwnd;
        notification.hdr.idFrom = static_cast<UINT_PTR>(GetDlgCtrlID(hwnd));
        notification.hdr.code = static_cast<UINT>(IPN_FIELDCHANGED);
        SendMessageW(GetParent(hwnd), WM_NOTIFY, notification.hdr.idFrom, reinterpret_cast<LPARAM>(&notification));
    }
    return nResult;
}

LRESULT CALLBACK AddressProcedure(HWND hwnd, UINT nMessage, WPARAM wParam, LPARAM lParam)
{
    switch (nMessage) {
    case WM_CREATE:
        return WhileChanging(hwnd, [=] { return Create(hwnd, wParam, lParam); });
    case WM_SETTEXT:
        if (hwnd != g_hwndChanging) {
            return WhileChanging(hwnd, [=] { return SetText(hwnd, reinterpret_cast<PCWSTR>(lParam)); });
        }
        break;
    case IPM_SETADDRESS:
        return WhileChanging(hwnd, [=] { return CallOriginal(hwnd, nMessage, wParam, lParam); });
    case WM_COMMAND:
        return OnCommand(hwnd, wParam, lParam);
    case WM_SETFONT:
        return SetFont(hwnd, wParam);
    case WM_PAINT:
        return Paint(hwnd);
    default:
        break;
    }
    return CallOriginal(hwnd, nMessage, wParam, lParam);
}

} // namespace

void MendAddressControl()
{
    if (g_pfnOriginal != nullptr) {
        return;
    }
    const INITCOMMONCONTROLSEX controls = {sizeof(controls), ICC_INTERNET_CLASSES};
    InitCommonControlsEx(&controls);
    const HWND hwnd =
        CreateWindowExW(0, WC_IPADDRESSW, nullptr, WS_POPUP, 0, 0, 0, 0, nullptr, nullptr, nullptr, nullptr);
    // The procedure of the class, so that windows made later have the new one from the start.
    g_pfnOriginal =
        reinterpret_cast<WNDPROC>(SetClassLongPtrW(hwnd, GCLP_WNDPROC, reinterpret_cast<LONG_PTR>(AddressProcedure)));
    DestroyWindow(hwnd);
}

std::array<HWND, 4> AddressFields(HWND hwnd)
{
    std::array<HWND, 4> fields = {};
    HWND hwndField = GetWindow(hwnd, GW_CHILD);
    for (HWND& hwndNext : fields) {
        hwndNext = hwndField;
        hwndField = GetWindow(hwndField, GW_HWNDNEXT);
    }
    std::ranges::sort(fields, {}, [](HWND hwndNext) { return PlaceOf(hwndNext).left; });
    return fields;
}
