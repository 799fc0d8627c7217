// The pages of a wizard: creation at the first showing, the notifications and their answers. It knows nothing of
// titles, buttons and focus.
#pragma once

#include "frame/WizardPage.h"

#include <deque>

class CWizardPages
{
public:
    // Takes the records of the header. False when there is none, or one whose template is not found.
    bool Load(const PROPSHEETHEADERW& header);

    int Count() const
    {
        return static_cast<int>(m_pages.size());
    }

    // The largest page.
    SIZE Size() const;

    int Current() const
    {
        return m_nCurrent;
    }

    CWizardPage& CurrentPage()
    {
        return m_pages[static_cast<size_t>(m_nCurrent)];
    }

    // Makes nPage the current one and tells it (PSN_SETACTIVE, whose answer does not count). The window, in rect of
    // the frame, is not yet seen: see ShowCurrent. False when it cannot be made.
    bool Activate(int nPage, HWND hwndFrame, const RECT& rect);

    void ShowCurrent();
    void HideOthers();

    // Sends a notification to the current page. Only an answer of 0 lets that happen which it tells of.
    bool Allows(UINT nCode);

private:
    std::deque<CWizardPage> m_pages; // a page's address is known to its window
    int m_nCurrent = 0;
};
