// The page that finds the watch: the user types its address and wireless debugging port, Next
// proves that something answers there.
#pragma once

#include "wizard/WizardPage.h"

class CWirelessDebuggingOnPage
{
public:
    static INT_PTR CALLBACK DialogProc(HWND hwndPage, UINT nMessage, WPARAM wParam, LPARAM lParam);

    // The two probes. Both block: they write their progress into the status control as they go,
    // tell the user in boxes owned by the page what went wrong, and return 0 when the watch
    // answered, -1 when not. They are built in net/.

    // Sends up to six ICMP echo requests to the address (network order, its port is ignored), about
    // a second each when nothing answers. All three working pages use it.
    static LRESULT OnNotify_PSN_WIZNEXT_Ping(HWND hwndPage, const SOCKADDR_IN* pAddress, HWND hwndStatus);

    // Connects to the address and port (network order) and closes the connection again; up to seven
    // times 2.2 seconds. When the connection is just not accepted it shows no box. Ends the process
    // with the code of Windows Sockets, after a box without owner, when the socket cannot be made, be
    // made non-blocking, be shut down or be closed.
    static LRESULT OnNotify_PSN_WIZNEXT_TcpConnect(HWND hwndPage, const SOCKADDR_IN* pAddress, HWND hwndStatus);

private:
    static BOOL OnInitDialog(HWND hwndPage, LPARAM lParam);
    static bool PrefillAddress(HWND hwndAddress);
    static void UpdateWizardButtons(HWND hwndPage);
    static bool ReadAddress(HWND hwndPage, SOCKADDR_IN& address);
    static LRESULT OnNotify_PSN_WIZNEXT(HWND hwndPage);
};
