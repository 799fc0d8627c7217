// Stands in for a watch in the network: answers the probes of the pages, and keeps to which address
// they went.
#pragma once

#include "tests/kit/Test.h"
#include "tests/unit/net/Sockets.h"

#include <iphlpapi.h>

#include <icmpapi.h>

#include <string>
#include <vector>

// At first the watch answers everything. Each ping leaves "ping 192.168.1.100" in the journal, each
// connection "connect 192.168.1.100:43210".
class AnsweringWatch
{
public:
    AnsweringWatch();
    AnsweringWatch(const AnsweringWatch&) = delete;
    AnsweringWatch& operator=(const AnsweringWatch&) = delete;

    // From now on no ping is answered.
    void FallSilent()
    {
        m_bSilent = true;
    }

    // From now on no connection is accepted.
    void CloseItsPort()
    {
        m_bPortClosed = true;
    }

private:
    DWORD OnSendEcho(IPAddr destination, void* pReply) const;
    int OnConnect(const SOCKADDR* pAddress) const;
    int OnPoll(WSAPOLLFD* pPoll) const;

    Sockets m_sockets;
    bool m_bSilent = false;
    bool m_bPortClosed = false;

    REPLACED(IcmpCreateFile) m_icmpCreateFile;
    REPLACED(IcmpSendEcho2) m_icmpSendEcho2;
    REPLACED(IcmpCloseHandle) m_icmpCloseHandle;
    REPLACED(socket) m_socket;
    REPLACED(ioctlsocket) m_ioctlsocket;
    REPLACED(connect) m_connect;
    REPLACED(WSAPoll) m_wsaPoll;
    REPLACED(shutdown) m_shutdown;
    REPLACED(closesocket) m_closesocket;
};

// "ping …" and the status lines of the ICMP probe for an address that answers none of six pings.
kit::Lines SixPings(const std::string& strAddress);
