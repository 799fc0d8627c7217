#include "frame/BackButton.h"

#include "frame/Owned.h"
#include "frame/Strokes.h"

namespace {

constexpr COLORREF kNormal = RGB(51, 51, 51);
constexpr COLORREF kHot = RGB(0, 120, 215);
constexpr COLORREF kPressed = RGB(0, 84, 153);
constexpr COLORREF kDisabled = RGB(190, 190, 190);

// An arrow to the left in the middle of rect, 16 pixels long where rect is 30 wide.
void DrawArrow(HDC hdc, const RECT& rect, COLORREF color)
{
    const float fUnit = static_cast<float>(rect.right - rect.left) / 30.0f;
    const float x = static_cast<float>(rect.left + rect.right - 1) / 2.0f;
    // The middle of a pixel, else the shaft would smear over two rows.
    const auto y = static_cast<float>((rect.top + rect.bottom) / 2);
    const float fTip = x - 8.0f * fUnit;
    const float fHead = 6.0f * fUnit;
    DrawStroke(hdc, color, 1.5f * fUnit, {{fTip, y}, {x + 8.0f * fUnit, y}});
    DrawStroke(hdc, color, 1.5f * fUnit, {{fTip + fHead, y - fHead}, {fTip, y}, {fTip + fHead, y + fHead}});
}

} // namespace

bool CBackButton::Create(HWND hwndFrame, int nId, const RECT& rect)
{
    m_hwnd = CreateWindowExW(0, L"Button", L"Back", WS_CHILD | WS_TABSTOP | BS_OWNERDRAW, rect.left, rect.top,
                             rect.right - rect.left, rect.bottom - rect.top, hwndFrame,
                             reinterpret_cast<HMENU>(static_cast<INT_PTR>(nId)), nullptr, nullptr);
    if (m_hwnd == nullptr) {
        return false;
    }
    SetWindowLongPtrW(m_hwnd, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
    m_pfnOriginal =
        reinterpret_cast<WNDPROC>(SetWindowLongPtrW(m_hwnd, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(Procedure)));
    return true;
}

LRESULT CALLBACK CBackButton::Procedure(HWND hwnd, UINT nMessage, WPARAM wParam, LPARAM lParam)
{
    auto& button = *reinterpret_cast<CBackButton*>(GetWindowLongPtrW(hwnd, GWLP_USERDATA));
    switch (nMessage) {
    case WM_LBUTTONDBLCLK:
        // A button that draws itself tells of a double click instead of a second click; the arrow means two.
        nMessage = WM_LBUTTONDOWN;
        break;
    case WM_MOUSEMOVE:
        button.SetHot(true);
        break;
    case WM_MOUSELEAVE:
        button.SetHot(false);
        break;
    case WM_ERASEBKGND:
        return TRUE; // Draw covers all of it
    default:
        break;
    }
    return CallWindowProcW(button.m_pfnOriginal, hwnd, nMessage, wParam, lParam);
}

void CBackButton::SetHot(bool bHot)
{
    if (bHot == m_bHot) {
        return;
    }
    m_bHot = bHot;
    InvalidateRect(m_hwnd, nullptr, FALSE);
    if (bHot) {
        TRACKMOUSEEVENT track = {sizeof(track), TME_LEAVE, m_hwnd, 0};
        TrackMouseEvent(&track);
    }
}

COLORREF CBackButton::Color(UINT nItemState) const
{
    if ((nItemState & ODS_DISABLED) != 0) {
        return kDisabled;
    }
    if ((nItemState & ODS_SELECTED) != 0) {
        return kPressed;
    }
    return m_bHot ? kHot : kNormal;
}

void CBackButton::Draw(const DRAWITEMSTRUCT& item) const
{
    const int nWidth = item.rcItem.right - item.rcItem.left;
    const int nHeight = item.rcItem.bottom - item.rcItem.top;
    const RECT rect = {0, 0, nWidth, nHeight};
    const CMemoryDc hdc(item.hDC);
    const CBitmapHandle hBitmap(CreateCompatibleBitmap(item.hDC, nWidth, nHeight));
    const CSelection selection(hdc, hBitmap.get());
    FillRect(hdc, &rect, GetSysColorBrush(COLOR_WINDOW));
    DrawArrow(hdc, rect, Color(item.itemState));
    if ((item.itemState & (ODS_FOCUS | ODS_NOFOCUSRECT)) == ODS_FOCUS) {
        DrawFocusRect(hdc, &rect);
    }
    BitBlt(item.hDC, item.rcItem.left, item.rcItem.top, nWidth, nHeight, hdc, 0, 0, SRCCOPY);
}
