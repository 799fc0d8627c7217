// The frame's window procedure.
#include "frame/WizardFrame.h"

#include "frame/FrameKeyboard.h"
#include "frame/PageWindow.h"
#include "frame/ResourceText.h"

namespace {

POINT PointOf(LPARAM lParam)
{
    return {static_cast<short>(LOWORD(lParam)), static_cast<short>(HIWORD(lParam))};
}

// The button that PSM_PRESSBUTTON means; those of other property sheets are none.
DWORD ButtonOf(int nButton)
{
    switch (nButton) {
    case PSBTN_BACK:
        return PSWIZB_BACK;
    case PSBTN_NEXT:
        return PSWIZB_NEXT;
    case PSBTN_FINISH:
        return PSWIZB_FINISH;
    case PSBTN_CANCEL:
        return PSWIZB_CANCEL;
    default:
        return 0;
    }
}

} // namespace

LRESULT CALLBACK CWizardFrame::Procedure(HWND hwnd, UINT nMessage, WPARAM wParam, LPARAM lParam)
{
    if (nMessage == WM_NCCREATE) {
        const auto* const pCreate = reinterpret_cast<const CREATESTRUCTW*>(lParam);
        SetWindowLongPtrW(hwnd, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(pCreate->lpCreateParams));
        static_cast<CWizardFrame*>(pCreate->lpCreateParams)->m_hwnd = hwnd;
    }
    auto* const pFrame = reinterpret_cast<CWizardFrame*>(GetWindowLongPtrW(hwnd, GWLP_USERDATA));
    const std::optional<LRESULT> answer = pFrame ? pFrame->OnMessage(nMessage, wParam, lParam) : std::nullopt;
    return answer ? *answer : DefWindowProcW(hwnd, nMessage, wParam, lParam);
}

std::optional<LRESULT> CWizardFrame::OnMessage(UINT nMessage, WPARAM wParam, LPARAM lParam)
{
    std::optional<LRESULT> answer = OnWindowMessage(nMessage, wParam);
    if (!answer) {
        answer = OnPaintMessage(nMessage, wParam, lParam);
    }
    if (!answer) {
        answer = OnMouseMessage(nMessage, lParam);
    }
    if (!answer) {
        answer = OnSheetMessage(nMessage, wParam, lParam);
    }
    return answer;
}

std::optional<LRESULT> CWizardFrame::OnWindowMessage(UINT nMessage, WPARAM wParam)
{
    switch (nMessage) {
    case WM_COMMAND:
        if (HIWORD(wParam) == BN_CLICKED) {
            OnCommand(LOWORD(wParam));
        }
        return 0;
    case WM_CLOSE:
        Cancel(true);
        return 0;
    case WM_ACTIVATE:
        OnActivate(LOWORD(wParam) != WA_INACTIVE);
        return 0;
    case WM_NEXTDLGCTL: // from the dialog manager, for a control whose mnemonic was typed
        SetFocusTo(reinterpret_cast<HWND>(wParam));
        return 0;
    case kMoveFocusMessage:
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
    case WM_NCDESTROY:
        m_hwnd = nullptr;
        if (!m_result) {
            m_result = kWizardCancelled;
        }
        return std::nullopt;
    default:
        return std::nullopt;
    }
}

void CWizardFrame::OnCommand(int nId)
{
    switch (nId) {
    case kBackButtonId:
        Press(PSWIZB_BACK);
        break;
    case kNextButtonId:
        Press(PSWIZB_NEXT);
        break;
    case kFinishButtonId:
        Press(PSWIZB_FINISH);
        break;
    case IDCANCEL:
        Press(PSWIZB_CANCEL);
        break;
    default:
        break;
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

std::optional<LRESULT> CWizardFrame::OnPaintMessage(UINT nMessage, WPARAM wParam, LPARAM lParam)
{
    const auto hdc = reinterpret_cast<HDC>(wParam);
    switch (nMessage) {
    case WM_NCCALCSIZE: // all of the window is client area: the frame paints its caption itself
    case WM_NCPAINT:
        return 0;
    case WM_NCACTIVATE:
        InvalidateRect(m_hwnd, nullptr, FALSE);
        return TRUE;
    case WM_ERASEBKGND:
        // The window itself is painted in one go; only a control that asks for its ground gets it here.
        if (WindowFromDC(hdc) != m_hwnd) {
            PaintFrame(hdc, Look());
        }
        return TRUE;
    case WM_PRINTCLIENT:
        PaintFrame(hdc, Look());
        return 0;
    case WM_PAINT:
        PaintFrameWindow(m_hwnd, Look());
        return 0;
    case WM_DRAWITEM:
        m_buttons.Back().Draw(*reinterpret_cast<const DRAWITEMSTRUCT*>(lParam));
        return TRUE;
    case WM_CTLCOLORSTATIC:
        SetTextColor(hdc, kHeaderTitleColor);
        SetBkColor(hdc, GetSysColor(COLOR_WINDOW));
        return reinterpret_cast<LRESULT>(GetSysColorBrush(COLOR_WINDOW));
    case WM_CTLCOLORBTN:
        return reinterpret_cast<LRESULT>(StripBrush());
    default:
        return std::nullopt;
    }
}

FRAME_LOOK CWizardFrame::Look() const
{
    return {*m_layout, m_closeBox, m_fonts.Text(), m_hSmallIcon, m_szCaption, GetActiveWindow() == m_hwnd};
}

std::optional<LRESULT> CWizardFrame::OnMouseMessage(UINT nMessage, LPARAM lParam)
{
    const RECT closeBox = m_layout->CloseBox();
    switch (nMessage) {
    case WM_NCHITTEST:
        return OnHitTest(lParam);
    case WM_MOUSEMOVE:
        OnMouseMove(PointOf(lParam));
        return 0;
    case WM_MOUSELEAVE:
        if (m_closeBox.SetHot(false)) {
            RedrawCloseBox();
        }
        return 0;
    case WM_LBUTTONDOWN:
        if (PtInRect(&closeBox, PointOf(lParam))) {
            m_closeBox.Press();
            SetCapture(m_hwnd);
            RedrawCloseBox();
        }
        return 0;
    case WM_LBUTTONUP:
        if (m_closeBox.IsPressed()) {
            ReleaseCapture();
            RedrawCloseBox();
            if (m_closeBox.Release()) {
                PostMessageW(m_hwnd, WM_SYSCOMMAND, SC_CLOSE, lParam);
            }
        }
        return 0;
    default:
        return std::nullopt;
    }
}

LRESULT CWizardFrame::OnHitTest(LPARAM lParam) const
{
    POINT point = PointOf(lParam);
    ScreenToClient(m_hwnd, &point);
    const RECT caption = m_layout->Caption();
    const RECT closeBox = m_layout->CloseBox();
    return PtInRect(&caption, point) && !PtInRect(&closeBox, point) ? HTCAPTION : HTCLIENT;
}

void CWizardFrame::OnMouseMove(POINT point)
{
    const RECT closeBox = m_layout->CloseBox();
    const bool bHot = PtInRect(&closeBox, point) != FALSE;
    if (m_closeBox.SetHot(bHot)) {
        RedrawCloseBox();
    }
    if (bHot) {
        TRACKMOUSEEVENT track = {sizeof(track), TME_LEAVE, m_hwnd, 0};
        TrackMouseEvent(&track);
    }
}

void CWizardFrame::RedrawCloseBox() const
{
    const RECT rect = m_layout->CloseBox();
    InvalidateRect(m_hwnd, &rect, FALSE);
}

std::optional<LRESULT> CWizardFrame::OnSheetMessage(UINT nMessage, WPARAM wParam, LPARAM lParam)
{
    switch (nMessage) {
    case PSM_SHOWWIZBUTTONS:
        m_buttons.Show(static_cast<DWORD>(wParam), static_cast<DWORD>(lParam));
        OnButtonsChanged();
        return 0;
    case PSM_ENABLEWIZBUTTONS:
        m_buttons.Enable(static_cast<DWORD>(wParam), static_cast<DWORD>(lParam));
        OnButtonsChanged();
        return 0;
    case PSM_SETWIZBUTTONS:
        m_buttons.Set(static_cast<DWORD>(lParam));
        OnButtonsChanged();
        return 0;
    case PSM_CANCELTOCLOSE:
        m_buttons.Enable(0, PSWIZB_CANCEL);
        OnButtonsChanged();
        return 0;
    case PSM_PRESSBUTTON:
        Press(ButtonOf(static_cast<int>(wParam)));
        return 0;
    case PSM_SETCURSEL:
        return OnGoTo(static_cast<int>(wParam));
    case PSM_SETCURSELID:
        return OnGoTo(m_pages.IndexOfTemplate(lParam));
    case PSM_GETCURRENTPAGEHWND:
        return reinterpret_cast<LRESULT>(m_pages.CurrentPage().Window());
    case PSM_INDEXTOHWND:
        return m_pages.Has(static_cast<int>(wParam))
                   ? reinterpret_cast<LRESULT>(m_pages.Page(static_cast<int>(wParam)).Window())
                   : 0;
    case PSM_HWNDTOINDEX:
        return m_pages.IndexOf(reinterpret_cast<HWND>(wParam));
    case PSM_IDTOINDEX:
        return m_pages.IndexOfTemplate(lParam);
    case PSM_SETTITLE:
        SetCaption(ResourceText(m_hInstance, reinterpret_cast<PCWSTR>(lParam)));
        return 0;
    case PSM_SETHEADERTITLE:
        SetHeaderTitle(static_cast<int>(wParam), reinterpret_cast<PCWSTR>(lParam));
        return 0;
    case PSM_GETRESULT:
        return m_result.value_or(0);
    case PSM_ISDIALOGMESSAGE:
        return TranslateWizardMessage(*this, *reinterpret_cast<MSG*>(lParam));
    default:
        return std::nullopt;
    }
}

// Until the page has settled, its changes are only noted.
void CWizardFrame::OnButtonsChanged()
{
    if (m_bSettled) {
        Settle();
    }
}

LRESULT CWizardFrame::OnGoTo(int nPage)
{
    GoTo(nPage, nPage < m_pages.Current() ? -1 : 1);
    return m_pages.Current() == nPage;
}

void CWizardFrame::SetCaption(std::wstring szCaption)
{
    m_szCaption = std::move(szCaption);
    SetWindowTextW(m_hwnd, m_szCaption.c_str());
    InvalidateRect(m_hwnd, nullptr, FALSE);
}

void CWizardFrame::SetHeaderTitle(int nPage, PCWSTR pszTitle)
{
    if (m_pages.Has(nPage)) {
        m_pages.Page(nPage).SetHeaderTitle(pszTitle);
        SetWindowTextW(m_hwndHeaderTitle, m_pages.CurrentPage().HeaderTitle().c_str());
    }
}
