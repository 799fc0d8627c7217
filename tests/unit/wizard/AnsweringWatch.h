// Stands in for a watch in the network: answers the probes of the pages, and keeps to which address
// they went.
#pragma once

#include "tests/kit/Test.h"
#include "tests/unit/net/Sockets.h"

#include <iphlpapi.h>

#include <icmpapi.h>

#include <string>
#include <vector>

// What one echo request comes to: a number of replies and the first of them, or none and an error.
struct Echo
{
    DWORD nReplies = 1;
    PCWSTR pszFrom = nullptr; // null: the address that was asked
    ULONG nStatus = IP_SUCCESS;
    DWORD dwError = 0;
};

constexpr Echo EchoError(DWORD dwError)
{
    return {0, nullptr, IP_SUCCESS, dwError};
}

constexpr Echo kAnswer = {};
constexpr Echo kSilence = EchoError(11010);

// What one poll of a connection comes to.
struct Poll
{
    int nReady;
    SHORT nEvents;
};

constexpr Poll kTimeout = {0, 0};
constexpr Poll kWritable = {1, POLLWRNORM};
constexpr Poll kRefused = {1, POLLERR | POLLHUP};

const HANDLE kIcmp = reinterpret_cast<HANDLE>(0x1C39);
constexpr SOCKET kSocket = 0x50C;

// What the user is told when no ping is answered.
constexpr PCWSTR kNotFound =
    L"Did not find a watch at the IP address you entered.\n\n"
    L"Please verify your workstation and watch are on the same network. Also verify you entered the correct watch IP "
    L"address.\n\n"
    L"If you entered the correct IP address then \n"
    L"Steps to restart installation:\n"
    L"1. Close this installer program.\n"
    L"2. Power the watch off and then turn it on again.\n"
    L"3. Run the installer program again.\n";

// Each echo request leaves "ping 192.168.1.100" in the journal,
// each connection "connect 192.168.1.100:43210".
class AnsweringWatch
{
public:
    AnsweringWatch();
    AnsweringWatch(const AnsweringWatch&) = delete;
    AnsweringWatch& operator=(const AnsweringWatch&) = delete;

    // The outcomes one after the other, the last one for ever. At first the watch answers everything.
    std::vector<Echo> m_echoes = {kAnswer};
    std::vector<Poll> m_polls = {kWritable};

private:
    DWORD OnSendEcho(IPAddr destination, const std::string& strPayload, void* pReply);
    int OnPoll(WSAPOLLFD* pPoll);

    Sockets m_sockets;

    REPLACED(IcmpCreateFile) m_icmpCreateFile { kit::Quietly(kit::Returns(kIcmp)) };
    REPLACED(IcmpSendEcho2) m_icmpSendEcho2;
    // That the handle cannot be closed is nobody's concern.
    REPLACED(IcmpCloseHandle) m_icmpCloseHandle { kit::Quietly(kit::Returns(FALSE, ERROR_INVALID_HANDLE)) };
    REPLACED(socket) m_socket { kit::Quietly(kit::Returns(kSocket)) };
    REPLACED(ioctlsocket) m_ioctlsocket { kit::Quietly(kit::Returns(0)) };
    REPLACED(connect) m_connect;
    REPLACED(WSAPoll) m_wsaPoll;
    REPLACED(shutdown) m_shutdown { kit::Quietly(kit::Returns(0)) };
    REPLACED(closesocket) m_closesocket { kit::Quietly(kit::Returns(0)) };
};
