// Where everything in the wizard's frame is, in pixels of its window, which has no non-client area.
#pragma once

#include "frame/FrameFonts.h"

struct FRAME_LAYOUT
{
    SIZE frame;
    RECT caption; // the part at the top by which the user moves the window
    RECT backButton;
    RECT icon;
    RECT captionText;
    RECT closeBox;
    RECT headerTitle;
    RECT page;
    RECT strip;       // at the bottom, grey
    RECT lastButton;  // in the strip, the rightmost
    LONG nButtonStep; // from a button to the one left of it
};

// For pages of this size and buttons with no longer text than this.
FRAME_LAYOUT LayOutFrame(UINT nDpi, SIZE page, SIZE widestText, const CFrameFonts& fonts);
