#include "tests/unit/wizard/AnsweringWatch.h"

#include <cstring>

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

int OnConnect(const SOCKADDR* pAddress)
{
    const auto& address = *reinterpret_cast<const SOCKADDR_IN*>(pAddress);
    Note("connect " + Dotted(address.sin_addr.s_addr) + ':' + std::to_string(ntohs(address.sin_port)));
    unreplaced::SetLastError(WSAEWOULDBLOCK);
    return SOCKET_ERROR;
}

template<typename Outcome>
Outcome Take(std::vector<Outcome>& outcomes)
{
    const Outcome outcome = outcomes.front();
    if (outcomes.size() > 1) {
        outcomes.erase(outcomes.begin());
    }
    return outcome;
}

} // namespace

AnsweringWatch::AnsweringWatch()
    : m_icmpSendEcho2(Quietly([this](HANDLE, HANDLE, auto, void*, IPAddr destination, void* pRequest, WORD cbRequest,
                                     IP_OPTION_INFORMATION*, void* pReply, DWORD, DWORD) {
          return OnSendEcho(destination, {static_cast<const char*>(pRequest), cbRequest}, pReply);
      })),
      m_connect(Quietly([](SOCKET, const SOCKADDR* pAddress, int) { return OnConnect(pAddress); })),
      m_wsaPoll(Quietly([this](WSAPOLLFD* pPoll, ULONG, INT) { return OnPoll(pPoll); }))
{
}

DWORD AnsweringWatch::OnSendEcho(IPAddr destination, const std::string& strPayload, void* pReply)
{
    Note("ping " + Dotted(destination));
    EXPECT_EQ(strPayload, std::string("Some arbitrary data to send\0", 28));
    const Echo echo = Take(m_echoes);
    std::memset(pReply, 0x33, 92);
    auto& reply = *static_cast<ICMP_ECHO_REPLY*>(pReply);
    reply.Address = echo.pszFrom == nullptr ? destination : MakeAddress(echo.pszFrom, 0).sin_addr.s_addr;
    reply.Status = echo.nStatus;
    unreplaced::SetLastError(echo.dwError);
    return echo.nReplies;
}

int AnsweringWatch::OnPoll(WSAPOLLFD* pPoll)
{
    EXPECT_EQ(pPoll->fd, kSocket);
    EXPECT_EQ(pPoll->events, 0x0010);
    EXPECT_EQ(pPoll->revents, 0);
    const Poll poll = Take(m_polls);
    pPoll->revents = poll.nEvents;
    unreplaced::SetLastError(WSAENETDOWN);
    return poll.nReady;
}
