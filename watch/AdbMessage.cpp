#include "AdbMessage.h"

#include <format>
#include <numeric>

namespace {

std::uint32_t CheckSumOf(ByteView payload)
{
    return std::accumulate(payload.begin(), payload.end(), std::uint32_t{0});
}

} // namespace

SAdbHeader DecodeAdbHeader(std::span<const std::uint8_t, ADB_HEADER_SIZE> bytes)
{
    std::array<std::uint32_t, ADB_HEADER_SIZE / 4> words{};
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        words[i / 4] |= static_cast<std::uint32_t>(bytes[i]) << (8 * (i % 4));
    }
    const auto [nCommand, nArgument0, nArgument1, nPayloadSize, nCheckSum, nMagic] = words;
    if (nMagic != ~nCommand) {
        throw CConnectionError(
            std::format("not an adb message: {:02x} {:02x} {:02x} {:02x}", bytes[0], bytes[1], bytes[2], bytes[3]));
    }
    if (nPayloadSize > ADB_MAX_PAYLOAD) {
        throw CConnectionError(std::format("a message announced {} bytes", nPayloadSize));
    }
    return {nCommand, nArgument0, nArgument1, nPayloadSize, nCheckSum};
}

ByteVector EncodeAdbMessage(EAdbCommand command, std::uint32_t nArgument0, std::uint32_t nArgument1, ByteView payload)
{
    const auto nCommand = static_cast<std::uint32_t>(command);
    const std::uint32_t words[] = {
        nCommand, nArgument0, nArgument1, static_cast<std::uint32_t>(payload.size()), CheckSumOf(payload), ~nCommand};
    ByteVector message;
    message.reserve(ADB_HEADER_SIZE + payload.size());
    for (const std::uint32_t nWord : words) {
        for (int nShift = 0; nShift < 32; nShift += 8) {
            message.push_back(static_cast<std::uint8_t>(nWord >> nShift));
        }
    }
    message.insert(message.end(), payload.begin(), payload.end());
    return message;
}

bool SAdbMessage::AddsUp() const
{
    return header.nCheckSum == CheckSumOf(payload);
}

SAdbMessage ReadAdbMessage(CConnection& connection)
{
    std::array<std::uint8_t, ADB_HEADER_SIZE> bytes{};
    connection.Read(bytes);
    SAdbMessage message{DecodeAdbHeader(bytes), {}};
    message.payload.resize(message.header.nPayloadSize);
    connection.Read(message.payload);
    return message;
}
