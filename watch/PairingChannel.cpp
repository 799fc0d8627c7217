#include "PairingChannel.h"

#include <array>
#include <openssl/digest.h>
#include <openssl/hkdf.h>

namespace {

using namespace std::string_view_literals;

// These count with their terminating zero; the label of the key without one.
constexpr std::string_view CLIENT_NAME = "adb pair client\0"sv;
constexpr std::string_view DEVICE_NAME = "adb pair server\0"sv;
constexpr std::string_view KEY_MATERIAL_LABEL = "adb-label\0"sv;
constexpr std::string_view KEY_LABEL = "adb pairing_auth aes-128-gcm key";

constexpr std::size_t KEY_MATERIAL_SIZE = 64;
constexpr std::size_t KEY_SIZE = 16;
constexpr std::size_t SEAL_SIZE = 16; // what sealing adds

// A type byte, then text that ends with a zero, then anything.
constexpr std::size_t PEER_INFO_SIZE = 8192;

// The little endian number of a message; there is only the first.
constexpr std::array<std::uint8_t, 12> NONCE{};

enum class EPacket : std::uint8_t
{
    Agreement = 0,
    PeerInfo = 1,
};

ByteVector PacketHeader(EPacket type, std::size_t nSize)
{
    constexpr std::uint8_t VERSION = 1;
    ByteVector header = {VERSION, static_cast<std::uint8_t>(type)};
    for (int nShift = 24; nShift >= 0; nShift -= 8) {
        header.push_back(static_cast<std::uint8_t>(nSize >> nShift));
    }
    return header;
}

void WritePacket(CConnection& connection, EPacket type, ByteView payload)
{
    ByteVector packet = PacketHeader(type, payload.size());
    packet.insert(packet.end(), payload.begin(), payload.end());
    connection.Write(packet);
}

// Both kinds of packet have one size only.
ByteVector ReadPacket(CConnection& connection, EPacket type, std::size_t nSize)
{
    const ByteVector expected = PacketHeader(type, nSize);
    ByteVector header(expected.size());
    connection.Read(header);
    if (header != expected) {
        throw CConnectionError("unexpected packet");
    }
    ByteVector payload(nSize);
    connection.Read(payload);
    return payload;
}

} // namespace

CPairingChannel::CPairingChannel(CConnection& connection, spake2_role_t role, std::string_view code)
    : m_connection(connection)
{
    ByteVector password = connection.ExportKeyingMaterial(KEY_MATERIAL_LABEL, KEY_MATERIAL_SIZE);
    password.insert(password.begin(), code.begin(), code.end());
    const ByteView mine = BytesOf(role == spake2_role_bob ? DEVICE_NAME : CLIENT_NAME);
    const ByteView theirs = BytesOf(role == spake2_role_bob ? CLIENT_NAME : DEVICE_NAME);
    const bssl::UniquePtr<SPAKE2_CTX> spake(
        SPAKE2_CTX_new(role, mine.data(), mine.size(), theirs.data(), theirs.size()));
    ByteVector message(SPAKE2_MAX_MSG_SIZE);
    std::size_t nSize = 0;
    SPAKE2_generate_msg(spake.get(), message.data(), &nSize, message.size(), password.data(), password.size());
    WritePacket(connection, EPacket::Agreement, message);

    message = ReadPacket(connection, EPacket::Agreement, message.size());
    std::array<std::uint8_t, SPAKE2_MAX_KEY_SIZE> secret{};
    std::array<std::uint8_t, KEY_SIZE> key{};
    if (!SPAKE2_process_msg(spake.get(), secret.data(), &nSize, secret.size(), message.data(), message.size()) ||
        !HKDF(key.data(), key.size(), EVP_sha256(), secret.data(), nSize, nullptr, 0, BytesOf(KEY_LABEL).data(),
              KEY_LABEL.size()) ||
        !EVP_AEAD_CTX_init(m_aead.get(), EVP_aead_aes_128_gcm(), key.data(), key.size(), SEAL_SIZE, nullptr)) {
        throw CConnectionError("no agreement");
    }
}

void CPairingChannel::Send(EPeerInfo type, std::string_view text)
{
    ByteVector info = {static_cast<std::uint8_t>(type)};
    info.insert(info.end(), text.begin(), text.end());
    info.resize(PEER_INFO_SIZE);
    ByteVector sealed(PEER_INFO_SIZE + SEAL_SIZE);
    std::size_t nSize = 0;
    EVP_AEAD_CTX_seal(m_aead.get(), sealed.data(), &nSize, sealed.size(), NONCE.data(), NONCE.size(), info.data(),
                      info.size(), nullptr, 0);
    WritePacket(m_connection, EPacket::PeerInfo, sealed);
}

std::optional<std::string> CPairingChannel::Receive()
{
    const ByteVector sealed = ReadPacket(m_connection, EPacket::PeerInfo, PEER_INFO_SIZE + SEAL_SIZE);
    ByteVector info(sealed.size());
    std::size_t nSize = 0;
    if (!EVP_AEAD_CTX_open(m_aead.get(), info.data(), &nSize, info.size(), NONCE.data(), NONCE.size(), sealed.data(),
                           sealed.size(), nullptr, 0)) {
        return std::nullopt;
    }
    const std::string_view text = TextOf(info).substr(1);
    return std::string(text.substr(0, text.find('\0')));
}
