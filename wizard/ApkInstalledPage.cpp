#include "wizard/ApkInstalledPage.h"

#include "res/resource.h"

INT_PTR CALLBACK CApkInstalledPage::DialogProc(HWND hwndPage, UINT nMessage, WPARAM wParam, LPARAM lParam)
{
    static constexpr PAGE_HANDLERS kHandlers = {.nBodyId = IDC_APK_INSTALLED_BODY,
                                                .nBodyStringId = IDS_APK_INSTALLED_BODY,
                                                .pfnUpdateWizardButtons = UpdateWizardButtons,
                                                .bHearsAddress = true};
    return PageProc(kHandlers, hwndPage, nMessage, wParam, lParam);
}

void CApkInstalledPage::UpdateWizardButtons(HWND hwndPage)
{
    ShowWizardButtons(hwndPage, kBackNextCancel, kBackNextCancel);
}
