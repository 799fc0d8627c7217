#include "frame/FrameButtons.h"

#include "frame/BackButton.h"

#include <algorithm>
#include <utility>

namespace {

struct BUTTON
{
    DWORD dwFlag; // PSWIZB_
    int nId;
    PCWSTR pszText;
    DWORD dwKind;
};

// In tab order. The arrow draws itself.
constexpr BUTTON kButtons[] = {
    {PSWIZB_BACK, kBackButtonId, L"Back", BS_OWNERDRAW},
    {PSWIZB_NEXT, kNextButtonId, L"&Next", BS_PUSHBUTTON},
    {PSWIZB_FINISH, kFinishButtonId, L"&Finish", BS_PUSHBUTTON},
    {PSWIZB_CANCEL, IDCANCEL, L"Cancel", BS_PUSHBUTTON},
};

// None that draws itself, and no check box.
bool IsPushButton(HWND hwnd)
{
    return (SendMessageW(hwnd, WM_GETDLGCODE, 0, 0) & (DLGC_DEFPUSHBUTTON | DLGC_UNDEFPUSHBUTTON)) != 0;
}

void SetPushButtonKind(HWND hwnd, LONG_PTR nKind)
{
    if (IsPushButton(hwnd) && (GetWindowLongPtrW(hwnd, GWL_STYLE) & BS_TYPEMASK) != nKind) {
        SendMessageW(hwnd, BM_SETSTYLE, static_cast<WPARAM>(nKind), TRUE);
    }
}

} // namespace

SIZE WidestButtonText(HFONT hFont)
{
    SIZE widest = {};
    for (const BUTTON& button : kButtons) {
        const SIZE size = MeasureText(hFont, button.pszText);
        widest = {std::max(widest.cx, size.cx), std::max(widest.cy, size.cy)};
    }
    return widest;
}

void CFrameButtons::Create(HWND hwndFrame, const FRAME_LAYOUT& layout, HFONT hFont)
{
    m_hwndFrame = hwndFrame;
    for (const BUTTON& button : kButtons) {
        const RECT& rect = button.nId == kBackButtonId ? layout.backButton : layout.lastButton;
        const HWND hwnd =
            CreateWindowExW(0, WC_BUTTONW, button.pszText, WS_CHILD | WS_TABSTOP | button.dwKind, rect.left, rect.top,
                            rect.right - rect.left, rect.bottom - rect.top, hwndFrame,
                            reinterpret_cast<HMENU>(static_cast<INT_PTR>(button.nId)), nullptr, nullptr);
        SendMessageW(hwnd, WM_SETFONT, reinterpret_cast<WPARAM>(hFont), FALSE);
    }
    TakeQuickClicks(GetDlgItem(hwndFrame, kBackButtonId));
}

void CFrameButtons::Reset(bool bLastPage)
{
    m_dwShown = PSWIZB_BACK | PSWIZB_CANCEL | (bLastPage ? DWORD{PSWIZB_FINISH} : DWORD{PSWIZB_NEXT});
}

void CFrameButtons::Show(DWORD dwButtons, DWORD dwMask)
{
    m_dwShown = (m_dwShown & ~dwMask) | (dwButtons & dwMask);
}

void CFrameButtons::Apply(const FRAME_LAYOUT& layout)
{
    LONG nLeft = layout.lastButton.left;
    for (size_t n = std::size(kButtons); n-- > 0;) {
        const int nId = kButtons[n].nId;
        const HWND hwnd = GetDlgItem(m_hwndFrame, nId);
        if (nId != kBackButtonId && IsShown(nId)) {
            SetWindowPos(hwnd, nullptr, nLeft, layout.lastButton.top, 0, 0, SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
            nLeft -= layout.nButtonStep;
        }
        ShowWindow(hwnd, IsShown(nId) ? SW_SHOWNA : SW_HIDE);
    }
}

bool CFrameButtons::IsShown(int nId) const
{
    return std::ranges::any_of(
        kButtons, [=, this](const BUTTON& button) { return button.nId == nId && (m_dwShown & button.dwFlag) != 0; });
}

HWND CFrameButtons::Default() const
{
    for (const int nId : {kNextButtonId, kFinishButtonId}) {
        if (IsShown(nId)) {
            return GetDlgItem(m_hwndFrame, nId);
        }
    }
    return nullptr;
}

void CFrameButtons::MarkDefault(HWND hwndFocus)
{
    const HWND hwndDefault = TakesEnter(hwndFocus) ? hwndFocus : Default();
    const HWND hwndBefore = std::exchange(m_hwndMarked, hwndDefault);
    if (hwndBefore != hwndDefault) {
        SetPushButtonKind(hwndBefore, BS_PUSHBUTTON);
    }
    SetPushButtonKind(hwndDefault, BS_DEFPUSHBUTTON);
}

bool TakesEnter(HWND hwnd)
{
    return IsPushButton(hwnd) || GetDlgCtrlID(hwnd) == kBackButtonId;
}
