#include "system/MessageBoxes.h"

#include "frame/FrameFonts.h"

#include <commctrl.h>

#include <algorithm>

namespace {

// The place of the picture in Wine's template of message boxes.
constexpr int kPictureId = 1088;

// The width of a caption with that text, an icon, and the three buttons that window managers give to any window.
LONG CaptionWidth(PCWSTR pszCaption)
{
    NONCLIENTMETRICSW metrics = {};
    metrics.cbSize = sizeof(metrics);
    SystemParametersInfoW(SPI_GETNONCLIENTMETRICS, sizeof(metrics), &metrics, 0);
    metrics.lfCaptionFont.lfWeight = FW_BOLD;
    const CFontHandle hFont(CreateFontIndirectW(&metrics.lfCaptionFont));
    return MeasureText(hFont.get(), pszCaption).cx + (6 * GetSystemMetrics(SM_CYCAPTION));
}

void MoveBy(HWND hwnd, LONG nRight)
{
    RECT rect = {};
    GetWindowRect(hwnd, &rect);
    MapWindowPoints(nullptr, GetParent(hwnd), reinterpret_cast<POINT*>(&rect), 2);
    SetWindowPos(hwnd, nullptr, rect.left + nRight, rect.top, 0, 0, SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
}

// Grows to both sides, and keeps the buttons in the middle.
void Widen(HWND hwnd, LONG nWidth)
{
    RECT rect = {};
    GetWindowRect(hwnd, &rect);
    const LONG nMore = nWidth - (rect.right - rect.left);
    if (nMore <= 0) {
        return;
    }
    SetWindowPos(hwnd, nullptr, std::max(0L, rect.left - (nMore / 2)), rect.top, nWidth, rect.bottom - rect.top,
                 SWP_NOZORDER | SWP_NOACTIVATE);
    HWND hwndButton = nullptr;
    while ((hwndButton = FindWindowExW(hwnd, hwndButton, WC_BUTTONW, nullptr)) != nullptr) {
        MoveBy(hwndButton, nMore / 2);
    }
}

void HideEmptyPicture(HWND hwnd)
{
    const HWND hwndPicture = GetDlgItem(hwnd, kPictureId);
    if (hwndPicture != nullptr && SendMessageW(hwndPicture, STM_GETICON, 0, 0) == 0) {
        ShowWindow(hwndPicture, SW_HIDE);
    }
}

// A box is laid out when it has been told that it was made, and shown after that.
LRESULT CALLBACK OnMessageDone(int nCode, WPARAM wParam, LPARAM lParam)
{
    const auto& message = *reinterpret_cast<const CWPRETSTRUCT*>(lParam);
    if (nCode == HC_ACTION && message.message == WM_INITDIALOG) {
        HideEmptyPicture(message.hwnd);
        WCHAR szCaption[512] = {};
        GetWindowTextW(message.hwnd, szCaption, ARRAYSIZE(szCaption));
        Widen(message.hwnd, std::min<LONG>(CaptionWidth(szCaption), GetSystemMetrics(SM_CXSCREEN)));
    }
    return CallNextHookEx(nullptr, nCode, wParam, lParam);
}

} // namespace

int WINAPI ShowMessageBox(HWND hwndOwner, LPCWSTR pszText, LPCWSTR pszCaption, UINT nType)
{
    const HHOOK hHook = SetWindowsHookExW(WH_CALLWNDPROCRET, OnMessageDone, nullptr, GetCurrentThreadId());
    const int nResult = MessageBoxW(hwndOwner, pszText, pszCaption, nType);
    const DWORD dwError = GetLastError();
    UnhookWindowsHookEx(hHook);
    SetLastError(dwError);
    return nResult;
}
