// The fonts of the wizard's frame. The pages have their own, from their templates.
#pragma once

#include "frame/Owned.h"

// Pixels of a length that is nPixels at 96 dots per inch.
int Scale(int nPixels, UINT nDpi);

// The extent of one line of text. An ampersand before a letter is not seen, so it takes no room.
SIZE MeasureText(HFONT hFont, PCWSTR pszText);

class CFrameFonts
{
public:
    // Segoe UI, or what comes closest to it of the installed fonts.
    explicit CFrameFonts(UINT nDpi);

    // 9 points: caption and buttons.
    HFONT Text() const
    {
        return m_text.get();
    }

    // 12 points: the page's header title.
    HFONT HeaderTitle() const
    {
        return m_headerTitle.get();
    }

private:
    CFontHandle m_text;
    CFontHandle m_headerTitle;
};
