// The messages that adb and a device exchange.
#pragma once

#include "Connection.h"

#include <array>
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

// From this version on, both sides leave the check sum of a payload at zero and do not look at it.
constexpr std::uint32_t ADB_VERSION = 0x01000001;

// What either side may announce at most as the payload that it takes; a longer one is refused unread.
constexpr std::uint32_t ADB_MAX_PAYLOAD = 1024 * 1024;

struct SAdbHeader
{
    std::uint32_t nCommand; // an EAdbCommand, or one that a later adb knows
    std::uint32_t nArgument0;
    std::uint32_t nArgument1;
    std::uint32_t nPayloadSize;
    std::uint32_t nCheckSum;
};

constexpr std::size_t ADB_HEADER_SIZE = 24;

// Throws CConnectionError when the bytes are no header or announce too long a payload.
SAdbHeader DecodeAdbHeader(std::span<const std::uint8_t, ADB_HEADER_SIZE> bytes);

// Header and payload together, the check sum filled in.
ByteVector EncodeAdbMessage(EAdbCommand command, std::uint32_t nArgument0, std::uint32_t nArgument1, ByteView payload);

struct SAdbMessage
{
    SAdbHeader header;
    ByteVector payload;

    bool Is(EAdbCommand command) const
    {
        return header.nCommand == static_cast<std::uint32_t>(command);
    }

    // Whether the check sum fits the payload.
    bool AddsUp() const;
};

// Throws CConnectionError as DecodeAdbHeader does. Leaves the check sum to the caller, who knows whether it is in use.
SAdbMessage ReadAdbMessage(CConnection& connection);
