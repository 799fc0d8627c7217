#include "wizard/WizardPage.h"

namespace {

LRESULT OnNotify(const PAGE_HANDLERS& page, HWND hwndPage, UINT nCode)
{
    if (nCode == PSN_SETACTIVE || (nCode == IPN_FIELDCHANGED && page.bHearsAddress)) {
        page.pfnUpdateWizardButtons(hwndPage);
    } else if (nCode == PSN_WIZNEXT && page.pfnNext != nullptr) {
        return page.pfnNext(hwndPage);
    }
    return 0;
}

} // namespace

void StoreWizardData(HWND hwndPage, LPARAM lParam)
{
    SetWindowLongPtrW(hwndPage, GWLP_USERDATA, reinterpret_cast<const PROPSHEETPAGEW*>(lParam)->lParam);
}

CWizardData& GetWizardData(HWND hwndPage)
{
    return *reinterpret_cast<CWizardData*>(GetWindowLongPtrW(hwndPage, GWLP_USERDATA));
}

void LoadControlText(HWND hwndPage, int nControlId, UINT nStringId)
{
    CStringW szText;
    if (szText.LoadStringW(nStringId)) {
        SetDlgItemTextW(hwndPage, nControlId, szText);
    }
}

void ShowWizardButtons(HWND hwndPage, DWORD dwShown, DWORD dwAffected)
{
    PostMessageW(GetParent(hwndPage), PSM_SHOWWIZBUTTONS, dwShown, static_cast<LPARAM>(dwAffected));
}

INT_PTR AnswerMessage(HWND hwndPage, LRESULT nAnswer)
{
    SetWindowLongPtrW(hwndPage, DWLP_MSGRESULT, nAnswer);
    return TRUE;
}

INT_PTR PageProc(const PAGE_HANDLERS& page, HWND hwndPage, UINT nMessage, WPARAM wParam, LPARAM lParam)
{
    switch (nMessage) {
    case WM_INITDIALOG: {
        StoreWizardData(hwndPage, lParam);
        LoadControlText(hwndPage, page.nBodyId, page.nBodyStringId);
        const BOOL bDefaultFocus = page.pfnInitDialog == nullptr || page.pfnInitDialog(hwndPage);
        page.pfnUpdateWizardButtons(hwndPage);
        return bDefaultFocus;
    }
    case WM_COMMAND:
        if (page.pfnCommand != nullptr) {
            page.pfnCommand(hwndPage, LOWORD(wParam), wParam, HIWORD(wParam));
        }
        return AnswerMessage(hwndPage, 0);
    case WM_NOTIFY:
        return AnswerMessage(hwndPage, OnNotify(page, hwndPage, reinterpret_cast<const NMHDR*>(lParam)->code));
    default:
        return FALSE;
    }
}
