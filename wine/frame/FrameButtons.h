// Back, Next, Finish and Cancel: which of them are to be seen, which is the default button, where they stand.
#pragma once

#include "frame/FrameLayout.h"
#include "frame/PropertySheet.h"

// The longest text of a button.
SIZE WidestButtonText(HFONT hFont);

// Changes are noted at once and seen with the next Apply: what a page posts while it becomes the current one must not
// flash by.
class CFrameButtons
{
public:
    // Makes the buttons, hidden and in tab order: the page belongs after the first of them, the arrow.
    void Create(HWND hwndFrame, const FRAME_LAYOUT& layout, HFONT hFont);

    // What a page starts with: Next, or Finish on the last page, and all others.
    void Reset(bool bLastPage);

    // Of the buttons in dwMask (PSWIZB_ values), shows those in dwButtons and hides the others.
    void Show(DWORD dwButtons, DWORD dwMask);

    // Makes the windows what they were noted to be. Those in the strip stand side by side.
    void Apply(const FRAME_LAYOUT& layout);

    // By the id of its window.
    bool IsShown(int nId) const;

    // Next or Finish, whichever is shown; null when none is.
    HWND Default() const;

    // Draws the outline of the default button around the one that Enter would press while hwndFocus has the keyboard.
    void MarkDefault(HWND hwndFocus);

private:
    HWND m_hwndFrame = nullptr;
    DWORD m_dwShown = 0;
    HWND m_hwndMarked = nullptr;
};

// Whether hwnd is a button that Enter presses when it has the focus.
bool TakesEnter(HWND hwnd);
