#include "frame/FocusOrder.h"

#include <algorithm>
#include <vector>

namespace {

// The children that the user can reach, on the premise that their parent is to be seen.
std::vector<HWND> ReachableChildren(HWND hwndParent)
{
    std::vector<HWND> children;
    for (HWND hwnd = GetWindow(hwndParent, GW_CHILD); hwnd != nullptr; hwnd = GetWindow(hwnd, GW_HWNDNEXT)) {
        if ((GetWindowLongPtrW(hwnd, GWL_STYLE) & (WS_VISIBLE | WS_DISABLED)) == WS_VISIBLE) {
            children.push_back(hwnd);
        }
    }
    return children;
}

std::vector<HWND> TabStops(HWND hwndRoot)
{
    std::vector<HWND> stops = ReachableChildren(hwndRoot);
    const auto isParent = [](HWND hwnd) { return (GetWindowLongPtrW(hwnd, GWL_EXSTYLE) & WS_EX_CONTROLPARENT) != 0; };
    // A page, whose controls take its place.
    for (auto at = std::ranges::find_if(stops, isParent); at != stops.end();
         at = std::ranges::find_if(stops, isParent)) {
        const std::vector<HWND> inside = ReachableChildren(*at);
        stops.insert(stops.erase(at), inside.begin(), inside.end());
    }
    std::erase_if(stops, [](HWND hwnd) { return (GetWindowLongPtrW(hwnd, GWL_STYLE) & WS_TABSTOP) == 0; });
    return stops;
}

} // namespace

HWND NextTabStop(HWND hwndRoot, HWND hwndFrom, bool bBackward)
{
    std::vector<HWND> stops = TabStops(hwndRoot);
    if (stops.empty()) {
        return nullptr;
    }
    if (bBackward) {
        std::ranges::reverse(stops);
    }
    const auto holds = [hwndFrom](HWND hwndStop) { return hwndStop == hwndFrom || IsChild(hwndStop, hwndFrom); };
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
