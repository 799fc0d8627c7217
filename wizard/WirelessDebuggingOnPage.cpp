#include "wizard/WirelessDebuggingOnPage.h"

#include "net/TcpProbe.h"
#include "net/WinSockHelper.h"
#include "res/resource.h"
#include "wizard/IntegerEdit.h"
#include "wizard/PingWatch.h"
#include "wizard/Port.h"
#include "wizard/ProbeStatus.h"

#include <shlwapi.h>

#include <cstring>

namespace {

constexpr LRESULT kAddressFields = 4;

void ReportWsaError(HWND hwndOwner, PCWSTR pszMethod)
{
    MessageBoxW(hwndOwner, pszMethod, L"WSA Error", MB_OK);
}

[[noreturn]] void ReportWsaErrorAndExit(HWND hwndOwner, PCWSTR pszMethod)
{
    const int nError = WSAGetLastError();
    ReportWsaError(hwndOwner, pszMethod);
    ExitProcess(static_cast<UINT>(nError));
}

void OpenNonBlocking(CSocket& socket, HWND hwndPage)
{
    if (!socket.Socket()) {
        ReportWsaErrorAndExit(hwndPage,
                              L"CWirelessDebuggingOnPage::OnNotify_PSN_WIZNEXT_TcpConnect() > socket.Socket()");
    }
    if (socket.Ioctlsocket(1) == SOCKET_ERROR) {
        ReportWsaErrorAndExit(hwndPage,
                              L"CWirelessDebuggingOnPage::OnNotify_PSN_WIZNEXT_TcpConnect() > socket.Ioctlsocket()");
    }
}

// Starts the connection and waits until it stands, with each attempt in the status control.
TCP_OUTCOME Connect(CSocket& socket, const SOCKADDR_IN* pAddress, HWND hwndStatus)
{
    if (socket.Connect(pAddress) == SOCKET_ERROR && WSAGetLastError() != WSAEWOULDBLOCK) {
        return TCP_FAILED;
    }
    CStringW szAddress;
    CWinSockHelper::AddressToString(reinterpret_cast<const SOCKADDR*>(pAddress), szAddress);
    CProbeStatus status(hwndStatus, L"Connecting to", szAddress);
    return WaitUntilConnected(socket, status);
}

void CloseConnection(CSocket& socket)
{
    if (socket.Shutdown() != 0) {
        ReportWsaErrorAndExit(nullptr,
                              L"CWirelessDebuggingOnPage::OnNotify_PSN_WIZNEXT_TcpConnect() > socket.Shutdown()");
    }
    if (socket.CloseSocket() == SOCKET_ERROR) {
        ReportWsaErrorAndExit(nullptr,
                              L"CWirelessDebuggingOnPage::OnNotify_PSN_WIZNEXT_TcpConnect() > socket.CloseSocket()");
    }
}

} // namespace

INT_PTR CALLBACK CWirelessDebuggingOnPage::DialogProc(HWND hwndPage, UINT nMessage, WPARAM wParam, LPARAM lParam)
{
    static constexpr PAGE_HANDLERS kHandlers = {.nBodyId = IDC_WIRELESS_DEBUGGING_ON_BODY,
                                                .nBodyStringId = IDS_WIRELESS_DEBUGGING_ON_BODY,
                                                .pfnInitDialog = OnInitDialog,
                                                .pfnUpdateWizardButtons = UpdateWizardButtons,
                                                .bHearsAddress = true,
                                                .pfnCommand = OnCommand,
                                                .pfnNext = OnNotify_PSN_WIZNEXT};
    return PageProc(kHandlers, hwndPage, nMessage, wParam, lParam);
}

BOOL CWirelessDebuggingOnPage::OnInitDialog(HWND hwndPage)
{
    const HWND hwndAddress = GetDlgItem(hwndPage, IDC_WATCH_ADDRESS);
    const bool bPrefilled = hwndAddress != nullptr && PrefillAddress(hwndAddress);

    const HWND hwndPort = GetDlgItem(hwndPage, IDC_WATCH_PORT);
    if (hwndPort != nullptr) {
        CIntegerEdit::Attach(hwndPort, kPortDigits, L"CWirelessDebuggingOnPage::OnInitDialog()",
                             L"CIntegerEdit::SetWindowSubclass(hwndCtl, NULL)");
    }
    return !bPrefilled;
}

void CWirelessDebuggingOnPage::OnCommand(HWND hwndPage, UINT nControlId, WPARAM /*wParam*/, UINT nNotification)
{
    if (nControlId == IDC_WATCH_PORT && nNotification == EN_CHANGE) {
        UpdateWizardButtons(hwndPage);
    }
}

// Fills in the first three octets of this computer's gateway, however long the network's prefix is, and
// puts the caret into the last field. False without a gateway.
bool CWirelessDebuggingOnPage::PrefillAddress(HWND hwndAddress)
{
    WCHAR szGateway[CWinSockHelper::kIpv4TextLength];
    if (!CWinSockHelper::GetDefaultGateway(szGateway)) {
        return false;
    }
    if (const PWSTR pszLastDot = StrRChrW(szGateway, nullptr, L'.')) {
        pszLastDot[1] = L'\0';
    }
    SetWindowTextW(hwndAddress, szGateway);
    SetFocus(hwndAddress);
    PostMessageW(hwndAddress, IPM_SETFOCUS, 3, 0);
    return true;
}

void CWirelessDebuggingOnPage::UpdateWizardButtons(HWND hwndPage)
{
    DWORD dwAddress = 0;
    const int cchPort = GetWindowTextLengthW(GetDlgItem(hwndPage, IDC_WATCH_PORT));
    const LRESULT nFields =
        SendDlgItemMessageW(hwndPage, IDC_WATCH_ADDRESS, IPM_GETADDRESS, 0, reinterpret_cast<LPARAM>(&dwAddress));
    const bool bComplete = nFields >= kAddressFields && cchPort >= kFewestPortDigits;
    ShowWizardButtons(hwndPage, bComplete ? kBackNextCancel : kBackCancel, kBackNextCancel);
}

// The typed address and port in network order. False, after a box, when they are not valid.
bool CWirelessDebuggingOnPage::ReadAddress(HWND hwndPage, SOCKADDR_IN& address)
{
    DWORD dwAddress = 0xFFFFFFFF;
    const LRESULT nFields =
        SendDlgItemMessageW(hwndPage, IDC_WATCH_ADDRESS, IPM_GETADDRESS, 0, reinterpret_cast<LPARAM>(&dwAddress));
    if (nFields != kAddressFields) {
        MessageBoxW(hwndPage, L"Please enter a valid IP Address, e.g. 192.168.1.100", L"Invalid IP Address", MB_OK);
        return false;
    }
    BOOL bTranslated = FALSE;
    const UINT nPort = GetDlgItemInt(hwndPage, IDC_WATCH_PORT, &bTranslated, FALSE);
    if (!bTranslated || !IsUserPort(nPort)) {
        ReportInvalidPort(hwndPage);
        return false;
    }
    address = {};
    address.sin_family = AF_INET;
    address.sin_port = htons(static_cast<u_short>(nPort));
    address.sin_addr.s_addr = htonl(dwAddress);
    return true;
}

LRESULT CWirelessDebuggingOnPage::OnNotify_PSN_WIZNEXT(HWND hwndPage)
{
    SOCKADDR_IN address;
    if (!ReadAddress(hwndPage, address)) {
        return -1;
    }
    const HWND hwndStatus = GetDlgItem(hwndPage, IDC_WIRELESS_DEBUGGING_ON_STATUS);
    LRESULT nResult = OnNotify_PSN_WIZNEXT_Ping(hwndPage, &address, hwndStatus);
    if (nResult != 0) {
        return nResult;
    }
    nResult = OnNotify_PSN_WIZNEXT_TcpConnect(hwndPage, &address, hwndStatus);
    if (nResult == 0) {
        memcpy(&GetWizardData(hwndPage).m_saWatchAddress, &address, sizeof(address));
        return 0;
    }

    CStringW szAddress;
    CWinSockHelper::AddressToString(reinterpret_cast<const SOCKADDR*>(&address), szAddress);
    CStringW szStatus;
    szStatus.Format(L"Could not connect to %s", szAddress.GetString());
    SetWindowTextW(hwndStatus, szStatus);
    MessageBoxW(hwndPage,
                L"Could not connect to a watch at the IP address and port you entered.\n"
                L"Please verify your workstation and watch are on the same network.\n"
                L"Also verify you entered the correct IP address and port.\n\n"
                L"If the above does not work, Steps to restart installation:\n"
                L"1. Close this installer program.\n"
                L"2. Power the watch off and then turn it on again.\n"
                L"3. Run the installer program again.\n",
                L"Wireless Debugging Connection", MB_OK);
    return nResult;
}

LRESULT CWirelessDebuggingOnPage::OnNotify_PSN_WIZNEXT_Ping(HWND hwndPage, const SOCKADDR_IN* pAddress, HWND hwndStatus)
{
    return PingWatch(hwndPage, pAddress, hwndStatus);
}

LRESULT CWirelessDebuggingOnPage::OnNotify_PSN_WIZNEXT_TcpConnect(HWND hwndPage, const SOCKADDR_IN* pAddress,
                                                                  HWND hwndStatus)
{
    CSocket socket;
    OpenNonBlocking(socket, hwndPage);
    const TCP_OUTCOME nOutcome = Connect(socket, pAddress, hwndStatus);
    if (nOutcome == TCP_FAILED) {
        ReportWsaError(hwndPage, L"CWirelessDebuggingOnPage::OnNotify_PSN_WIZNEXT_TcpConnect() > socket.Connect()");
    }
    if (nOutcome != TCP_CONNECTED) {
        return -1;
    }
    SetWindowTextW(hwndStatus, L"");
    CloseConnection(socket);
    return 0;
}
