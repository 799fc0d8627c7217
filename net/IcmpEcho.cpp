#include "net/IcmpEcho.h"

#include <winternl.h>

namespace {

char g_payload[] = "Some arbitrary data to send";

constexpr DWORD kTimeout = 1000;

// What the system asks for beyond the reply itself: the echoed payload, an ICMP error message and
// an I/O status block.
constexpr DWORD kReplySize = sizeof(ICMP_ECHO_REPLY) + sizeof(g_payload) + 8 + sizeof(IO_STATUS_BLOCK);
static_assert(kReplySize == 92);

} // namespace

CIcmpEcho::CIcmpEcho() : hIcmp(IcmpCreateFile()), pReply(std::make_unique<BYTE[]>(kReplySize)) {}

CIcmpEcho::~CIcmpEcho()
{
    // The order is fixed. Left to itself the buffer would go after this body, and so after the handle.
    pReply.reset();
    if (hIcmp != INVALID_HANDLE_VALUE) {
        IcmpCloseHandle(hIcmp);
    }
}

DWORD CIcmpEcho::SendEchoRequest(IPAddr destination)
{
    return IcmpSendEcho2(hIcmp, nullptr, nullptr, nullptr, destination, g_payload, sizeof(g_payload), nullptr,
                         pReply.get(), kReplySize, kTimeout);
}

const ICMP_ECHO_REPLY& CIcmpEcho::GetReply() const
{
    return *reinterpret_cast<const ICMP_ECHO_REPLY*>(pReply.get());
}
