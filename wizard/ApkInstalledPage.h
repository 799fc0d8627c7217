// The page between installing and undoing: the client is on the watch.
#pragma once

#include "wizard/WizardPage.h"

class CApkInstalledPage
{
public:
    static INT_PTR CALLBACK DialogProc(HWND hwndPage, UINT nMessage, WPARAM wParam, LPARAM lParam);

private:
    static void UpdateWizardButtons(HWND hwndPage);
};
