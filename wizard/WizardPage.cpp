#include "wizard/WizardPage.h"

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
