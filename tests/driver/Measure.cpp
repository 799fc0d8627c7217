#include "driver/Measure.h"

#include "driver/Reading.h"
#include "frame/FrameFonts.h"
#include "frame/Owned.h"

#include <commctrl.h>

#include <algorithm>
#include <cstdint>
#include <utility>

namespace {

// Letters reach out of the rectangle that they are measured with, but not so far.
constexpr int nMargin = 32;

// Lighter ones belong to the soft edge of a letter.
constexpr int nDarkest = 160;

// Where a control draws, and how.
struct DRAWING
{
    RECT room; // in coordinates of the control's client area
    UINT nFormat;
};

CFontHandle TemplateFont()
{
    LOGFONTW font = {};
    font.lfHeight = -MulDiv(9, static_cast<int>(GetDpiForSystem()), 72);
    font.lfWeight = FW_NORMAL;
    font.lfCharSet = DEFAULT_CHARSET;
    lstrcpynW(font.lfFaceName, L"MS Shell Dlg", LF_FACESIZE);
    return CFontHandle(CreateFontIndirectW(&font));
}

CFontHandle MessageFont()
{
    NONCLIENTMETRICSW metrics = {};
    metrics.cbSize = sizeof metrics;
    SystemParametersInfoW(SPI_GETNONCLIENTMETRICS, sizeof metrics, &metrics, 0);
    return CFontHandle(CreateFontIndirectW(&metrics.lfMessageFont));
}

HFONT FontNamed(std::string_view name)
{
    static const CFrameFonts s_frame(GetDpiForSystem());
    static const CFontHandle s_page = TemplateFont();
    static const CFontHandle s_box = MessageFont();
    const std::pair<std::string_view, HFONT> fonts[] = {
        {"page", s_page.get()}, {"frame", s_frame.Text()}, {"title", s_frame.HeaderTitle()}, {"box", s_box.get()}};
    const auto* const pFound = std::ranges::find(fonts, name, [](const auto& font) { return font.first; });
    return pFound == std::end(fonts) ? nullptr : pFound->second;
}

DRAWING StaticDrawing(const RECT& client, LONG nStyle)
{
    const bool bLine = (nStyle & (SS_ELLIPSISMASK | SS_CENTERIMAGE)) != 0;
    return {client,
            static_cast<UINT>((bLine ? DT_SINGLELINE : DT_WORDBREAK) | DT_EXPANDTABS |
                              (nStyle & SS_NOPREFIX ? DT_NOPREFIX : 0) | (nStyle & SS_CENTERIMAGE ? DT_VCENTER : 0))};
}

// The box of a check box takes 13 pixels at 96 DPI, and half a digit keeps the text off it. A push button's text
// keeps off its edge.
std::optional<DRAWING> ButtonDrawing(RECT client, LONG nStyle, HFONT hFont)
{
    const LONG nKind = nStyle & BS_TYPEMASK;
    if (nKind == BS_CHECKBOX || nKind == BS_AUTOCHECKBOX) {
        client.left += Scale(13, GetDpiForSystem()) + MeasureText(hFont, L"0").cx / 2;
        return DRAWING{client, DT_SINGLELINE | DT_VCENTER};
    }
    if (nKind == BS_PUSHBUTTON || nKind == BS_DEFPUSHBUTTON) {
        InflateRect(&client, -2 * GetSystemMetrics(SM_CXEDGE), -GetSystemMetrics(SM_CYEDGE));
        return DRAWING{client, DT_SINGLELINE | DT_VCENTER | DT_CENTER};
    }
    return std::nullopt;
}

// An edit begins its line where its formatting rectangle says.
DRAWING EditDrawing(HWND hwnd)
{
    RECT rect = {};
    SendMessageW(hwnd, EM_GETRECT, 0, reinterpret_cast<LPARAM>(&rect));
    return {rect, DT_SINGLELINE | DT_NOPREFIX};
}

std::optional<DRAWING> DrawingOf(HWND hwnd, HFONT hFont)
{
    RECT client = {};
    GetClientRect(hwnd, &client);
    const LONG nStyle = GetWindowLongW(hwnd, GWL_STYLE);
    if (IsClass(hwnd, WC_STATICW) && (nStyle & SS_TYPEMASK) == SS_LEFT) {
        return StaticDrawing(client, nStyle);
    }
    if (IsClass(hwnd, WC_BUTTONW)) {
        return ButtonDrawing(client, nStyle, hFont);
    }
    return IsClass(hwnd, WC_EDITW) ? std::optional(EditDrawing(hwnd)) : std::nullopt;
}

// A white picture of the room and its surroundings, upside up.
class CPaper
{
public:
    // Of these two, which begin in the same corner, the text may take either.
    CPaper(const RECT& room, const RECT& extent)
        : m_room{nMargin, nMargin, nMargin + room.right - room.left, nMargin + room.bottom - room.top},
          m_nWidth(2 * nMargin + std::max(room.right, extent.right) - room.left),
          m_nHeight(2 * nMargin + std::max(room.bottom, extent.bottom) - room.top)
    {
        BITMAPINFO info = {};
        info.bmiHeader = {sizeof info.bmiHeader, m_nWidth, -m_nHeight, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
        void* pPixels = nullptr;
        m_hBitmap = CBitmapHandle(CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, &pPixels, nullptr, 0));
        m_pPixels = static_cast<std::uint32_t*>(pPixels);
        std::fill_n(m_pPixels, Pixels(), 0xFFFFFFu);
    }

    // Draws a text into the room, as if that had no end.
    void Draw(HFONT hFont, const std::wstring& text, UINT nFormat)
    {
        const CMemoryDc hdc;
        const CSelection bitmap(hdc, m_hBitmap.get());
        const CSelection font(hdc, hFont);
        RECT room = m_room;
        DrawTextW(hdc, text.c_str(), -1, &room, nFormat | DT_NOCLIP);
        GdiFlush();
    }

    // What is dark, counted from the corner of the room.
    RECT Ink() const
    {
        RECT ink = {m_nWidth, m_nHeight, 0, 0};
        for (int y = 0; y < m_nHeight; ++y) {
            for (int x = 0; x < m_nWidth; ++x) {
                if (IsDark(m_pPixels[y * m_nWidth + x])) {
                    ink = {std::min<LONG>(ink.left, x), std::min<LONG>(ink.top, y), std::max<LONG>(ink.right, x + 1),
                           std::max<LONG>(ink.bottom, y + 1)};
                }
            }
        }
        if (ink.right == 0) {
            return {};
        }
        OffsetRect(&ink, -nMargin, -nMargin);
        return ink;
    }

private:
    static bool IsDark(std::uint32_t pixel)
    {
        return static_cast<int>(pixel >> 8 & 0xFF) < nDarkest;
    }

    size_t Pixels() const
    {
        return static_cast<size_t>(m_nWidth) * static_cast<size_t>(m_nHeight);
    }

    RECT m_room; // on the paper
    LONG m_nWidth, m_nHeight;
    CBitmapHandle m_hBitmap;
    std::uint32_t* m_pPixels = nullptr;
};

RECT ExtentOf(HFONT hFont, const std::wstring& text, const DRAWING& drawing)
{
    const CMemoryDc hdc;
    const CSelection font(hdc, hFont);
    RECT extent = drawing.room;
    DrawTextW(hdc, text.c_str(), -1, &extent, (drawing.nFormat & ~UINT{DT_VCENTER | DT_CENTER}) | DT_CALCRECT);
    return extent;
}

RECT OnScreen(HWND hwnd, RECT rect)
{
    MapWindowPoints(hwnd, nullptr, reinterpret_cast<POINT*>(&rect), 2);
    return rect;
}

} // namespace

std::optional<MEASURE> Measure(HWND hwnd, std::string_view font, const std::wstring& text)
{
    const HFONT hFont = FontNamed(font);
    const std::optional<DRAWING> drawing = hFont ? DrawingOf(hwnd, hFont) : std::nullopt;
    if (!drawing) {
        return std::nullopt;
    }
    const RECT extent = ExtentOf(hFont, text, *drawing);
    CPaper paper(drawing->room, extent);
    paper.Draw(hFont, text, drawing->nFormat);
    RECT ink = paper.Ink();
    if (!IsRectEmpty(&ink)) {
        OffsetRect(&ink, drawing->room.left, drawing->room.top);
    }
    return MEASURE{OnScreen(hwnd, drawing->room), OnScreen(hwnd, extent),
                   IsRectEmpty(&ink) ? RECT{} : OnScreen(hwnd, ink)};
}
