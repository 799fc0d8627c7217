#include "net/TcpProbe.h"

namespace {

constexpr int kConnects = 7;
constexpr DWORD kPauseBeforePoll = 200;
constexpr INT kPollTimeout = 2000;

} // namespace

TCP_OUTCOME WaitUntilConnected(const CSocket& socket, CProgress& progress)
{
    for (int nAttempt = 1; nAttempt <= kConnects; ++nAttempt) {
        progress.OnAttempt(nAttempt, kConnects);
        Sleep(kPauseBeforePoll);

        WSAPOLLFD poll = {};
        poll.fd = socket.m_socket;
        poll.events = POLLWRNORM;
        const int nReady = WSAPoll(&poll, 1, kPollTimeout);
        if (nReady == SOCKET_ERROR) {
            return TCP_FAILED;
        }
        if (nReady >= 1 && (poll.revents & POLLERR) == 0) {
            return TCP_CONNECTED;
        }
    }
    return TCP_NOT_CONNECTED;
}
