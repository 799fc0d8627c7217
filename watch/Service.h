// What a computer has opened on the device: bytes come in, bytes go out.
#pragma once

#include "Bytes.h"

#include <string>

// Knows nothing of connections: whoever carries the bytes calls Take for what arrives and sends what NextPiece gives.
class CService
{
public:
    CService() = default;
    virtual ~CService() = default;

    CService(const CService&) = delete;
    CService& operator=(const CService&) = delete;

    // Throws CConnectionError when the connection is to break here.
    virtual void Take(ByteView bytes) = 0;

    // The next bytes of the answer, asked for when those before have been acknowledged; none while there is none yet,
    // and none after its end.
    virtual std::string NextPiece() = 0;

    // True after the last piece: the stream is to be closed.
    virtual bool IsDone() const = 0;
};
