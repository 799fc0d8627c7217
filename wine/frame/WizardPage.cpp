#include "frame/WizardPage.h"

#include "frame/DialogTemplate.h"
#include "frame/PageTexts.h"
#include "frame/PageWindow.h"
#include "frame/ResourceText.h"

#include <utility>

namespace {

// The page whose window is being made.
CWizardPage* g_pCreating = nullptr;

} // namespace

CWizardPage::CWizardPage(const PROPSHEETPAGEW& record)
    : m_record(record), m_template(LoadPageTemplate(record.hInstance, record.pszTemplate))
{
    if ((record.dwFlags & PSP_USEHEADERTITLE) != 0) {
        m_szHeaderTitle = ResourceText(record.hInstance, record.pszHeaderTitle);
    }
}

SIZE CWizardPage::Size() const
{
    return PageSize(m_template);
}

bool CWizardPage::Create(HWND hwndFrame, const RECT& rect)
{
    g_pCreating = this;
    m_hwnd = CreateDialogIndirectParamW(m_record.hInstance, reinterpret_cast<const DLGTEMPLATE*>(m_template.data()),
                                        hwndFrame, FirstDialogProc, reinterpret_cast<LPARAM>(&m_record));
    if (m_hwnd == nullptr) {
        return false;
    }
    DressPage(m_hwnd);
    ShowTextsAtOnce(m_hwnd);
    SetWindowPos(m_hwnd, nullptr, rect.left, rect.top, rect.right - rect.left, rect.bottom - rect.top,
                 SWP_NOZORDER | SWP_NOACTIVATE);
    return true;
}

// Serves until WM_INITDIALOG, whose result the dialog manager tells nobody; then the page's own
// procedure takes its place.
INT_PTR CALLBACK CWizardPage::FirstDialogProc(HWND hwnd, UINT nMessage, WPARAM wParam, LPARAM lParam)
{
    CWizardPage& page = *g_pCreating;
    const DLGPROC pfnDlgProc = page.m_record.pfnDlgProc;
    if (nMessage != WM_INITDIALOG) {
        return pfnDlgProc(hwnd, nMessage, wParam, lParam);
    }
    SetWindowLongPtrW(hwnd, DWLP_DLGPROC, reinterpret_cast<LONG_PTR>(pfnDlgProc));
    const INT_PTR nResult = pfnDlgProc(hwnd, nMessage, wParam, lParam);
    page.m_bPlacedFocus = nResult == FALSE;
    return nResult;
}

bool CWizardPage::TakePlacedFocus()
{
    return std::exchange(m_bPlacedFocus, false);
}

LRESULT CWizardPage::Notify(UINT nCode) const
{
    PSHNOTIFY notification = {};
    notification.hdr.hwndFrom = GetParent(m_hwnd);
    notification.hdr.code = nCode;
    SetWindowLongPtrW(m_hwnd, DWLP_MSGRESULT, 0);
    return SendMessageW(m_hwnd, WM_NOTIFY, 0, reinterpret_cast<LPARAM>(&notification));
}
