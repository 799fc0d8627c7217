#include "PairingSession.h"

#include "PairingCipher.h"

#include <algorithm>
#include <array>
#include <format>

namespace {

using namespace std::string_view_literals;

constexpr std::string_view KEY_MATERIAL_LABEL = "adb-label\0"sv;
constexpr std::size_t KEY_MATERIAL_SIZE = 64;

constexpr std::uint8_t PACKET_VERSION = 1;
constexpr std::size_t PACKET_HEADER_SIZE = 6;

enum class EPacket : std::uint8_t
{
    Agreement = 0,
    PeerInfo = 1,
};

// A type byte, then text that ends with a zero, then anything.
constexpr std::size_t PEER_INFO_SIZE = 8192;

enum class EPeerInfo : std::uint8_t
{
    ComputerKey = 0,
    DeviceName = 1,
};

void WritePacket(CConnection& connection, EPacket type, ByteView payload)
{
    ByteVector packet = {PACKET_VERSION, static_cast<std::uint8_t>(type)};
    for (int nShift = 24; nShift >= 0; nShift -= 8) {
        packet.push_back(static_cast<std::uint8_t>(payload.size() >> nShift));
    }
    packet.insert(packet.end(), payload.begin(), payload.end());
    connection.Write(packet);
}

// Both kinds of packet have one size only, so a longer one is never taken in.
ByteVector ReadPacket(CConnection& connection, EPacket type, std::size_t nSize)
{
    std::array<std::uint8_t, PACKET_HEADER_SIZE> header{};
    connection.Read(header);
    std::size_t nAnnounced = 0;
    for (std::size_t i = 2; i < header.size(); ++i) {
        nAnnounced = nAnnounced << 8 | header[i];
    }
    if (header[0] != PACKET_VERSION || header[1] != static_cast<std::uint8_t>(type) || nAnnounced != nSize) {
        throw CConnectionError(
            std::format("unexpected packet, version {} type {} of {} bytes", header[0], header[1], nAnnounced));
    }
    ByteVector payload(nSize);
    connection.Read(payload);
    return payload;
}

ByteVector PeerInfoOf(const std::string& szName)
{
    ByteVector info = {static_cast<std::uint8_t>(EPeerInfo::DeviceName)};
    info.insert(info.end(), szName.begin(), szName.end());
    info.resize(PEER_INFO_SIZE);
    return info;
}

SAdbKey KeyIn(const ByteVector& peerInfo)
{
    const std::string_view text = TextOf(ByteView(peerInfo).subspan(1));
    std::optional<SAdbKey> key = ParseAdbKey(text.substr(0, text.find('\0')));
    if (peerInfo[0] != static_cast<std::uint8_t>(EPeerInfo::ComputerKey) || !key) {
        throw CConnectionError("the computer sent no key");
    }
    return *std::move(key);
}

} // namespace

void PairWithComputer(CConnection& connection, SSL_CTX* tls, const SOptions& options, CPairedKeys& keys, CLog& log)
{
    connection.Allow(options.patience);
    connection.StartTls(tls, [](X509*) { return true; });

    CPairingCipher cipher(options.szCode, connection.ExportKeyingMaterial(KEY_MATERIAL_LABEL, KEY_MATERIAL_SIZE));
    WritePacket(connection, EPacket::Agreement, cipher.Message());
    if (!cipher.Agree(ReadPacket(connection, EPacket::Agreement, CPairingCipher::MESSAGE_SIZE))) {
        throw CConnectionError("bad agreement message");
    }

    // The computer proves first that it knows the code; one that guesses learns no more than that it guessed wrong.
    const std::size_t nSealedSize = PEER_INFO_SIZE + CPairingCipher::SEAL_SIZE;
    const std::optional<ByteVector> info = cipher.Open(ReadPacket(connection, EPacket::PeerInfo, nSealedSize));
    if (!info) {
        log.Line("pairing: wrong code");
        return;
    }
    const SAdbKey key = KeyIn(*info);
    try {
        keys.Add(key);
    } catch (const std::runtime_error& error) {
        log.Line("pairing: not remembered: {}", error.what());
    }
    WritePacket(connection, EPacket::PeerInfo, cipher.Seal(PeerInfoOf(options.szName)));
    log.Line("pairing: paired {}", key.szName);
}
