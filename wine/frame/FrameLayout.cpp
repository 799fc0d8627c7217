#include "frame/FrameLayout.h"

#include <algorithm>

namespace {

// Lengths at 96 dots per inch, as Windows 10 has them.
constexpr int kCloseBoxWidth = 45;
constexpr int kCloseBoxHeight = 29;
constexpr int kBackButtonLeft = 9;
constexpr int kBackButtonSize = 30;
constexpr int kCaptionRowTop = 22; // of the row that holds the arrow, the icon and the text
constexpr int kCaptionHeight = 60;
constexpr int kIconSize = 16;
constexpr int kIconGap = 5;
constexpr int kHeaderTitleLeft = 38;
constexpr int kHeaderTitleTop = 11; // below the caption
constexpr int kHeaderTitleGap = 12;
// Less than the header title's: a page brings a margin of 7 dialog units, so that both texts align.
constexpr int kPageMargin = 26;
constexpr int kPageBottomMargin = 8;
constexpr int kStripMargin = 11;
constexpr int kButtonGap = 8;
constexpr int kButtonWidth = 80;
constexpr int kButtonHeight = 24;
constexpr int kButtonTextMargin = 12;
constexpr int kButtonTextHeightMargin = 7;

constexpr LONG kLine = 1; // the outline, and the strip's upper edge

RECT RectAt(LONG nLeft, LONG nTop, LONG nWidth, LONG nHeight)
{
    return {nLeft, nTop, nLeft + nWidth, nTop + nHeight};
}

} // namespace

FRAME_LAYOUT LayOutFrame(UINT nDpi, SIZE page, SIZE widestText, const CFrameFonts& fonts)
{
    const auto scaled = [nDpi](int nPixels) -> LONG { return Scale(nPixels, nDpi); };
    const LONG nTitleHeight = MeasureText(fonts.HeaderTitle(), L"X").cy;
    const LONG nTextHeight = MeasureText(fonts.Text(), L"X").cy;
    // Larger text makes larger buttons; nothing is cut.
    const SIZE button = {std::max(scaled(kButtonWidth), widestText.cx + (2 * scaled(kButtonTextMargin))),
                         std::max(scaled(kButtonHeight), widestText.cy + scaled(kButtonTextHeightMargin))};

    FRAME_LAYOUT layout = {};
    const LONG nTitleTop = scaled(kCaptionHeight) + scaled(kHeaderTitleTop);
    layout.page = RectAt(scaled(kPageMargin), nTitleTop + nTitleHeight + scaled(kHeaderTitleGap), page.cx, page.cy);
    const LONG nStripTop = layout.page.bottom + scaled(kPageBottomMargin);
    layout.frame = {std::max(layout.page.right + scaled(kPageMargin),
                             (3 * button.cx) + (2 * (scaled(kStripMargin) + scaled(kButtonGap)))),
                    nStripTop + kLine + button.cy + (2 * scaled(kStripMargin))};
    layout.strip = {0, nStripTop, layout.frame.cx, layout.frame.cy};
    layout.lastButton = RectAt(layout.frame.cx - scaled(kStripMargin) - button.cx,
                               nStripTop + kLine + scaled(kStripMargin), button.cx, button.cy);
    layout.nButtonStep = button.cx + scaled(kButtonGap);

    layout.caption = {0, 0, layout.frame.cx, scaled(kCaptionHeight)};
    layout.closeBox = RectAt(layout.frame.cx - kLine - scaled(kCloseBoxWidth), kLine, scaled(kCloseBoxWidth),
                             scaled(kCloseBoxHeight));
    layout.backButton =
        RectAt(scaled(kBackButtonLeft), scaled(kCaptionRowTop), scaled(kBackButtonSize), scaled(kBackButtonSize));
    const LONG nRowMiddle = (layout.backButton.top + layout.backButton.bottom) / 2;
    layout.icon = RectAt(layout.backButton.right + scaled(kIconGap), nRowMiddle - (scaled(kIconSize) / 2),
                         scaled(kIconSize), scaled(kIconSize));
    const LONG nTextLeft = layout.icon.right + scaled(kIconGap);
    layout.captionText =
        RectAt(nTextLeft, nRowMiddle - (nTextHeight / 2), layout.closeBox.left - nTextLeft, nTextHeight);
    layout.headerTitle =
        RectAt(scaled(kHeaderTitleLeft), nTitleTop, layout.frame.cx - (2 * scaled(kHeaderTitleLeft)), nTitleHeight);
    return layout;
}
