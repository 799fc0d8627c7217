#include "system/Foreground.h"

namespace {

bool IsOfThisProcess(HWND hwnd)
{
    DWORD dwProcess = 0;
    GetWindowThreadProcessId(hwnd, &dwProcess);
    return dwProcess == GetCurrentProcessId();
}

// A window that is disabled has a message box; the active popup of another process cannot be asked for.
HWND FrontOf(HWND hwnd)
{
    if (!IsWindow(hwnd) || IsWindowEnabled(hwnd)) {
        return hwnd;
    }
    struct
    {
        HWND hwndOwner, hwndFound;
    } search = {hwnd, hwnd};
    const auto look = [](HWND hwndOther, LPARAM lParam) -> BOOL {
        auto& found = *reinterpret_cast<decltype(search)*>(lParam);
        if (GetWindow(hwndOther, GW_OWNER) == found.hwndOwner && IsWindowVisible(hwndOther) &&
            IsWindowEnabled(hwndOther)) {
            found.hwndFound = hwndOther;
            return FALSE;
        }
        return TRUE;
    };
    EnumWindows(look, reinterpret_cast<LPARAM>(&search));
    return search.hwndFound;
}

// The window manager puts a window in front, and gives it the keyboard, when it is newly shown.
void ShowAnew(HWND hwnd)
{
    ShowWindowAsync(hwnd, SW_HIDE);
    ShowWindowAsync(hwnd, SW_SHOW);
}

} // namespace

BOOL WINAPI BringToForeground(HWND hwnd)
{
    const HWND hwndFront = FrontOf(hwnd);
    const BOOL bDone = SetForegroundWindow(hwndFront);
    if (bDone && !IsOfThisProcess(hwnd)) {
        ShowAnew(hwnd);
        if (hwndFront != hwnd) {
            ShowAnew(hwndFront); // a box comes to the front only with the window that it belongs to
        }
    }
    return bDone;
}
