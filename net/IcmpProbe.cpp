#include "net/IcmpProbe.h"

#include <ipexport.h>

namespace {

constexpr int kPings = 6;

bool IsUnreachable(DWORD dwError)
{
    return dwError == ERROR_NETWORK_UNREACHABLE || dwError == ERROR_HOST_UNREACHABLE ||
           dwError == ERROR_PROTOCOL_UNREACHABLE || dwError == ERROR_PORT_UNREACHABLE;
}

} // namespace

ICMP_PROBE_RESULT RunIcmpProbe(CIcmpEcho& icmp, IPAddr destination, CProgress& progress)
{
    for (int nAttempt = 1; nAttempt <= kPings; ++nAttempt) {
        progress.OnAttempt(nAttempt, kPings);
        if (icmp.SendEchoRequest(destination) != 0) {
            // A router on the way answers too, when it cannot deliver.
            const ICMP_ECHO_REPLY& reply = icmp.GetReply();
            if (reply.Status == IP_SUCCESS && reply.Address == destination) {
                return {ICMP_ANSWERED, NO_ERROR};
            }
            continue;
        }
        const DWORD dwError = GetLastError();
        if (dwError != IP_REQ_TIMED_OUT) {
            return {IsUnreachable(dwError) ? ICMP_NO_NETWORK : ICMP_FAILED, dwError};
        }
    }
    return {ICMP_NO_ANSWER, NO_ERROR};
}
