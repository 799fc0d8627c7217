// The messages that adb and a device exchange.
#pragma once

#include "Connection.h"

#include <cstdint>

// Four letters, the first in the lowest byte.
enum class EAdbCommand : std::uint32_t
{
    Connect = 0x4E584E43,      // CNXN
    StartTls = 0x534C5453,     // STLS
    Authenticate = 0x48545541, // AUTH
    Open = 0x4E45504F,         // OPEN
    Okay = 0x59414B4F,         // OKAY
    Write = 0x45545257,        // WRTE
    Close = 0x45534C43,        // CLSE
};

// From this version on, neither side looks at the check sum of a payload.
constexpr std::uint32_t ADB_VERSION = 0x01000001;

// The version in the announcement of TLS.
constexpr std::uint32_t STLS_VERSION = 0x01000000;

// What either side announces as the longest payload that it takes.
constexpr std::uint32_t ADB_MAX_PAYLOAD = 1024 * 1024;

struct SAdbMessage
{
    EAdbCommand command;
    std::uint32_t nArgument0;
    std::uint32_t nArgument1;
    std::uint32_t nCheckSum;
    ByteVector payload;
};

// The check sum is filled in.
ByteVector EncodeAdbMessage(EAdbCommand command, std::uint32_t nArgument0, std::uint32_t nArgument1,
                            ByteView payload = {});

// Throws CConnectionError when what comes is no message. Leaves the check sum to the caller.
SAdbMessage ReadAdbMessage(CConnection& connection);
