// Owner of one TCP socket. Each operation is the Winsock call of its name on that socket. All but Socket
// return what that call returns; the reason of a failure is in WSAGetLastError.
#pragma once

#include "app/ground/Platform.h"

class CSocket
{
public:
    CSocket() = default;
    CSocket(const CSocket&) = delete;
    CSocket& operator=(const CSocket&) = delete;

    // Closes a socket that is still open. When that fails, ends the process with the reason as exit code,
    // after a box without owner.
    virtual ~CSocket();

    // Opens an IPv4 stream socket. False on failure.
    bool Socket();

    // Sets the socket to blocking (0) or non-blocking (1) mode.
    int Ioctlsocket(u_long nNonBlocking);

    // Starts or makes a connection to an address in network order.
    int Connect(const SOCKADDR_IN* pAddress);

    // Ends both directions of the connection.
    int Shutdown();

    // Closes the socket; after success there is none any more.
    int CloseSocket();

    SOCKET m_socket = INVALID_SOCKET;
};
