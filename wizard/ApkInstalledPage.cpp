#include "wizard/ApkInstalledPage.h"

#include "res/resource.h"

namespace {

void UpdateWizardButtons(HWND hwndPage)
{
    ShowWizardButtons(hwndPage, kBackNextCancel, kBackNextCancel);
}

} // namespace

INT_PTR CALLBACK CApkInstalledPage::DialogProc(HWND hwndPage, UINT nMessage, WPARAM /*wParam*/, LPARAM lParam)
{
    switch (nMessage) {
    case WM_INITDIALOG:
        StoreWizardData(hwndPage, lParam);
        LoadControlText(hwndPage, IDC_APK_INSTALLED_BODY, IDS_APK_INSTALLED_BODY);
        UpdateWizardButtons(hwndPage);
        return TRUE;
    case WM_COMMAND:
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
