#include "frame/FrameLayout.h"

#include "frame/FrameFonts.h"

#include <algorithm>

namespace {

// Lengths at 96 dots per inch, as Windows 10 has them.
constexpr int kCloseBoxWidth = 45;
constexpr int kCloseBoxHeight = 29;
constexpr int kBackButtonLeft = 9;
constexpr int kBackButtonSize = 30;
constexpr int kCaptionRowTop = 22; // of the row that holds the arrow, the icon and the text
constexpr int kIconSize = 16;
constexpr int kIconGap = 5;
constexpr int kCaptionBottomMargin = 8;
constexpr int kHeaderTitleLeft = 38;
constexpr int kHeaderTitleTop = 11;
constexpr int kHeaderTitleGap = 12;
// Less than the header title's: a page brings a margin of 7 dialog units, so that both texts align.
constexpr int kPageMargin = 26;
constexpr int kPageBottomMargin = 8;
constexpr int kStripMargin = 11;
constexpr int kButtonGap = 8;
constexpr int kButtonWidth = 80;
constexpr int kButtonHeight = 24;
constexpr int kButtonTextMargin = 12;

RECT At(int nLeft, int nTop, int nWidth, int nHeight)
{
    return {nLeft, nTop, nLeft + nWidth, nTop + nHeight};
}

} // namespace

CFrameLayout::CFrameLayout(const FRAME_CONTENT& content) : m_content(content) {}

int CFrameLayout::Scaled(int nPixels) const
{
    return Scale(nPixels, m_content.nDpi);
}

int CFrameLayout::LineWidth() const
{
    return std::max(1, static_cast<int>(m_content.nDpi) / USER_DEFAULT_SCREEN_DPI);
}

int CFrameLayout::CaptionHeight() const
{
    return Scaled(kCaptionRowTop + kBackButtonSize + kCaptionBottomMargin);
}

SIZE CFrameLayout::ButtonSize() const
{
    // Larger text makes larger buttons; nothing is cut.
    const int nWidth = static_cast<int>(m_content.widestButton.cx) + 2 * Scaled(kButtonTextMargin);
    const int nHeight = static_cast<int>(m_content.widestButton.cy) + Scaled(7);
    return {std::max(Scaled(kButtonWidth), nWidth), std::max(Scaled(kButtonHeight), nHeight)};
}

SIZE CFrameLayout::Frame() const
{
    const RECT page = Page();
    const int nForPage = page.right + Scaled(kPageMargin);
    const int nForButtons = static_cast<int>(3 * ButtonSize().cx) + 2 * Scaled(kStripMargin + kButtonGap);
    const int nStrip = LineWidth() + static_cast<int>(ButtonSize().cy) + 2 * Scaled(kStripMargin);
    return {std::max(nForPage, nForButtons), page.bottom + Scaled(kPageBottomMargin) + nStrip};
}

RECT CFrameLayout::Caption() const
{
    return At(0, 0, static_cast<int>(Frame().cx), CaptionHeight());
}

RECT CFrameLayout::BackButton() const
{
    return At(Scaled(kBackButtonLeft), Scaled(kCaptionRowTop), Scaled(kBackButtonSize), Scaled(kBackButtonSize));
}

RECT CFrameLayout::Icon() const
{
    const RECT back = BackButton();
    const int nSize = Scaled(kIconSize);
    return At(back.right + Scaled(kIconGap), (back.top + back.bottom - nSize) / 2, nSize, nSize);
}

RECT CFrameLayout::CaptionText() const
{
    const RECT back = BackButton();
    const int nHeight = static_cast<int>(m_content.captionText.cy);
    const int nLeft = Icon().right + Scaled(kIconGap);
    return At(nLeft, (back.top + back.bottom - nHeight) / 2, CloseBox().left - nLeft, nHeight);
}

RECT CFrameLayout::CloseBox() const
{
    const int nWidth = Scaled(kCloseBoxWidth);
    return At(static_cast<int>(Frame().cx) - LineWidth() - nWidth, LineWidth(), nWidth, Scaled(kCloseBoxHeight));
}

RECT CFrameLayout::HeaderTitle() const
{
    const int nLeft = Scaled(kHeaderTitleLeft);
    return At(nLeft, CaptionHeight() + Scaled(kHeaderTitleTop), static_cast<int>(Frame().cx) - 2 * nLeft,
              static_cast<int>(m_content.headerTitle.cy));
}

RECT CFrameLayout::Page() const
{
    const int nTop = CaptionHeight() + Scaled(kHeaderTitleTop) + static_cast<int>(m_content.headerTitle.cy) +
                     Scaled(kHeaderTitleGap);
    return At(Scaled(kPageMargin), nTop, static_cast<int>(m_content.page.cx), static_cast<int>(m_content.page.cy));
}

RECT CFrameLayout::Strip() const
{
    const SIZE frame = Frame();
    return {0, Page().bottom + Scaled(kPageBottomMargin), frame.cx, frame.cy};
}

RECT CFrameLayout::Button(int nFromRight) const
{
    const SIZE size = ButtonSize();
    const int nRight = static_cast<int>(Frame().cx) - Scaled(kStripMargin) -
                       nFromRight * (static_cast<int>(size.cx) + Scaled(kButtonGap));
    return At(nRight - static_cast<int>(size.cx), static_cast<int>(Strip().top) + LineWidth() + Scaled(kStripMargin),
              static_cast<int>(size.cx), static_cast<int>(size.cy));
}
