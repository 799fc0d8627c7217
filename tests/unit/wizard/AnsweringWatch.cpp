#include "tests/unit/wizard/AnsweringWatch.h"

using namespace kit;

namespace {

std::string Dotted(ULONG nAddress)
{
    IN_ADDR address;
    address.s_addr = nAddress;
    WCHAR szAddress[16] = {};
    InetNtopW(AF_INET, &address, szAddress, ARRAYSIZE(szAddress));
    return Narrow(szAddress);
}

} // namespace

AnsweringWatch::AnsweringWatch()
    : m_icmpCreateFile(Returns(reinterpret_cast<HANDLE>(0x1C39))),
      m_icmpSendEcho2([this](HANDLE, HANDLE, auto, void*, IPAddr destination, void*, WORD, IP_OPTION_INFORMATION*,
                             void* pReply, DWORD, DWORD) { return OnSendEcho(destination, pReply); }),
      m_icmpCloseHandle(Returns(TRUE)), m_socket(Returns(SOCKET(0x50C))), m_ioctlsocket(Returns(0)),
      m_connect([this](SOCKET, const SOCKADDR* pAddress, int) { return OnConnect(pAddress); }),
      m_wsaPoll([this](WSAPOLLFD* pPoll, ULONG, INT) { return OnPoll(pPoll); }), m_shutdown(Returns(0)),
      m_closesocket(Returns(0))
{
    m_icmpCreateFile.Optional().Unnoted();
    m_icmpSendEcho2.Optional().Unnoted();
    m_icmpCloseHandle.Optional().Unnoted();
    m_socket.Optional().Unnoted();
    m_ioctlsocket.Optional().Unnoted();
    m_connect.Optional().Unnoted();
    m_wsaPoll.Optional().Unnoted();
    m_shutdown.Optional().Unnoted();
    m_closesocket.Optional().Unnoted();
}

DWORD AnsweringWatch::OnSendEcho(IPAddr destination, void* pReply) const
{
    Note("ping " + Dotted(destination));
    if (m_bSilent) {
        unreplaced::SetLastError(IP_REQ_TIMED_OUT);
        return 0;
    }
    auto& reply = *static_cast<ICMP_ECHO_REPLY*>(pReply);
    reply = {};
    reply.Address = destination;
    return 1;
}

int AnsweringWatch::OnConnect(const SOCKADDR* pAddress) const
{
    const auto& address = *reinterpret_cast<const SOCKADDR_IN*>(pAddress);
    Note("connect " + Dotted(address.sin_addr.s_addr) + ':' + std::to_string(ntohs(address.sin_port)));
    unreplaced::SetLastError(WSAEWOULDBLOCK);
    return SOCKET_ERROR;
}

int AnsweringWatch::OnPoll(WSAPOLLFD* pPoll) const
{
    pPoll->revents = m_bPortClosed ? POLLERR | POLLHUP : POLLWRNORM;
    return 1;
}

Lines SixPings(const std::string& strAddress)
{
    Lines lines;
    for (const char ch : {'1', '2', '3', '4', '5', '6'}) {
        lines.push_back("status \"Pinging " + strAddress + " (" + ch + " of 6)\"");
        lines.push_back("ping " + strAddress);
    }
    return lines;
}
