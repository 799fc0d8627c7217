// The first page: what the program will do, and the About box.
#pragma once

#include "wizard/WizardPage.h"

class CWelcomePage
{
public:
    static INT_PTR CALLBACK DialogProc(HWND hwndPage, UINT nMessage, WPARAM wParam, LPARAM lParam);

private:
    static BOOL OnInitDialog(HWND hwndPage);
    static void UpdateWizardButtons(HWND hwndPage);
};
