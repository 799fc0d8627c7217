#include "system/AddressLook.h"

#include <commctrl.h>
#include <uxtheme.h>
#include <vsstyle.h>

#include <algorithm>

namespace {

constexpr int kFields = static_cast<int>(kAddressFields);
constexpr WCHAR kFontProperty[] = L"KalvoAddressFont";

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
    const int nWidth = (static_cast<int>(client.right) - 2 * nEdge - 3 * nDotWidth) / kFields;
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

} // namespace

std::array<HWND, kAddressFields> AddressFields(HWND hwnd)
{
    std::array<HWND, kAddressFields> fields = {};
    size_t nFound = 0;
    for (HWND child = GetWindow(hwnd, GW_CHILD); child != nullptr; child = GetWindow(child, GW_HWNDNEXT)) {
        if (nFound < kAddressFields) {
            fields[nFound] = child;
        }
        ++nFound;
    }
    if (nFound != kAddressFields) {
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

LRESULT SetAddressFont(HWND hwnd, WPARAM wParam)
{
    SetPropW(hwnd, kFontProperty, reinterpret_cast<HANDLE>(wParam));
    ArrangeAddressFields(hwnd);
    return 0;
}

LRESULT GetAddressFont(HWND hwnd)
{
    return reinterpret_cast<LRESULT>(FontOf(hwnd));
}

void ArrangeAddressFields(HWND hwnd)
{
    const std::array<HWND, kAddressFields> fields = AddressFields(hwnd);
    if (FontOf(hwnd) == nullptr || fields[0] == nullptr) {
        return;
    }
    const HDC hdc = GetDC(hwnd);
    const int nHeight = FontHeight(hwnd, hdc);
    ReleaseDC(hwnd, hdc);
    for (int n = 0; n < kFields; ++n) {
        const HWND field = fields[static_cast<size_t>(n)];
        const RECT rect = PlaceOf(hwnd, n, nHeight).field;
        SendMessageW(field, WM_SETFONT, reinterpret_cast<WPARAM>(FontOf(hwnd)), FALSE);
        MoveWindow(field, rect.left, rect.top, rect.right - rect.left, nHeight, TRUE);
    }
    InvalidateRect(hwnd, nullptr, TRUE);
}

LRESULT AddressGround(HWND hwnd, HDC hdc)
{
    const bool bEnabled = IsWindowEnabled(hwnd) != FALSE;
    const int nGround = bEnabled ? COLOR_WINDOW : COLOR_3DFACE;
    SetTextColor(hdc, GetSysColor(bEnabled ? COLOR_WINDOWTEXT : COLOR_GRAYTEXT));
    SetBkColor(hdc, GetSysColor(nGround));
    return reinterpret_cast<LRESULT>(GetSysColorBrush(nGround));
}

LRESULT PaintAddress(HWND hwnd)
{
    PAINTSTRUCT paint;
    const HDC hdc = BeginPaint(hwnd, &paint);
    RECT rect = {};
    GetClientRect(hwnd, &rect);
    FillRect(hdc, &rect, reinterpret_cast<HBRUSH>(AddressGround(hwnd, hdc)));
    PaintOutline(hwnd, hdc, rect);
    const int nHeight = FontHeight(hwnd, hdc);
    const HGDIOBJ hPrevious = SelectObject(hdc, FontOf(hwnd));
    SetBkMode(hdc, TRANSPARENT);
    for (int n = 0; n < kFields - 1; ++n) {
        RECT dot = PlaceOf(hwnd, n, nHeight).dot;
        DrawTextW(hdc, L".", 1, &dot, DT_SINGLELINE | DT_CENTER | DT_TOP | DT_NOCLIP);
    }
    SelectObject(hdc, hPrevious);
    EndPaint(hwnd, &paint);
    return 0;
}

void ForgetAddressFont(HWND hwnd)
{
    RemovePropW(hwnd, kFontProperty);
}
