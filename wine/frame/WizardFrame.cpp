// The frame's making and its way through the pages. Its messages are in WizardFrameMessages.cpp.
#include "frame/WizardFrame.h"

#include "frame/FocusOrder.h"
#include "frame/ResourceText.h"

#include <algorithm>
#include <utility>

namespace {

// The class that the frames of Windows' own Aero wizards have.
constexpr WCHAR kFrameClass[] = L"NativeHWNDHost";

void RegisterFrameClass(WNDPROC pfnProcedure)
{
    WNDCLASSW windowClass = {};
    windowClass.lpfnWndProc = pfnProcedure;
    windowClass.hInstance = GetModuleHandleW(nullptr);
    windowClass.hCursor = LoadCursorW(nullptr, IDC_ARROW);
    windowClass.lpszClassName = kFrameClass;
    RegisterClassW(&windowClass); // fails the second time, rightly
}

// The middle of the screen, but never with the caption beyond its top.
POINT Middle(SIZE size)
{
    RECT area = {};
    SystemParametersInfoW(SPI_GETWORKAREA, 0, &area, 0);
    return {std::max(area.left, (area.left + area.right - size.cx) / 2),
            std::max(area.top, (area.top + area.bottom - size.cy) / 2)};
}

} // namespace

CWizardFrame::~CWizardFrame()
{
    DestroyWindow(m_hwnd);
}

bool CWizardFrame::Create(const PROPSHEETHEADERW& header)
{
    if (!m_pages.Load(header)) {
        return false;
    }
    m_layout = LayOutFrame(GetDpiForSystem(), m_pages.Size(), WidestButtonText(m_fonts.Text()), m_fonts);
    m_szCaption = ResourceText(header.hInstance, header.pszCaption);
    if ((header.dwFlags & PSH_USEICONID) != 0) {
        const int nSize = m_layout.icon.right - m_layout.icon.left;
        m_hIcon = static_cast<HICON>(LoadImageW(header.hInstance, header.pszIcon, IMAGE_ICON, nSize, nSize, LR_SHARED));
    }
    if (!CreateFrameWindow()) {
        return false;
    }
    CreateControls();
    if (!TurnTo(0)) {
        return false;
    }
    ShowWindow(m_hwnd, SW_SHOWNORMAL);
    SetForegroundWindow(m_hwnd);
    return true;
}

// The window has a caption and a system menu, but its client area covers them: see WM_NCCALCSIZE.
bool CWizardFrame::CreateFrameWindow()
{
    RegisterFrameClass(Procedure);
    const SIZE size = m_layout.frame;
    const POINT at = Middle(size);
    return CreateWindowExW(WS_EX_CONTROLPARENT, kFrameClass, m_szCaption.c_str(),
                           WS_POPUP | WS_CAPTION | WS_SYSMENU | WS_CLIPCHILDREN, at.x, at.y, size.cx, size.cy, nullptr,
                           nullptr, GetModuleHandleW(nullptr), this) != nullptr;
}

void CWizardFrame::CreateControls()
{
    m_buttons.Create(m_hwnd, m_layout, m_fonts.Text());
    const RECT& title = m_layout.headerTitle;
    m_hwndHeaderTitle = CreateWindowExW(0, WC_STATICW, nullptr, WS_CHILD | WS_VISIBLE | SS_NOPREFIX | SS_ENDELLIPSIS,
                                        title.left, title.top, title.right - title.left, title.bottom - title.top,
                                        m_hwnd, nullptr, nullptr, nullptr);
    SendMessageW(m_hwndHeaderTitle, WM_SETFONT, reinterpret_cast<WPARAM>(m_fonts.HeaderTitle()), FALSE);
}

void CWizardFrame::Press(int nId)
{
    switch (nId) {
    case kBackButtonId:
        if (m_pages.Allows(PSN_WIZBACK)) {
            GoTo(m_pages.Current() - 1);
        }
        break;
    case kNextButtonId:
        if (m_pages.Allows(PSN_WIZNEXT)) {
            GoTo(m_pages.Current() + 1);
        }
        break;
    case kFinishButtonId:
        if (m_pages.Allows(PSN_WIZFINISH)) {
            End(kWizardFinished);
        }
        break;
    case IDCANCEL:
        if (m_pages.Allows(PSN_QUERYCANCEL)) {
            End(kWizardCancelled);
        }
        break;
    default:
        break;
    }
}

void CWizardFrame::PressIfShown(int nId)
{
    if (m_buttons.IsShown(nId)) {
        Press(nId);
    }
}

// Leaves the current page for another one, if there is that one and the current one lets go.
void CWizardFrame::GoTo(int nPage)
{
    // The wizard may have been ended from within the notification that led here.
    if (m_result || nPage < 0 || nPage >= m_pages.Count() || !m_pages.Allows(PSN_KILLACTIVE)) {
        return;
    }
    if (!TurnTo(nPage)) {
        End(kWizardFailed);
    }
}

bool CWizardFrame::TurnTo(int nPage)
{
    // Buttons that the page shows and hides while it is activated are seen when all of that has arrived:
    // what it posts comes before what is posted after it.
    m_bSettled = false;
    m_buttons.Reset(nPage == m_pages.Count() - 1);
    if (!m_pages.Activate(nPage, m_hwnd, m_layout.page)) {
        return false;
    }
    const CWizardPage& page = m_pages.CurrentPage();
    SetWindowTextW(m_hwndHeaderTitle, page.HeaderTitle().c_str());
    SetWindowPos(page.Window(), GetDlgItem(m_hwnd, kBackButtonId), 0, 0, 0, 0,
                 SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE);
    m_pages.ShowCurrent();
    PlaceFocus();
    m_pages.HideOthers();
    PostMessageW(m_hwnd, kSettleMessage, 0, 0);
    return true;
}

void CWizardFrame::End(INT_PTR nResult)
{
    m_result = nResult;
    // Wakes the loop, should this have come by a message that was sent.
    PostMessageW(m_hwnd, WM_NULL, 0, 0);
}

void CWizardFrame::Settle()
{
    m_bSettled = true;
    m_buttons.Apply(m_layout);
    if (std::exchange(m_bDefaultGetsFocus, false) || !IsFocusUsable()) {
        FocusDefault();
    }
    FollowFocus();
}

HWND CWizardFrame::Focus() const
{
    return m_bActive ? GetFocus() : m_hwndFocus;
}

// Windows that are not active have no focus; they get it with their activation.
void CWizardFrame::SetFocusTo(HWND hwnd)
{
    if (m_bActive) {
        GiveFocus(hwnd);
    } else {
        m_hwndFocus = hwnd;
    }
}

// At a page's activation.
void CWizardFrame::PlaceFocus()
{
    CWizardPage& page = m_pages.CurrentPage();
    if (page.TakePlacedFocus()) {
        if (!m_bActive) {
            m_hwndFocus = GetFocus();
        }
        return;
    }
    const HWND hwndFirst = page.LeavesFocus() ? nullptr : FirstTabStop(page.Window());
    m_bDefaultGetsFocus = hwndFirst == nullptr;
    // The page that had it until now gets hidden.
    SetFocusTo(hwndFirst != nullptr ? hwndFirst : m_hwnd);
}

void CWizardFrame::FocusDefault()
{
    const HWND hwndPage = m_pages.CurrentPage().Window();
    for (const HWND hwnd : {m_buttons.Default(), FirstTabStop(hwndPage), FirstTabStop(m_hwnd)}) {
        if (hwnd != nullptr) {
            SetFocusTo(hwnd);
            return;
        }
    }
}

bool CWizardFrame::IsFocusUsable() const
{
    const HWND hwnd = Focus();
    return hwnd != nullptr && IsChild(m_hwnd, hwnd) && IsWindowVisible(hwnd) == IsWindowVisible(m_hwnd) &&
           IsWindowEnabled(hwnd);
}

void CWizardFrame::FollowFocus()
{
    const HWND hwnd = Focus();
    if (hwnd != nullptr) {
        m_hwndFollowed = hwnd;
        m_buttons.MarkDefault(hwnd);
    }
}

void CWizardFrame::MoveFocus(bool bBackward)
{
    if (!m_bSettled) {
        Settle();
    }
    const HWND hwnd = NextTabStop(m_hwnd, Focus(), bBackward);
    if (hwnd != nullptr) {
        SetFocusTo(hwnd);
    }
}

void CWizardFrame::PressEnter(HWND hwndFocus)
{
    if (TakesEnter(hwndFocus)) {
        SendMessageW(GetParent(hwndFocus), WM_COMMAND,
                     MAKEWPARAM(static_cast<WORD>(GetDlgCtrlID(hwndFocus)), BN_CLICKED),
                     reinterpret_cast<LPARAM>(hwndFocus));
    } else {
        Press(GetDlgCtrlID(m_buttons.Default()));
    }
}
