#include "frame/FrameButtons.h"

#include "frame/FrameFonts.h"

#include <algorithm>
#include <utility>

namespace {

struct BUTTON
{
    DWORD dwFlag; // PSWIZB_
    int nId;
    PCWSTR pszText;
};

// In tab order. Back is made apart: it is an arrow.
constexpr BUTTON kButtons[] = {
    {PSWIZB_BACK, kBackButtonId, nullptr},
    {PSWIZB_NEXT, kNextButtonId, L"&Next"},
    {PSWIZB_FINISH, kFinishButtonId, L"&Finish"},
    {PSWIZB_CANCEL, IDCANCEL, L"Cancel"},
};

size_t IndexOf(DWORD dwButton)
{
    const auto* const pFound = std::find_if(std::begin(kButtons), std::end(kButtons),
                                            [dwButton](const BUTTON& button) { return button.dwFlag == dwButton; });
    return static_cast<size_t>(pFound - kButtons);
}

DWORD Merge(DWORD dwOld, DWORD dwNew, DWORD dwMask)
{
    return (dwOld & ~dwMask) | (dwNew & dwMask);
}

// Also false for a window that is just made: it has no place yet.
bool IsAt(HWND hwnd, const RECT& rect)
{
    RECT now = {};
    GetWindowRect(hwnd, &now);
    MapWindowPoints(nullptr, GetParent(hwnd), reinterpret_cast<POINT*>(&now), 2);
    return EqualRect(&now, &rect) != FALSE;
}

void MoveTo(HWND hwnd, const RECT& rect)
{
    if (!IsAt(hwnd, rect)) {
        SetWindowPos(hwnd, nullptr, rect.left, rect.top, rect.right - rect.left, rect.bottom - rect.top,
                     SWP_NOZORDER | SWP_NOACTIVATE);
    }
}

LONG_PTR KindOf(HWND hwndButton)
{
    return GetWindowLongPtrW(hwndButton, GWL_STYLE) & BS_TYPEMASK;
}

// A button that draws itself has no outline, and its kind is not to be changed. Null is no button.
void SetPushButtonKind(HWND hwnd, LONG_PTR nKind)
{
    if (IsPushButton(hwnd) && KindOf(hwnd) != nKind && KindOf(hwnd) != BS_OWNERDRAW) {
        SendMessageW(hwnd, BM_SETSTYLE, static_cast<WPARAM>(nKind), TRUE);
    }
}

} // namespace

SIZE CFrameButtons::WidestText(HFONT hFont)
{
    SIZE widest = {};
    for (const BUTTON& button : kButtons) {
        if (button.pszText != nullptr) {
            const SIZE size = MeasureText(hFont, button.pszText);
            widest = {std::max(widest.cx, size.cx), std::max(widest.cy, size.cy)};
        }
    }
    return widest;
}

bool CFrameButtons::CreateBack(HWND hwndFrame, const CFrameLayout& layout)
{
    const bool bCreated = m_back.Create(hwndFrame, kBackButtonId, layout.BackButton());
    m_windows[IndexOf(PSWIZB_BACK)] = m_back.Window();
    return bCreated;
}

bool CFrameButtons::CreateStrip(HWND hwndFrame, const CFrameLayout& layout, HFONT hFont)
{
    const RECT rect = layout.Button(0);
    for (size_t n = IndexOf(PSWIZB_NEXT); n < std::size(kButtons); ++n) {
        m_windows[n] =
            CreateWindowExW(0, L"Button", kButtons[n].pszText, WS_CHILD | WS_TABSTOP | BS_PUSHBUTTON, rect.left,
                            rect.top, rect.right - rect.left, rect.bottom - rect.top, hwndFrame,
                            reinterpret_cast<HMENU>(static_cast<INT_PTR>(kButtons[n].nId)), nullptr, nullptr);
        if (m_windows[n] == nullptr) {
            return false;
        }
        SendMessageW(m_windows[n], WM_SETFONT, reinterpret_cast<WPARAM>(hFont), FALSE);
    }
    return true;
}

void CFrameButtons::Reset(bool bFirstPage, bool bLastPage)
{
    m_dwShown = PSWIZB_BACK | PSWIZB_CANCEL | (bLastPage ? DWORD{PSWIZB_FINISH} : DWORD{PSWIZB_NEXT});
    m_dwEnabled = PSWIZB_NEXT | PSWIZB_FINISH | PSWIZB_CANCEL | (bFirstPage ? 0 : DWORD{PSWIZB_BACK});
}

void CFrameButtons::Show(DWORD dwButtons, DWORD dwMask)
{
    m_dwShown = Merge(m_dwShown, dwButtons, dwMask);
}

void CFrameButtons::Enable(DWORD dwButtons, DWORD dwMask)
{
    m_dwEnabled = Merge(m_dwEnabled, dwButtons, dwMask);
}

void CFrameButtons::Set(DWORD dwButtons)
{
    Enable(dwButtons, PSWIZB_BACK | PSWIZB_NEXT | PSWIZB_FINISH);
    if ((dwButtons & (PSWIZB_FINISH | PSWIZB_DISABLEDFINISH)) != 0) {
        Show(PSWIZB_FINISH, PSWIZB_NEXT | PSWIZB_FINISH);
    } else if ((dwButtons & PSWIZB_NEXT) != 0) {
        Show(PSWIZB_NEXT, PSWIZB_NEXT | PSWIZB_FINISH);
    }
}

void CFrameButtons::Apply(const CFrameLayout& layout)
{
    int nFromRight = 0;
    for (size_t n = std::size(kButtons); n-- > 0;) {
        const HWND hwnd = m_windows[n];
        const bool bShown = (m_dwShown & kButtons[n].dwFlag) != 0;
        EnableWindow(hwnd, (m_dwEnabled & kButtons[n].dwFlag) != 0);
        if (bShown && kButtons[n].dwFlag != PSWIZB_BACK) {
            MoveTo(hwnd, layout.Button(nFromRight++));
        }
        ShowWindow(hwnd, bShown ? SW_SHOWNA : SW_HIDE);
    }
}

bool CFrameButtons::IsAvailable(DWORD dwButton) const
{
    return (Available() & dwButton) != 0;
}

HWND CFrameButtons::Default() const
{
    for (const DWORD dwButton : {PSWIZB_NEXT, PSWIZB_FINISH}) {
        if (IsAvailable(dwButton)) {
            return Window(dwButton);
        }
    }
    return nullptr;
}

HWND CFrameButtons::Window(DWORD dwButton) const
{
    return m_windows[IndexOf(dwButton)];
}

void CFrameButtons::MarkDefault(HWND hwndFocus)
{
    const HWND hwndDefault = IsPushButton(hwndFocus) ? hwndFocus : Default();
    const HWND hwndBefore = std::exchange(m_hwndMarked, hwndDefault);
    if (hwndBefore != hwndDefault) {
        SetPushButtonKind(hwndBefore, BS_PUSHBUTTON);
    }
    SetPushButtonKind(hwndDefault, BS_DEFPUSHBUTTON);
}

bool IsPushButton(HWND hwnd)
{
    WCHAR szClass[16];
    if (GetClassNameW(hwnd, szClass, ARRAYSIZE(szClass)) == 0 || lstrcmpiW(szClass, L"Button") != 0) {
        return false;
    }
    const LONG_PTR nKind = KindOf(hwnd);
    return nKind == BS_PUSHBUTTON || nKind == BS_DEFPUSHBUTTON || nKind == BS_OWNERDRAW;
}
