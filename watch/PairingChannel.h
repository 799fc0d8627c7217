// What turns a six-digit code into an encrypted channel.
#pragma once

#include "Connection.h"

#include <openssl/aead.h>
#include <openssl/curve25519.h>
#include <optional>
#include <string>

// What one side tells the other about itself.
enum class EPeerInfo : std::uint8_t
{
    ComputerKey = 0,
    DeviceName = 1,
};

// One end of the channel over which a computer and a device pair. Both ends reach the same key only when both know the
// code and both ends of the TLS connection are theirs: a stranger in between has another TLS connection to each side,
// hence other keying material.
class CPairingChannel
{
public:
    // Agrees with the other end on a key; the device is Bob. Throws CConnectionError for everything that is not the
    // protocol, as Receive does. A wrong code shows only there.
    CPairingChannel(CConnection& connection, spake2_role_t role, std::string_view code);

    // To be called once, and Receive too: each direction has one nonce.
    void Send(EPeerInfo type, std::string_view text);

    // The text of the other end; nothing when it was sealed with another key.
    std::optional<std::string> Receive();

private:
    CConnection& m_connection;
    bssl::ScopedEVP_AEAD_CTX m_aead;
};
