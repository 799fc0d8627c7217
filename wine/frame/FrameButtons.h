// Back, Next, Finish and Cancel: which of them are to be seen, which is the default button, where
// they stand.
#pragma once

#include "frame/BackButton.h"
#include "frame/FrameLayout.h"
#include "frame/PropertySheet.h"

#include <array>

// Changes are noted at once and seen with the next Apply: what a page posts while it becomes the
// current one must not flash by.
class CFrameButtons
{
public:
    // The texts that the strip's buttons must have room for.
    static SIZE WidestText(HFONT hFont);

    // Makes the arrow. It comes first in the tab order, the page follows it.
    bool CreateBack(HWND hwndFrame, const CFrameLayout& layout);

    // Makes the strip's buttons, last in the tab order.
    bool CreateStrip(HWND hwndFrame, const CFrameLayout& layout, HFONT hFont);

    // What a page starts with: all that makes sense on it; its Back is disabled on the first page.
    void Reset(bool bFirstPage, bool bLastPage);

    // Of the buttons in dwMask (PSWIZB_ values), shows those in dwButtons and hides the others.
    void Show(DWORD dwButtons, DWORD dwMask);

    // The same for enabled and disabled.
    void Enable(DWORD dwButtons, DWORD dwMask);

    // The older way to say it (PSM_SETWIZBUTTONS): enables Back and Next when they are in dwButtons, and
    // puts Finish, enabled or not, in the place of Next.
    void Set(DWORD dwButtons);

    // Makes the windows what they were noted to be. Visible buttons of the strip stand side by side.
    void Apply(const CFrameLayout& layout);

    // Whether the user can press a button.
    bool IsAvailable(DWORD dwButton) const;

    // Next or Finish, the one that the user can press; null when there is none.
    HWND Default() const;

    // Draws the outline of the default button around the one that Enter would press while hwndFocus has
    // the keyboard: a push button itself, else Default.
    void MarkDefault(HWND hwndFocus);

    HWND Window(DWORD dwButton) const;

    const CBackButton& Back() const
    {
        return m_back;
    }

private:
    DWORD Available() const
    {
        return m_dwShown & m_dwEnabled;
    }

    CBackButton m_back;
    std::array<HWND, 4> m_windows = {};
    DWORD m_dwShown = 0;
    DWORD m_dwEnabled = 0;
    HWND m_hwndMarked = nullptr;
};

// Whether hwnd is a button that Enter presses when it has the focus.
bool IsPushButton(HWND hwnd);
