#include "system/AddressControl.h"

#include "system/AddressText.h"

#include <commctrl.h>
#include <uxtheme.h>
#include <vsstyle.h>

#include <algorithm>
#include <array>

namespace {

constexpr size_t kFields = 4;
constexpr WCHAR kFontProperty[] = L"KalvoAddressFont";

WNDPROC g_pfnOriginal;

// The control that is being told of a change in one of its fields: it answers by setting its own text to
// what the fields say, which must not fill the fields again.
HWND g_hwndFollowing;

// The control's edits, from left to right. All null unless there are four.
std::array<HWND, kFields> FieldsOf(HWND hwnd)
{
    std::array<HWND, kFields> fields = {};
    size_t nFound = 0;
    for (HWND child = GetWindow(hwnd, GW_CHILD); child != nullptr; child = GetWindow(child, GW_HWNDNEXT)) {
        if (nFound < kFields) {
            fields[nFound] = child;
        }
        ++nFound;
    }
    if (nFound != kFields) {
        return {};
    }
    const auto left = [](HWND field) {
        RECT rect = {};
        GetWindowRect(field, &rect);
        return rect.left;
    };
    std::ranges::sort(fields, {}, left);
    return fields;
}

LRESULT SetText(HWND hwnd, PCWSTR pszText)
{
    const std::array<std::wstring, kFields> texts = SplitAddress(pszText != nullptr ? pszText : L"");
    const std::array<HWND, kFields> fields = FieldsOf(hwnd);
    for (size_t n = 0; n < kFields; ++n) {
        SetWindowTextW(fields[n], texts[n].c_str());
    }
    return TRUE;
}

HFONT FontOf(HWND hwnd)
{
    return static_cast<HFONT>(GetPropW(hwnd, kFontProperty));
}

// The place of a field and of the dot after it: as high as the font, and as far from the top as the text of
// an edit, which often stands beside it.
struct FIELD_PLACE
{
    RECT field, dot;
};

FIELD_PLACE PlaceOf(HWND hwnd, int nField, int nFontHeight)
{
    RECT client = {};
    GetClientRect(hwnd, &client);
    const int nDotWidth = nFontHeight / 3;
    const int nTop = std::min(GetSystemMetrics(SM_CYEDGE) + 1, static_cast<int>(client.bottom - nFontHeight) / 2);
    const int nEdge = GetSystemMetrics(SM_CXEDGE);
    const int nWidth = (static_cast<int>(client.right) - 2 * nEdge - 3 * nDotWidth) / static_cast<int>(kFields);
    const int nLeft = nEdge + nField * (nWidth + nDotWidth);
    return {{nLeft, nTop, nLeft + nWidth, nTop + nFontHeight},
            {nLeft + nWidth, nTop, nLeft + nWidth + nDotWidth, nTop + nFontHeight}};
}

int FontHeight(HWND hwnd, HDC hdc)
{
    const HGDIOBJ hPrevious = SelectObject(hdc, FontOf(hwnd));
    TEXTMETRICW metric = {};
    GetTextMetricsW(hdc, &metric);
    SelectObject(hdc, hPrevious);
    return static_cast<int>(metric.tmHeight);
}

void ArrangeFields(HWND hwnd)
{
    const std::array<HWND, kFields> fields = FieldsOf(hwnd);
    if (FontOf(hwnd) == nullptr || fields[0] == nullptr) {
        return;
    }
    const HDC hdc = GetDC(hwnd);
    const int nHeight = FontHeight(hwnd, hdc);
    ReleaseDC(hwnd, hdc);
    for (size_t n = 0; n < kFields; ++n) {
        const RECT rect = PlaceOf(hwnd, static_cast<int>(n), nHeight).field;
        SendMessageW(fields[n], WM_SETFONT, reinterpret_cast<WPARAM>(FontOf(hwnd)), FALSE);
        MoveWindow(fields[n], rect.left, rect.top, rect.right - rect.left, nHeight, TRUE);
    }
    InvalidateRect(hwnd, nullptr, TRUE);
}

LRESULT SetFont(HWND hwnd, WPARAM wParam)
{
    SetPropW(hwnd, kFontProperty, reinterpret_cast<HANDLE>(wParam));
    ArrangeFields(hwnd);
    return 0;
}

// The ground of the control and of its fields.
LRESULT Ground(HWND hwnd, HDC hdc)
{
    const bool bEnabled = IsWindowEnabled(hwnd) != FALSE;
    const int nGround = bEnabled ? COLOR_WINDOW : COLOR_3DFACE;
    SetTextColor(hdc, GetSysColor(bEnabled ? COLOR_WINDOWTEXT : COLOR_GRAYTEXT));
    SetBkColor(hdc, GetSysColor(nGround));
    return reinterpret_cast<LRESULT>(GetSysColorBrush(nGround));
}

// The outline of an edit.
void PaintOutline(HWND hwnd, HDC hdc, const RECT& rect)
{
    const HTHEME hTheme = OpenThemeData(hwnd, WC_EDITW);
    if (hTheme != nullptr) {
        DrawThemeBackground(hTheme, hdc, EP_EDITTEXT, IsWindowEnabled(hwnd) ? ETS_NORMAL : ETS_DISABLED, &rect,
                            nullptr);
        CloseThemeData(hTheme);
    } else {
        RECT edge = rect;
        DrawEdge(hdc, &edge, EDGE_SUNKEN, BF_RECT);
    }
}

LRESULT Paint(HWND hwnd)
{
    PAINTSTRUCT paint;
    const HDC hdc = BeginPaint(hwnd, &paint);
    RECT rect = {};
    GetClientRect(hwnd, &rect);
    FillRect(hdc, &rect, reinterpret_cast<HBRUSH>(Ground(hwnd, hdc)));
    PaintOutline(hwnd, hdc, rect);
    const int nHeight = FontHeight(hwnd, hdc);
    const HGDIOBJ hPrevious = SelectObject(hdc, FontOf(hwnd));
    SetBkMode(hdc, TRANSPARENT);
    for (int n = 0; n < static_cast<int>(kFields) - 1; ++n) {
        RECT dot = PlaceOf(hwnd, n, nHeight).dot;
        DrawTextW(hdc, L".", 1, &dot, DT_SINGLELINE | DT_CENTER | DT_TOP | DT_NOCLIP);
    }
    SelectObject(hdc, hPrevious);
    EndPaint(hwnd, &paint);
    return 0;
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
        return SetFont(hwnd, wParam);
    case WM_GETFONT:
        return reinterpret_cast<LRESULT>(FontOf(hwnd));
    case WM_SIZE:
        ArrangeFields(hwnd);
        break;
    case WM_ENABLE:
        InvalidateRect(hwnd, nullptr, TRUE);
        break;
    case WM_CTLCOLOREDIT:
        return Ground(hwnd, reinterpret_cast<HDC>(wParam));
    case WM_ERASEBKGND:
        return TRUE; // Paint covers all of it
    case WM_PAINT:
        return Paint(hwnd);
    case WM_NCDESTROY:
        RemovePropW(hwnd, kFontProperty);
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
    const HWND hwnd = CreateWindowExW(0, WC_IPADDRESSW, nullptr, WS_POPUP, 0, 0, 0, 0, nullptr, nullptr, nullptr,
                                      nullptr);
    if (hwnd == nullptr) {
        return false;
    }
    // The procedure of the class, so that windows made later have the new one from the start.
    g_pfnOriginal = reinterpret_cast<WNDPROC>(
        SetClassLongPtrW(hwnd, GCLP_WNDPROC, reinterpret_cast<LONG_PTR>(Procedure)));
    DestroyWindow(hwnd);
    return g_pfnOriginal != nullptr;
}
