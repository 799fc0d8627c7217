#include "wizard/InstructionPages.h"

namespace {

void UpdateWizardButtons(const INSTRUCTION_PAGE& page, HWND hwndPage)
{
    const bool bTicked = SendDlgItemMessageW(hwndPage, page.nCheckId, BM_GETCHECK, 0, 0) == BST_CHECKED;
    ShowWizardButtons(hwndPage, bTicked ? page.dwShownTicked : page.dwShownUnticked, page.dwAffected);
}

} // namespace

INT_PTR InstructionPageProc(const INSTRUCTION_PAGE& page, HWND hwndPage, UINT nMessage, WPARAM wParam, LPARAM lParam)
{
    switch (nMessage) {
    case WM_INITDIALOG:
        StoreWizardData(hwndPage, lParam);
        LoadControlText(hwndPage, page.nBodyId, page.nBodyStringId);
        LoadControlText(hwndPage, page.nCheckId, page.nCheckStringId);
        UpdateWizardButtons(page, hwndPage);
        return TRUE;
    case WM_COMMAND:
        if (LOWORD(wParam) == page.nCheckId && HIWORD(wParam) == BN_CLICKED) {
            UpdateWizardButtons(page, hwndPage);
        }
        return AnswerMessage(hwndPage, 0);
    case WM_NOTIFY:
        if (reinterpret_cast<const NMHDR*>(lParam)->code == PSN_SETACTIVE) {
            UpdateWizardButtons(page, hwndPage);
        }
        return AnswerMessage(hwndPage, 0);
    default:
        return FALSE;
    }
}
