// The TCP probe of the wireless debugging page: does the watch accept a connection on the port that
// the user typed? Nothing is sent over it.

#include "net/Socket.h"
#include "net/WinSockHelper.h"
#include "wizard/WirelessDebuggingOnPage.h"

namespace {

constexpr int kAttempts = 7;
constexpr DWORD kPauseBeforePoll = 200;
constexpr INT kPollTimeout = 2000;

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

void ReportConnectError(HWND hwndPage)
{
    ReportWsaError(hwndPage, L"CWirelessDebuggingOnPage::OnNotify_PSN_WIZNEXT_TcpConnect() > socket.Connect()");
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

// Polls the started connection until it stands. False when it failed or never stood.
bool WaitUntilConnected(CSocket& socket, HWND hwndPage, const SOCKADDR_IN* pAddress, HWND hwndStatus)
{
    CStringW szAddress;
    CWinSockHelper::AddressToString(reinterpret_cast<const SOCKADDR*>(pAddress), szAddress);
    for (int nAttempt = 1; nAttempt <= kAttempts; ++nAttempt) {
        CStringW szStatus;
        szStatus.Format(L"Connecting to %s (%d of %d)", szAddress.GetString(), nAttempt, kAttempts);
        SetWindowTextW(hwndStatus, szStatus);
        Sleep(kPauseBeforePoll);

        WSAPOLLFD poll = {};
        poll.fd = socket.m_socket;
        poll.events = POLLWRNORM;
        const int nReady = WSAPoll(&poll, 1, kPollTimeout);
        if (nReady == SOCKET_ERROR) {
            ReportConnectError(hwndPage);
            return false;
        }
        if (nReady >= 1 && (poll.revents & POLLERR) == 0) {
            return true;
        }
    }
    return false;
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

LRESULT CWirelessDebuggingOnPage::OnNotify_PSN_WIZNEXT_TcpConnect(HWND hwndPage, const SOCKADDR_IN* pAddress,
                                                                  HWND hwndStatus)
{
    CSocket socket;
    OpenNonBlocking(socket, hwndPage);
    if (socket.Connect(pAddress) == SOCKET_ERROR && WSAGetLastError() != WSAEWOULDBLOCK) {
        ReportConnectError(hwndPage);
        return -1;
    }
    if (!WaitUntilConnected(socket, hwndPage, pAddress, hwndStatus)) {
        return -1;
    }
    SetWindowTextW(hwndStatus, L"");
    CloseConnection(socket);
    return 0;
}
