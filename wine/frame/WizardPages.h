// The pages of a wizard and the way through them: creation at the first showing, the notifications
// and their answers. It knows nothing of titles, buttons and focus.
#pragma once

#include "frame/WizardPage.h"

#include <deque>

class CWizardPages
{
public:
    // Takes the records of the header. False, with the last error, when there is none or one of them
    // cannot become a page.
    bool Load(const PROPSHEETHEADERW& header);

    // Where the pages' windows go.
    void Place(HWND hwndFrame, const RECT& rect);

    int Count() const
    {
        return static_cast<int>(m_pages.size());
    }

    // The largest page.
    SIZE Size() const;

    // -1 before the first page was shown.
    int Current() const
    {
        return m_nCurrent;
    }

    CWizardPage& CurrentPage()
    {
        return m_pages[static_cast<size_t>(m_nCurrent)];
    }

    bool Has(int nPage) const
    {
        return nPage >= 0 && nPage < Count();
    }

    CWizardPage& Page(int nPage)
    {
        return m_pages[static_cast<size_t>(nPage)];
    }

    const CWizardPage& Page(int nPage) const
    {
        return m_pages[static_cast<size_t>(nPage)];
    }

    int IndexOf(HWND hwndPage) const;
    int IndexOfTemplate(LONG_PTR nDialogId) const;

    // Makes nPage the current one, or the one that it names instead by its answer to PSN_SETACTIVE:
    // 0 accepts, -1 goes on in direction nStep, anything else is the id of a page. The window is not yet
    // seen: see ShowCurrent. beforeActivation runs before each PSN_SETACTIVE. False, with the last error,
    // when a window cannot be made.
    template<typename Function>
    bool Activate(int nPage, int nStep, Function beforeActivation)
    {
        for (int nAsked = nPage; Has(nAsked);) {
            if (!MakeCurrent(nAsked)) {
                return false;
            }
            beforeActivation();
            nAsked = AfterAnswer(nAsked, nStep, CurrentPage().Notify(PSN_SETACTIVE));
        }
        return true;
    }

    void ShowCurrent();
    void HideOthers();

    // Asks the current page, which may let go (PSN_KILLACTIVE: 0 yes).
    bool MayLeave();

    // The page that follows the current one after PSN_WIZNEXT or PSN_WIZBACK; -1 to stay.
    int Neighbour(UINT nCode, int nStep);

    // PSN_WIZFINISH: 0 lets the wizard end.
    bool MayFinish();

    // PSN_QUERYCANCEL: 0 lets the wizard end.
    bool MayCancel();

    // PSN_RESET to every page that has a window. bByCloseBox: not by the Cancel button.
    void Reset(bool bByCloseBox);

private:
    bool MakeCurrent(int nPage);
    int AfterAnswer(int nAsked, int nStep, LRESULT nAnswer) const;

    std::deque<CWizardPage> m_pages; // a page's address is known to its window
    int m_nCurrent = -1;
    HWND m_hwndFrame = nullptr;
    RECT m_rect = {};
};
