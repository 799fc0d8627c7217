// The ICMP probe: does anything answer echo requests at an address?
#pragma once

#include "net/IcmpEcho.h"
#include "net/Progress.h"

enum ICMP_OUTCOME
{
    ICMP_ANSWERED,
    ICMP_NO_ANSWER,
    ICMP_NO_NETWORK, // this computer reaches no network, host, protocol or port
    ICMP_FAILED,     // a request failed for any other reason
};

struct ICMP_PROBE_RESULT
{
    ICMP_OUTCOME nOutcome;
    DWORD dwError; // the request's own, for ICMP_NO_NETWORK and ICMP_FAILED
};

// Sends up to six requests to an address in network order, about a second each when nothing answers, one at once after
// the other. Only a good reply from the address itself is an answer; a failure other than the silence ends the probe.
ICMP_PROBE_RESULT RunIcmpProbe(CIcmpEcho& icmp, IPAddr destination, CProgress& progress);
