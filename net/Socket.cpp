#include "net/Socket.h"

CSocket::~CSocket()
{
    if (m_socket != INVALID_SOCKET && closesocket(m_socket) == SOCKET_ERROR) {
        const int nError = WSAGetLastError();
        MessageBoxW(nullptr, L"~CSocket()", L"WSA Error", MB_OK);
        ExitProcess(static_cast<UINT>(nError));
    }
}

bool CSocket::Socket()
{
    m_socket = socket(AF_INET, SOCK_STREAM, IPPROTO_TCP);
    return m_socket != INVALID_SOCKET;
}

int CSocket::Ioctlsocket(u_long nNonBlocking)
{
    return ioctlsocket(m_socket, static_cast<long>(FIONBIO), &nNonBlocking);
}

int CSocket::Connect(const SOCKADDR_IN* pAddress)
{
    return connect(m_socket, reinterpret_cast<const SOCKADDR*>(pAddress), sizeof(*pAddress));
}

int CSocket::Shutdown()
{
    return shutdown(m_socket, SD_BOTH);
}

int CSocket::CloseSocket()
{
    const int nResult = closesocket(m_socket);
    if (nResult != SOCKET_ERROR) {
        m_socket = INVALID_SOCKET;
    }
    return nResult;
}
