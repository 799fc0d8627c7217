#include "frame/WizardPages.h"

#include <algorithm>

bool CWizardPages::Load(const PROPSHEETHEADERW& header)
{
    if ((header.dwFlags & PSH_PROPSHEETPAGE) == 0 || header.nPages == 0 || header.ppsp == nullptr) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return false;
    }
    const auto* pBytes = reinterpret_cast<const BYTE*>(header.ppsp);
    for (UINT n = 0; n < header.nPages; ++n) {
        // Records may be of an older, shorter kind; each tells its own length.
        const auto& record = *reinterpret_cast<const PROPSHEETPAGEW*>(pBytes);
        if (!m_pages.emplace_back(record).IsLoaded()) {
            return false;
        }
        pBytes += record.dwSize;
    }
    return true;
}

void CWizardPages::Place(HWND hwndFrame, const RECT& rect)
{
    m_hwndFrame = hwndFrame;
    m_rect = rect;
}

SIZE CWizardPages::Size() const
{
    SIZE size = {};
    for (const CWizardPage& page : m_pages) {
        size = {std::max(size.cx, page.Size().cx), std::max(size.cy, page.Size().cy)};
    }
    return size;
}

int CWizardPages::IndexOf(HWND hwndPage) const
{
    for (int n = 0; n < Count(); ++n) {
        if (hwndPage != nullptr && Page(n).Window() == hwndPage) {
            return n;
        }
    }
    return -1;
}

int CWizardPages::IndexOfTemplate(LONG_PTR nDialogId) const
{
    for (int n = 0; n < Count(); ++n) {
        if (Page(n).HasTemplate(nDialogId)) {
            return n;
        }
    }
    return -1;
}

bool CWizardPages::MakeCurrent(int nPage)
{
    CWizardPage& page = Page(nPage);
    if (page.Window() == nullptr && !page.Create(m_hwndFrame, m_rect)) {
        return false;
    }
    m_nCurrent = nPage;
    return true;
}

// The page to ask next; one that does not exist ends the asking at the page that was asked last.
int CWizardPages::AfterAnswer(int nAsked, int nStep, LRESULT nAnswer) const
{
    if (nAnswer == 0) {
        return -1;
    }
    return nAnswer == -1 ? nAsked + nStep : IndexOfTemplate(nAnswer);
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

bool CWizardPages::MayLeave()
{
    return CurrentPage().Notify(PSN_KILLACTIVE) == 0;
}

int CWizardPages::Neighbour(UINT nCode, int nStep)
{
    const LRESULT nAnswer = CurrentPage().Notify(nCode);
    if (nAnswer == -1) {
        return -1;
    }
    const int nPage = nAnswer == 0 ? m_nCurrent + nStep : IndexOfTemplate(nAnswer);
    return Has(nPage) ? nPage : -1;
}

bool CWizardPages::MayFinish()
{
    return CurrentPage().Notify(PSN_WIZFINISH) == 0;
}

bool CWizardPages::MayCancel()
{
    return CurrentPage().Notify(PSN_QUERYCANCEL) == 0;
}

void CWizardPages::Reset(bool bByCloseBox)
{
    for (const CWizardPage& page : m_pages) {
        if (page.Window() != nullptr) {
            page.Notify(PSN_RESET, bByCloseBox);
        }
    }
}
