#include "frame/FocusOrder.h"

#include <algorithm>
#include <vector>

namespace {

// Whether the user can reach it, on the premise that its root is to be seen.
bool IsReachable(HWND hwnd)
{
    return (GetWindowLongPtrW(hwnd, GWL_STYLE) & (WS_VISIBLE | WS_DISABLED)) == WS_VISIBLE;
}

void CollectTabStops(HWND hwndRoot, std::vector<HWND>& stops)
{
    for (HWND hwnd = GetWindow(hwndRoot, GW_CHILD); hwnd != nullptr; hwnd = GetWindow(hwnd, GW_HWNDNEXT)) {
        if (!IsReachable(hwnd)) {
            continue;
        }
        if ((GetWindowLongPtrW(hwnd, GWL_EXSTYLE) & WS_EX_CONTROLPARENT) != 0) {
            CollectTabStops(hwnd, stops);
        } else if ((GetWindowLongPtrW(hwnd, GWL_STYLE) & WS_TABSTOP) != 0) {
            stops.push_back(hwnd);
        }
    }
}

} // namespace

HWND NextTabStop(HWND hwndRoot, HWND hwndFrom, bool bBackward)
{
    std::vector<HWND> stops;
    CollectTabStops(hwndRoot, stops);
    if (stops.empty()) {
        return nullptr;
    }
    if (bBackward) {
        std::ranges::reverse(stops);
    }
    const auto holds = [hwndFrom](HWND hwnd) { return hwnd == hwndFrom || IsChild(hwnd, hwndFrom); };
    const auto from = std::ranges::find_if(stops, holds);
    return from == stops.end() || from + 1 == stops.end() ? stops.front() : *(from + 1);
}

HWND FirstTabStop(HWND hwndRoot)
{
    return NextTabStop(hwndRoot, nullptr, false);
}

void GiveFocus(HWND hwndControl)
{
    SetFocus(hwndControl);
    if ((SendMessageW(hwndControl, WM_GETDLGCODE, 0, 0) & DLGC_HASSETSEL) != 0) {
        SendMessageW(hwndControl, EM_SETSEL, 0, -1);
    }
}
