// Where everything in the wizard's frame is. Numbers only: no window is touched.
#pragma once

#include <windows.h>

// What the layout depends on, in pixels.
struct FRAME_CONTENT
{
    UINT nDpi;
    SIZE page;         // of the largest page
    SIZE captionText;  // one line of the caption's font
    SIZE headerTitle;  // one line of the header title's font; only the height counts
    SIZE widestButton; // the longest text on a button
};

// All rectangles are in the coordinates of the frame's window, which has no non-client area.
class CFrameLayout
{
public:
    explicit CFrameLayout(const FRAME_CONTENT& content);

    SIZE Frame() const;

    // The part at the top by which the user moves the window.
    RECT Caption() const;
    RECT BackButton() const;
    RECT Icon() const;
    RECT CaptionText() const;
    RECT CloseBox() const;

    RECT HeaderTitle() const;
    RECT Page() const;

    // The grey strip, with its line at the top.
    RECT Strip() const;

    // The place of a button in the strip: 0 is the rightmost.
    RECT Button(int nFromRight) const;

    // The width of the frame's outline and of the strip's line.
    int LineWidth() const;

private:
    int Scaled(int nPixels) const;
    int CaptionHeight() const;
    SIZE ButtonSize() const;

    FRAME_CONTENT m_content;
};
