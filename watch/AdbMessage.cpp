#include "AdbMessage.h"

#include <array>
#include <format>
#include <numeric>

namespace {
constexpr std::size_t HEADER_SIZE = 24;
}

ByteVector EncodeAdbMessage(EAdbCommand command, std::uint32_t nArgument0, std::uint32_t nArgument1, ByteView payload)
{
    const auto nCommand = static_cast<std::uint32_t>(command);
    const auto nCheckSum = std::accumulate(payload.begin(), payload.end(), std::uint32_t{0});
    ByteVector message;
    message.reserve(HEADER_SIZE + payload.size());
    for (const std::uint32_t nWord :
         {nCommand, nArgument0, nArgument1, static_cast<std::uint32_t>(payload.size()), nCheckSum, ~nCommand}) {
        for (int nShift = 0; nShift < 32; nShift += 8) {
            message.push_back(static_cast<std::uint8_t>(nWord >> nShift));
        }
    }
    message.insert(message.end(), payload.begin(), payload.end());
    return message;
}

SAdbMessage ReadAdbMessage(CConnection& connection)
{
    std::array<std::uint8_t, HEADER_SIZE> bytes{};
    connection.Read(bytes);
    std::array<std::uint32_t, HEADER_SIZE / 4> words{};
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        words[i / 4] |= static_cast<std::uint32_t>(bytes[i]) << (8 * (i % 4));
    }
    const auto [nCommand, nArgument0, nArgument1, nPayloadSize, nCheckSum, nMagic] = words;
    if (nMagic != ~nCommand) {
        throw CConnectionError(
            std::format("not an adb message: {:02x} {:02x} {:02x} {:02x}", bytes[0], bytes[1], bytes[2], bytes[3]));
    }
    SAdbMessage message{static_cast<EAdbCommand>(nCommand), nArgument0, nArgument1, nCheckSum,
                        ByteVector(nPayloadSize)};
    connection.Read(message.payload);
    return message;
}
