// The TCP probe: does a connection that was started stand? Nothing is sent over it.
#pragma once

#include "net/Progress.h"
#include "net/Socket.h"

enum TCP_OUTCOME
{
    TCP_CONNECTED,
    TCP_NOT_CONNECTED, // it failed or takes longer
    TCP_FAILED,        // it cannot be polled
};

// Polls the connection of a non-blocking socket until it stands, up to seven times: 200 milliseconds of pause, then up
// to 2 seconds. One that failed is polled again.
TCP_OUTCOME WaitUntilConnected(const CSocket& socket, CProgress& progress);
