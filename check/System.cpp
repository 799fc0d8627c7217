// Calls of the system as the installer makes them, made here.
#include "check/Check.h"
#include "check/Listener.h"
#include "check/Stopping.h"

#include <winsock2.h>

#include <iphlpapi.h>

#include <icmpapi.h>

#include <algorithm>
#include <format>

namespace {

// The installer's payload and the size of its buffer for the answer.
constexpr char kPayload[] = "Some arbitrary data to send";
constexpr DWORD kReplyBytes = 92;

std::wstring Answered(const ICMP_ECHO_REPLY& reply, DWORD nReplies, DWORD dwError)
{
    if (nReplies == 0) {
        return std::format(L"error {}", dwError);
    }
    if (reply.Status != 0) {
        return std::format(L"status {}", reply.Status);
    }
    return reply.Address == htonl(INADDR_LOOPBACK) ? L"an answer from 127.0.0.1" : L"an answer from elsewhere";
}

void Echo(CAnswers& answers)
{
    const HANDLE hIcmp = IcmpCreateFile();
    alignas(ICMP_ECHO_REPLY) unsigned char reply[kReplyBytes] = {};
    char payload[sizeof kPayload];
    std::ranges::copy(kPayload, payload);
    const DWORD nReplies = IcmpSendEcho2(hIcmp, nullptr, nullptr, nullptr, htonl(INADDR_LOOPBACK), payload,
                                         sizeof payload, nullptr, reply, sizeof reply, 1000);
    const DWORD dwError = nReplies == 0 ? GetLastError() : 0;
    const auto* const pReply = reinterpret_cast<const ICMP_ECHO_REPLY*>(reply);
    IcmpCloseHandle(hIcmp);
    answers.Expect(L"system.echo", L"an answer from 127.0.0.1", Answered(*pReply, nReplies, dwError));
    answers.Expect(L"system.echo-room", std::to_wstring(sizeof kPayload),
                   std::to_wstring(nReplies == 0 ? 0 : pReply->DataSize));
}

struct POLLED
{
    int nReady;
    SHORT nEvents;
    ULONGLONG nMilliseconds;
};

// As page 5 asks for a connection, up to seven times.
POLLED Poll(CListener::MANNER nManner)
{
    const CListener listener(nManner);
    const SOCKET socket = ::socket(AF_INET, SOCK_STREAM, IPPROTO_TCP);
    u_long nNonBlocking = 1;
    ioctlsocket(socket, static_cast<long>(FIONBIO), &nNonBlocking);
    const SOCKADDR_IN address = OwnAddress(std::stoi(listener.Port()));
    // NOLINTNEXTLINE(bugprone-unused-return-value): it goes on, and how it went is what is polled
    connect(socket, reinterpret_cast<const SOCKADDR*>(&address), sizeof address);
    const ULONGLONG nStart = GetTickCount64();
    POLLED polled = {};
    for (int n = 0; n < 7 && polled.nReady == 0; ++n) {
        WSAPOLLFD poll = {socket, POLLWRNORM, 0};
        polled.nReady = WSAPoll(&poll, 1, 2000);
        polled.nEvents = poll.revents;
    }
    polled.nMilliseconds = GetTickCount64() - nStart;
    closesocket(socket);
    return polled;
}

std::wstring Describe(const POLLED& polled)
{
    return std::format(L"{} ready, events 0x{:04x}, after {} ms", polled.nReady,
                       static_cast<unsigned>(static_cast<USHORT>(polled.nEvents)), polled.nMilliseconds);
}

} // namespace

void CheckSystem(CHECK& check)
{
    Echo(check.answers);
    const POLLED accepted = Poll(CListener::kStaysOpen);
    check.answers.Tell(L"system.poll", accepted.nReady == 1 && (accepted.nEvents & POLLERR) == 0,
                       L"1 ready without an error", Describe(accepted));
    const POLLED refused = Poll(CListener::kRefuses);
    check.answers.Tell(L"system.poll-refused", refused.nReady == 1 && (refused.nEvents & POLLERR) != 0,
                       L"1 ready with an error", Describe(refused));
}
