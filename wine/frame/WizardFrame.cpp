// The frame's making and its way through the pages. Its messages are in WizardFrameMessages.cpp.
#include "frame/WizardFrame.h"

#include "frame/FocusOrder.h"
#include "frame/ResourceText.h"

#include <algorithm>
#include <utility>

extern "C" IMAGE_DOS_HEADER __ImageBase;

namespace {

// The class that the frames of Windows' own Aero wizards have.
constexpr WCHAR kClassName[] = L"NativeHWNDHost";

HINSTANCE OwnModule()
{
    return reinterpret_cast<HINSTANCE>(&__ImageBase);
}

void RegisterFrameClass(WNDPROC pfnProcedure)
{
    WNDCLASSEXW windowClass = {};
    windowClass.cbSize = sizeof(windowClass);
    windowClass.lpfnWndProc = pfnProcedure;
    windowClass.hInstance = OwnModule();
    windowClass.hCursor = LoadCursorW(nullptr, IDC_ARROW);
    windowClass.lpszClassName = kClassName;
    RegisterClassExW(&windowClass); // fails the second time, rightly
}

// The middle of the screen, but never with the caption beyond its top.
POINT Middle(SIZE size)
{
    RECT area = {};
    SystemParametersInfoW(SPI_GETWORKAREA, 0, &area, 0);
    return {std::max(area.left, (area.left + area.right - size.cx) / 2),
            std::max(area.top, (area.top + area.bottom - size.cy) / 2)};
}

// The desktop as a parent means none.
HWND OwnerOf(const PROPSHEETHEADERW& header)
{
    return header.hwndParent == nullptr || header.hwndParent == GetDesktopWindow()
               ? nullptr
               : GetAncestor(header.hwndParent, GA_ROOT);
}

HICON LoadFrameIcon(const PROPSHEETHEADERW& header, int nSize)
{
    if ((header.dwFlags & PSH_USEICONID) != 0) {
        return static_cast<HICON>(LoadImageW(header.hInstance, header.pszIcon, IMAGE_ICON, nSize, nSize, 0));
    }
    if ((header.dwFlags & PSH_USEHICON) != 0) {
        return static_cast<HICON>(CopyImage(header.hIcon, IMAGE_ICON, nSize, nSize, 0));
    }
    return nullptr;
}

} // namespace

CWizardFrame::~CWizardFrame()
{
    // Enabled first: else, with this window, the active one would be one of another program.
    if (m_hwndOwner != nullptr) {
        EnableWindow(m_hwndOwner, TRUE);
    }
    if (m_hwnd != nullptr) {
        DestroyWindow(m_hwnd);
    }
    for (const HICON hIcon : {m_hIcon, m_hSmallIcon}) {
        if (hIcon != nullptr) {
            DestroyIcon(hIcon);
        }
    }
}

bool CWizardFrame::Create(const PROPSHEETHEADERW& header)
{
    if (!m_pages.Load(header)) {
        return false;
    }
    MakeLayout();
    ReadHeader(header);
    const HWND hwndOwner = OwnerOf(header);
    if (!CreateFrameWindow(hwndOwner) || !CreateControls()) {
        return false;
    }
    m_pages.Place(m_hwnd, m_layout->Page());
    const int nStart = std::clamp(static_cast<int>(header.nStartPage), 0, m_pages.Count() - 1);
    if (!TurnTo(nStart, 1)) {
        return false;
    }
    if (hwndOwner != nullptr && !EnableWindow(hwndOwner, FALSE)) {
        m_hwndOwner = hwndOwner;
    }
    ShowWindow(m_hwnd, SW_SHOWNORMAL);
    SetForegroundWindow(m_hwnd);
    return true;
}

void CWizardFrame::MakeLayout()
{
    m_layout.emplace(FRAME_CONTENT{.nDpi = m_nDpi,
                                   .page = m_pages.Size(),
                                   .captionText = MeasureText(m_fonts.Text(), L"X"),
                                   .headerTitle = MeasureText(m_fonts.HeaderTitle(), L"X"),
                                   .widestButton = CFrameButtons::WidestText(m_fonts.Text())});
}

void CWizardFrame::ReadHeader(const PROPSHEETHEADERW& header)
{
    m_hInstance = header.hInstance;
    m_szCaption = ResourceText(header.hInstance, header.pszCaption);
    m_hIcon = LoadFrameIcon(header, GetSystemMetrics(SM_CXICON));
    const RECT icon = m_layout->Icon();
    m_hSmallIcon = LoadFrameIcon(header, icon.right - icon.left);
}

// The window has a caption and a system menu, but its client area covers them: see WM_NCCALCSIZE.
bool CWizardFrame::CreateFrameWindow(HWND hwndOwner)
{
    RegisterFrameClass(Procedure);
    const SIZE size = m_layout->Frame();
    const POINT at = Middle(size);
    m_hwnd = CreateWindowExW(WS_EX_CONTROLPARENT, kClassName, m_szCaption.c_str(),
                             WS_POPUP | WS_CAPTION | WS_SYSMENU | WS_CLIPCHILDREN, at.x, at.y, size.cx, size.cy,
                             hwndOwner, nullptr, OwnModule(), this);
    if (m_hwnd == nullptr) {
        return false;
    }
    SendMessageW(m_hwnd, WM_SETICON, ICON_BIG, reinterpret_cast<LPARAM>(m_hIcon));
    SendMessageW(m_hwnd, WM_SETICON, ICON_SMALL, reinterpret_cast<LPARAM>(m_hSmallIcon));
    return true;
}

bool CWizardFrame::CreateControls()
{
    if (!m_buttons.CreateBack(m_hwnd, *m_layout)) {
        return false;
    }
    const RECT title = m_layout->HeaderTitle();
    m_hwndHeaderTitle = CreateWindowExW(0, L"Static", nullptr, WS_CHILD | WS_VISIBLE | SS_NOPREFIX | SS_ENDELLIPSIS,
                                        title.left, title.top, title.right - title.left, title.bottom - title.top,
                                        m_hwnd, nullptr, nullptr, nullptr);
    if (m_hwndHeaderTitle == nullptr) {
        return false;
    }
    SendMessageW(m_hwndHeaderTitle, WM_SETFONT, reinterpret_cast<WPARAM>(m_fonts.HeaderTitle()), FALSE);
    return m_buttons.CreateStrip(m_hwnd, *m_layout, m_fonts.Text());
}

void CWizardFrame::Press(DWORD dwButton)
{
    switch (dwButton) {
    case PSWIZB_BACK:
        GoTo(m_pages.Neighbour(PSN_WIZBACK, -1), -1);
        break;
    case PSWIZB_NEXT:
        GoTo(m_pages.Neighbour(PSN_WIZNEXT, 1), 1);
        break;
    case PSWIZB_FINISH:
        if (m_pages.MayFinish()) {
            End(kWizardFinished);
        }
        break;
    case PSWIZB_CANCEL:
        Cancel(false);
        break;
    default:
        break;
    }
}

void CWizardFrame::PressIfAvailable(DWORD dwButton)
{
    if (m_buttons.IsAvailable(dwButton)) {
        Press(dwButton);
    }
}

void CWizardFrame::Cancel(bool bByCloseBox)
{
    if (m_pages.MayCancel()) {
        m_pages.Reset(bByCloseBox);
        End(kWizardCancelled);
    }
}

// Leaves the current page for another one, if there is that one and the current one lets go.
void CWizardFrame::GoTo(int nPage, int nStep)
{
    // The wizard may have been ended from within the notification that led here.
    if (m_result || !m_pages.Has(nPage) || nPage == m_pages.Current() || !m_pages.MayLeave()) {
        return;
    }
    if (!TurnTo(nPage, nStep)) {
        End(kWizardFailed);
    }
}

bool CWizardFrame::TurnTo(int nPage, int nStep)
{
    const auto resetButtons = [this] {
        m_buttons.Reset(m_pages.Current() == 0, m_pages.Current() == m_pages.Count() - 1);
    };
    // Buttons that the page shows and hides while it is activated are seen when all of that has arrived:
    // what it posts comes before what is posted after it.
    m_bSettled = false;
    if (!m_pages.Activate(nPage, nStep, resetButtons)) {
        return false;
    }
    SetWindowTextW(m_hwndHeaderTitle, m_pages.CurrentPage().HeaderTitle().c_str());
    SetWindowPos(m_pages.CurrentPage().Window(), m_hwndHeaderTitle, 0, 0, 0, 0,
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
    m_buttons.Apply(*m_layout);
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
    if (IsPushButton(hwndFocus)) {
        SendMessageW(GetParent(hwndFocus), WM_COMMAND,
                     MAKEWPARAM(static_cast<WORD>(GetDlgCtrlID(hwndFocus)), BN_CLICKED),
                     reinterpret_cast<LPARAM>(hwndFocus));
    } else if (m_buttons.Default() != nullptr) {
        OnCommand(GetDlgCtrlID(m_buttons.Default()));
    }
}
