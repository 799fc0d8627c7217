// One ICMP echo sender: a handle of the system's ICMP interface and the reply buffer that goes with
// it, both reused for all requests of one probe.
#pragma once

#include "app/ground/Platform.h"

#include <iphlpapi.h>

// Needs what iphlpapi.h declares.
#include <icmpapi.h>

#include <memory>

class CIcmpEcho
{
public:
    // A handle that cannot be had shows in the first SendEchoRequest.
    CIcmpEcho();
    CIcmpEcho(const CIcmpEcho&) = delete;
    CIcmpEcho& operator=(const CIcmpEcho&) = delete;
    // Frees the reply, then closes the handle.
    ~CIcmpEcho();

    // Sends one request to an address in network order and waits up to a second. Returns the number
    // of replies, which are then in GetReply; 0 with the reason in GetLastError.
    DWORD SendEchoRequest(IPAddr destination);

    // The first reply of the last successful request.
    const ICMP_ECHO_REPLY& GetReply() const;

private:
    HANDLE hIcmp;
    std::unique_ptr<BYTE[]> pReply;
};
