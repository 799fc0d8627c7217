#include "wizard/PingWatch.h"

#include "app/ground/ErrorReport.h"
#include "net/IcmpProbe.h"
#include "net/WinSockHelper.h"
#include "wizard/ProbeStatus.h"

namespace {

constexpr WCHAR kNoNetwork[] = L"It looks like your computer does not have a network connection.\n\n"
                               L"Check your Wi-Fi settings or make certain your Ethernet cable is plugged in.";

constexpr WCHAR kNotFound[] =
    L"Did not find a watch at the IP address you entered.\n\n"
    L"Please verify your workstation and watch are on the same network. Also verify you entered the correct watch IP "
    L"address.\n\n"
    L"If you entered the correct IP address then \n"
    L"Steps to restart installation:\n"
    L"1. Close this installer program.\n"
    L"2. Power the watch off and then turn it on again.\n"
    L"3. Run the installer program again.\n";

void ReportUnreachable(HWND hwndPage, HWND hwndStatus, PCWSTR pszText, PCWSTR pszCaption)
{
    SetWindowTextW(hwndStatus, L"Unreachable");
    MessageBoxW(hwndPage, pszText, pszCaption, MB_OK);
}

} // namespace

LRESULT PingWatch(HWND hwndPage, const SOCKADDR_IN* pAddress, HWND hwndStatus)
{
    CIcmpEcho icmp;
    CStringW szAddress;
    CWinSockHelper::AddressToIpString(reinterpret_cast<const SOCKADDR*>(pAddress), szAddress);
    CProbeStatus status(hwndStatus, L"Pinging", szAddress);
    const ICMP_PROBE_RESULT result = RunIcmpProbe(icmp, pAddress->sin_addr.s_addr, status);
    switch (result.nOutcome) {
    case ICMP_ANSWERED:
        return 0;
    case ICMP_NO_ANSWER:
        ReportUnreachable(hwndPage, hwndStatus, kNotFound, L"Invalid IP address");
        break;
    case ICMP_NO_NETWORK:
        ReportUnreachable(hwndPage, hwndStatus, kNoNetwork, L"No Network Connection");
        break;
    case ICMP_FAILED:
        // Named so on every page.
        ReportWin32Error(L"CWirelessDebuggingOnPage::OnNotify_PSN_WIZNEXT_Ping() > icmp.SendEchoRequest()", false,
                         hwndPage, result.dwError);
        break;
    }
    return -1;
}
