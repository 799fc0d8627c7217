#include "check/Progress.h"

#include "check/Stopping.h"

#include <commctrl.h>

namespace {

constexpr PCWSTR kClass = L"KalvoWindowsCheckProgress";
constexpr int kTextId = 100;
constexpr int kBarId = 101;

// At 96 dots per inch.
constexpr int kWidth = 360;
constexpr int kHeight = 96;
constexpr int kMargin = 12;
constexpr int kButtonWidth = 80;

void OnCancel(HWND hwnd)
{
    Stop();
    SetDlgItemTextW(hwnd, kTextId, L"Tidying up \x2026");
    EnableWindow(GetDlgItem(hwnd, IDCANCEL), FALSE);
}

LRESULT CALLBACK Procedure(HWND hwnd, UINT nMessage, WPARAM wParam, LPARAM lParam)
{
    switch (nMessage) {
    case WM_COMMAND:
        if (LOWORD(wParam) == IDCANCEL) {
            OnCancel(hwnd);
        }
        return 0;
    case WM_CLOSE:
        OnCancel(hwnd);
        return 0;
    default:
        return DefWindowProcW(hwnd, nMessage, wParam, lParam);
    }
}

int Scaled(int nPixels)
{
    return MulDiv(nPixels, static_cast<int>(GetDpiForSystem()), USER_DEFAULT_SCREEN_DPI);
}

HFONT MessageFont()
{
    static const HFONT s_hFont = [] {
        NONCLIENTMETRICSW metrics = {};
        metrics.cbSize = sizeof metrics;
        SystemParametersInfoW(SPI_GETNONCLIENTMETRICS, sizeof metrics, &metrics, 0);
        return CreateFontIndirectW(&metrics.lfMessageFont);
    }();
    return s_hFont;
}

HWND AddControl(HWND hwndParent, PCWSTR pszClass, PCWSTR pszText, DWORD dwStyle, RECT place, int nId)
{
    const HWND hwnd =
        CreateWindowExW(0, pszClass, pszText, WS_CHILD | WS_VISIBLE | dwStyle, Scaled(place.left), Scaled(place.top),
                        Scaled(place.right - place.left), Scaled(place.bottom - place.top), hwndParent,
                        reinterpret_cast<HMENU>(static_cast<INT_PTR>(nId)), GetModuleHandleW(nullptr), nullptr);
    SendMessageW(hwnd, WM_SETFONT, reinterpret_cast<WPARAM>(MessageFont()), TRUE);
    return hwnd;
}

} // namespace

// In the corner and before all others, where it covers nothing that pictures are taken of.
CProgress::CProgress(int nSteps)
{
    WNDCLASSEXW window = {};
    window.cbSize = sizeof window;
    window.lpfnWndProc = Procedure;
    window.hInstance = GetModuleHandleW(nullptr);
    window.hCursor = LoadCursorW(nullptr, IDC_ARROW);
    window.hbrBackground = GetSysColorBrush(COLOR_BTNFACE);
    window.lpszClassName = kClass;
    RegisterClassExW(&window);
    constexpr DWORD kStyle = WS_POPUP | WS_CAPTION | WS_SYSMENU;
    RECT rect = {0, 0, Scaled(kWidth), Scaled(kHeight)};
    AdjustWindowRectEx(&rect, kStyle, FALSE, WS_EX_TOPMOST);
    m_hwnd = CreateWindowExW(WS_EX_TOPMOST, kClass, L"KALVO Windows check", kStyle, 0, 0, rect.right - rect.left,
                             rect.bottom - rect.top, nullptr, nullptr, window.hInstance, nullptr);
    const int nRight = kWidth - kMargin;
    AddControl(m_hwnd, WC_STATICW, L"", SS_LEFTNOWORDWRAP | SS_NOPREFIX, {kMargin, 10, nRight, 28}, kTextId);
    AddControl(m_hwnd, PROGRESS_CLASSW, L"", 0, {kMargin, 32, nRight, 48}, kBarId);
    AddControl(m_hwnd, WC_BUTTONW, L"Cancel", WS_TABSTOP, {nRight - kButtonWidth, 58, nRight, 84}, IDCANCEL);
    SendDlgItemMessageW(m_hwnd, kBarId, PBM_SETRANGE32, 0, nSteps);
    ShowWindow(m_hwnd, SW_SHOWNORMAL);
    SetForegroundWindow(m_hwnd);
}

CProgress::~CProgress()
{
    DestroyWindow(m_hwnd);
}

void CProgress::Tell(int nStep, const std::wstring& szName)
{
    SetDlgItemTextW(m_hwnd, kTextId, szName.c_str());
    SendDlgItemMessageW(m_hwnd, kBarId, PBM_SETPOS, static_cast<WPARAM>(nStep), 0);
}

void CProgress::RunUntil(HANDLE hEnd) const
{
    while (MsgWaitForMultipleObjects(1, &hEnd, FALSE, INFINITE, QS_ALLINPUT) != WAIT_OBJECT_0) {
        MSG message;
        while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
            if (!IsDialogMessageW(m_hwnd, &message)) {
                TranslateMessage(&message);
                DispatchMessageW(&message);
            }
        }
    }
}
