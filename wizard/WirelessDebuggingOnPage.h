// The page that finds the watch: the user types its address and wireless debugging port, Next
// proves that something answers there.
#pragma once

#include "wizard/WizardPage.h"

class CWirelessDebuggingOnPage
{
public:
    static INT_PTR CALLBACK DialogProc(HWND hwndPage, UINT nMessage, WPARAM wParam, LPARAM lParam);

    // The two probes. Both block, write their progress into the status control as they go, and return 0 when the
    // watch answered, -1 when not.

    // PingWatch, which all three working pages use.
    static LRESULT OnNotify_PSN_WIZNEXT_Ping(HWND hwndPage, const SOCKADDR_IN* pAddress, HWND hwndStatus);

    // Connects to the address and port (network order) and closes the connection again; up to seven times 2.2 seconds.
    // When the connection is just not accepted it shows no box; when it cannot be started or polled, one owned by the
    // page. Ends the process with the code of Windows Sockets when the socket cannot be made or made non-blocking,
    // after a box owned by the page, and when it cannot be shut down or closed, after a box without owner.
    static LRESULT OnNotify_PSN_WIZNEXT_TcpConnect(HWND hwndPage, const SOCKADDR_IN* pAddress, HWND hwndStatus);

private:
    static BOOL OnInitDialog(HWND hwndPage);
    static void OnCommand(HWND hwndPage, UINT nControlId, WPARAM wParam, UINT nNotification);
    static bool PrefillAddress(HWND hwndAddress);
    static void UpdateWizardButtons(HWND hwndPage);
    static bool ReadAddress(HWND hwndPage, SOCKADDR_IN& address);
    static LRESULT OnNotify_PSN_WIZNEXT(HWND hwndPage);
};
