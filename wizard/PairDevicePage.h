// The page that pairs this computer with the watch: pairing code and port, shown by the watch under
// "Pair new device". The user may skip it when they are paired already.
#pragma once

#include "wizard/WizardPage.h"

class CPairDevicePage
{
public:
    static INT_PTR CALLBACK DialogProc(HWND hwndPage, UINT nMessage, WPARAM wParam, LPARAM lParam);

private:
    struct PAIRING
    {
        SOCKADDR_IN address; // the watch's address with the pairing port
        WCHAR szCode[7];
    };

    static BOOL OnInitDialog(HWND hwndPage);
    static void OnCommand(HWND hwndPage, UINT nControlId, WPARAM wParam, UINT nNotification);
    static void UpdateWizardButtons(HWND hwndPage);
    static LRESULT OnNotify_PSN_WIZNEXT(HWND hwndPage);
    static LRESULT OnNotify_PSN_WIZNEXT_Pair(HWND hwndPage);
    static bool ReadPairing(HWND hwndPage, PAIRING& pairing);
    static LRESULT PairWithWatch(HWND hwndPage, const PAIRING& pairing);
};
