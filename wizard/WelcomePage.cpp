#include "wizard/WelcomePage.h"

#include "app/ground/AboutBox.h"
#include "res/resource.h"

namespace {

void UpdateWizardButtons(HWND hwndPage)
{
    ShowWizardButtons(hwndPage, PSWIZB_NEXT | PSWIZB_CANCEL, kBackNextCancel);
}

} // namespace

INT_PTR CALLBACK CWelcomePage::DialogProc(HWND hwndPage, UINT nMessage, WPARAM wParam, LPARAM lParam)
{
    switch (nMessage) {
    case WM_INITDIALOG:
        StoreWizardData(hwndPage, lParam);
        LoadControlText(hwndPage, IDC_WELCOME_BODY, IDS_WELCOME_BODY);
        // Moves the focus off the About button, so that Enter means Next.
        PostMessageW(hwndPage, WM_NEXTDLGCTL, 0, 0);
        UpdateWizardButtons(hwndPage);
        return TRUE;
    case WM_COMMAND:
        ShowAboutBox(hwndPage, LOWORD(wParam), wParam, HIWORD(wParam));
        return AnswerMessage(hwndPage, 0);
    case WM_NOTIFY: {
        const UINT nCode = reinterpret_cast<const NMHDR*>(lParam)->code;
        if (nCode == PSN_SETACTIVE || nCode == IPN_FIELDCHANGED) {
            UpdateWizardButtons(hwndPage);
        }
        return AnswerMessage(hwndPage, 0);
    }
    default:
        return FALSE;
    }
}
