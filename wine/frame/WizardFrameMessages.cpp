// The frame's window procedure.
#include "frame/WizardFrame.h"

#include "frame/BackButton.h"
#include "frame/FramePaint.h"

#include <iterator>

namespace {

// The ids of the buttons that PSM_PRESSBUTTON means by PSBTN_BACK, NEXT, FINISH and CANCEL; those of other property
// sheets are none.
constexpr int kPressed[] = {kBackButtonId, kNextButtonId, kFinishButtonId, 0, 0, IDCANCEL};

POINT PointOf(LPARAM lParam)
{
    return {static_cast<short>(LOWORD(lParam)), static_cast<short>(HIWORD(lParam))};
}

} // namespace

LRESULT CALLBACK CWizardFrame::Procedure(HWND hwnd, UINT nMessage, WPARAM wParam, LPARAM lParam)
{
    if (nMessage == WM_NCCREATE) {
        const auto* const pCreate = reinterpret_cast<const CREATESTRUCTW*>(lParam);
        SetWindowLongPtrW(hwnd, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(pCreate->lpCreateParams));
        static_cast<CWizardFrame*>(pCreate->lpCreateParams)->m_hwnd = hwnd;
    }
    std::optional<LRESULT> answer;
    if (auto* const pFrame = reinterpret_cast<CWizardFrame*>(GetWindowLongPtrW(hwnd, GWLP_USERDATA))) {
        for (const auto pfnOn :
             {&CWizardFrame::OnWindowMessage, &CWizardFrame::OnPaintMessage, &CWizardFrame::OnSheetMessage}) {
            if (!answer) {
                answer = (pFrame->*pfnOn)(nMessage, wParam, lParam);
            }
        }
    }
    return answer ? *answer : DefWindowProcW(hwnd, nMessage, wParam, lParam);
}

std::optional<LRESULT> CWizardFrame::OnWindowMessage(UINT nMessage, WPARAM wParam, LPARAM lParam)
{
    switch (nMessage) {
    case WM_COMMAND:
        if (HIWORD(wParam) == BN_CLICKED) {
            Press(LOWORD(wParam));
        }
        return 0;
    case WM_CLOSE:
        Press(IDCANCEL);
        return 0;
    case WM_ACTIVATE:
        OnActivate(LOWORD(wParam) != WA_INACTIVE);
        return 0;
    case WM_NEXTDLGCTL: // from a page
        MoveFocus(wParam != 0);
        if (!IsChild(m_pages.CurrentPage().Window(), Focus())) {
            m_pages.CurrentPage().NoteFocusLeft();
        }
        return 0;
    case kSettleMessage:
        if (!m_bSettled) {
            Settle();
        }
        return 0;
    case WM_NCHITTEST:
        return OnHitTest(PointOf(lParam));
    case WM_LBUTTONUP:
        if (PtInRect(&m_layout.closeBox, PointOf(lParam))) {
            PostMessageW(m_hwnd, WM_SYSCOMMAND, SC_CLOSE, lParam);
        }
        return 0;
    default:
        return std::nullopt;
    }
}

// A message box of a page disables the frame, which takes the focus away, and then activates itself.
void CWizardFrame::OnActivate(bool bActive)
{
    if (!bActive) {
        const HWND hwnd = GetFocus();
        m_hwndFocus = hwnd != nullptr && IsChild(m_hwnd, hwnd) ? hwnd : m_hwndFollowed;
        m_bActive = false;
        return;
    }
    m_bActive = true;
    SetFocus(m_hwndFocus != nullptr && IsChild(m_hwnd, m_hwndFocus) ? m_hwndFocus : m_hwnd);
    if (m_bSettled && !IsFocusUsable()) {
        FocusDefault();
    }
}

// The window can be moved by its caption.
LRESULT CWizardFrame::OnHitTest(POINT point) const
{
    ScreenToClient(m_hwnd, &point);
    return PtInRect(&m_layout.caption, point) && !PtInRect(&m_layout.closeBox, point) ? HTCAPTION : HTCLIENT;
}

std::optional<LRESULT> CWizardFrame::OnPaintMessage(UINT nMessage, WPARAM wParam, LPARAM lParam)
{
    auto* const hdc = reinterpret_cast<HDC>(wParam);
    switch (nMessage) {
    case WM_NCCALCSIZE: // all of the window is client area: the frame paints its caption itself
    case WM_NCPAINT:
        return 0;
    case WM_NCACTIVATE:
        return TRUE;
    case WM_ERASEBKGND:
        PaintFrame(hdc, m_layout, m_fonts.Text(), m_hIcon, m_szCaption);
        return TRUE;
    case WM_DRAWITEM:
        DrawArrow(*reinterpret_cast<const DRAWITEMSTRUCT*>(lParam));
        return TRUE;
    case WM_CTLCOLORSTATIC:
        SetTextColor(hdc, kHeaderTitleColor);
        SetBkColor(hdc, GetSysColor(COLOR_WINDOW));
        return reinterpret_cast<LRESULT>(GetSysColorBrush(COLOR_WINDOW));
    default:
        return std::nullopt;
    }
}

std::optional<LRESULT> CWizardFrame::OnSheetMessage(UINT nMessage, WPARAM wParam, LPARAM lParam)
{
    switch (nMessage) {
    case PSM_SHOWWIZBUTTONS:
        m_buttons.Show(static_cast<DWORD>(wParam), static_cast<DWORD>(lParam));
        // Until the page has settled, its changes are only noted.
        if (m_bSettled) {
            Settle();
        }
        return 0;
    case PSM_PRESSBUTTON:
        Press(wParam < std::size(kPressed) ? kPressed[wParam] : 0);
        return 0;
    case PSM_SETCURSEL:
        GoTo(static_cast<int>(wParam));
        return m_pages.Current() == static_cast<int>(wParam);
    default:
        return std::nullopt;
    }
}
