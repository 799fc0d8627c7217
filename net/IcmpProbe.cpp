// The ICMP probe of the working pages: does anything answer at the watch's address?

#include "app/ErrorReport.h"
#include "net/IcmpEcho.h"
#include "net/WinSockHelper.h"
#include "wizard/WirelessDebuggingOnPage.h"

#include <ipexport.h>

namespace {

constexpr int kAttempts = 6;

LRESULT ReportNoNetwork(HWND hwndPage, HWND hwndStatus)
{
    SetWindowTextW(hwndStatus, L"Unreachable");
    MessageBoxW(hwndPage,
                L"It looks like your computer does not have a network connection.\n\n"
                L"Check your Wi-Fi settings or make certain your Ethernet cable is plugged in.",
                L"No Network Connection", MB_OK);
    return -1;
}

LRESULT ReportNotFound(HWND hwndPage, HWND hwndStatus)
{
    SetWindowTextW(hwndStatus, L"Unreachable");
    MessageBoxW(hwndPage,
                L"Did not find a watch at the IP address you entered.\n\n"
                L"Please verify your workstation and watch are on the same network. Also verify you entered the "
                L"correct watch IP address.\n\n"
                L"If you entered the correct IP address then \n"
                L"Steps to restart installation:\n"
                L"1. Close this installer program.\n"
                L"2. Power the watch off and then turn it on again.\n"
                L"3. Run the installer program again.\n",
                L"Invalid IP address", MB_OK);
    return -1;
}

bool IsUnreachable(DWORD dwError)
{
    return dwError == ERROR_NETWORK_UNREACHABLE || dwError == ERROR_HOST_UNREACHABLE ||
           dwError == ERROR_PROTOCOL_UNREACHABLE || dwError == ERROR_PORT_UNREACHABLE;
}

} // namespace

LRESULT CWirelessDebuggingOnPage::OnNotify_PSN_WIZNEXT_Ping(HWND hwndPage, const SOCKADDR_IN* pAddress, HWND hwndStatus)
{
    CIcmpEcho icmp;
    CStringW szAddress;
    CWinSockHelper::AddressToIpString(reinterpret_cast<const SOCKADDR*>(pAddress), szAddress);
    const IPAddr destination = pAddress->sin_addr.s_addr;

    for (int nAttempt = 1; nAttempt <= kAttempts; ++nAttempt) {
        CStringW szStatus;
        szStatus.Format(L"Pinging %s (%d of %d)", szAddress.GetString(), nAttempt, kAttempts);
        SetWindowTextW(hwndStatus, szStatus);

        if (icmp.SendEchoRequest(destination) != 0) {
            // A router on the way answers too, when it cannot deliver.
            const ICMP_ECHO_REPLY& reply = icmp.GetReply();
            if (reply.Status == IP_SUCCESS && reply.Address == destination) {
                return 0;
            }
            continue;
        }
        const DWORD dwError = GetLastError();
        if (IsUnreachable(dwError)) {
            return ReportNoNetwork(hwndPage, hwndStatus);
        }
        if (dwError != IP_REQ_TIMED_OUT) {
            ReportWin32Error(L"CWirelessDebuggingOnPage::OnNotify_PSN_WIZNEXT_Ping() > icmp.SendEchoRequest()", false,
                             hwndPage, dwError);
            return -1;
        }
    }
    return ReportNotFound(hwndPage, hwndStatus);
}
