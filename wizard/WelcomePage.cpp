#include "wizard/WelcomePage.h"

#include "app/ground/AboutBox.h"
#include "res/resource.h"

INT_PTR CALLBACK CWelcomePage::DialogProc(HWND hwndPage, UINT nMessage, WPARAM wParam, LPARAM lParam)
{
    static constexpr PAGE_HANDLERS kHandlers = {.nBodyId = IDC_WELCOME_BODY,
                                                .nBodyStringId = IDS_WELCOME_BODY,
                                                .pfnInitDialog = OnInitDialog,
                                                .pfnUpdateWizardButtons = UpdateWizardButtons,
                                                .bHearsAddress = true,
                                                .pfnCommand = ShowAboutBox};
    return PageProc(kHandlers, hwndPage, nMessage, wParam, lParam);
}

// Moves the keyboard focus on from the control that has it first.
BOOL CWelcomePage::OnInitDialog(HWND hwndPage)
{
    PostMessageW(hwndPage, WM_NEXTDLGCTL, 0, 0);
    return TRUE;
}

void CWelcomePage::UpdateWizardButtons(HWND hwndPage)
{
    ShowWizardButtons(hwndPage, PSWIZB_NEXT | PSWIZB_CANCEL, kBackNextCancel);
}
