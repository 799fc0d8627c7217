#include "system/AddressControl.h"

#include <commctrl.h>

#include <algorithm>
#include <array>
#include <string>
#include <string_view>

namespace {

constexpr size_t kFields = 4;

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

// The digits up to the next dot. A number above 255 becomes 255, which is what the control makes of one
// that is typed.
std::wstring FieldText(std::wstring_view& szRest)
{
    const size_t nEnd = std::min(szRest.find(L'.'), szRest.size());
    unsigned nValue = 0;
    bool bBlank = true;
    for (const wchar_t ch : szRest.substr(0, nEnd)) {
        if (ch >= L'0' && ch <= L'9') {
            nValue = std::min(255u, nValue * 10 + static_cast<unsigned>(ch - L'0'));
            bBlank = false;
        }
    }
    szRest.remove_prefix(std::min(nEnd + 1, szRest.size()));
    return bBlank ? std::wstring() : std::to_wstring(nValue);
}

LRESULT SetText(HWND hwnd, PCWSTR pszText)
{
    std::wstring_view szRest = pszText != nullptr ? pszText : L"";
    for (const HWND field : FieldsOf(hwnd)) {
        SetWindowTextW(field, FieldText(szRest).c_str());
    }
    return TRUE;
}

LRESULT CALLBACK Procedure(HWND hwnd, UINT nMessage, WPARAM wParam, LPARAM lParam)
{
    if (nMessage == WM_SETTEXT && hwnd != g_hwndFollowing) {
        return SetText(hwnd, reinterpret_cast<PCWSTR>(lParam));
    }
    const HWND hwndBefore = g_hwndFollowing;
    if (nMessage == WM_COMMAND) {
        g_hwndFollowing = hwnd;
    }
    const LRESULT nResult = CallWindowProcW(g_pfnOriginal, hwnd, nMessage, wParam, lParam);
    g_hwndFollowing = hwndBefore;
    return nResult;
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
