#include "frame/WizardPages.h"

#include <algorithm>

bool CWizardPages::Load(const PROPSHEETHEADERW& header)
{
    for (UINT n = 0; n < header.nPages; ++n) {
        m_pages.emplace_back(header.ppsp[n]);
    }
    return !m_pages.empty() && std::ranges::all_of(m_pages, &CWizardPage::IsLoaded);
}

SIZE CWizardPages::Size() const
{
    SIZE largest = {};
    for (const CWizardPage& page : m_pages) {
        const SIZE size = page.Size();
        largest = {std::max(largest.cx, size.cx), std::max(largest.cy, size.cy)};
    }
    return largest;
}

bool CWizardPages::Activate(int nPage, HWND hwndFrame, const RECT& rect)
{
    m_nCurrent = nPage;
    if (CurrentPage().Window() == nullptr && !CurrentPage().Create(hwndFrame, rect)) {
        return false;
    }
    CurrentPage().Notify(PSN_SETACTIVE);
    return true;
}

void CWizardPages::ShowCurrent()
{
    ShowWindow(CurrentPage().Window(), SW_SHOWNA);
}

void CWizardPages::HideOthers()
{
    for (const CWizardPage& page : m_pages) {
        if (page.Window() != nullptr && page.Window() != CurrentPage().Window()) {
            ShowWindow(page.Window(), SW_HIDE);
        }
    }
}

bool CWizardPages::Allows(UINT nCode)
{
    return CurrentPage().Notify(nCode) == 0;
}
