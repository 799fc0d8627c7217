// What turns a six-digit code into an encrypted channel.
#pragma once

#include "Bytes.h"

#include <openssl/aead.h>
#include <openssl/curve25519.h>
#include <optional>
#include <string_view>

// The device's half of a password-authenticated key agreement, and the channel keyed by it. Both sides reach the same
// key only when both know the code and both ends of the TLS connection are theirs: a stranger in between has another
// TLS connection to each side, hence other keying material.
class CPairingCipher
{
public:
    static constexpr std::size_t MESSAGE_SIZE = SPAKE2_MAX_MSG_SIZE;
    static constexpr std::size_t SEAL_SIZE = 16; // what sealing adds

    CPairingCipher(std::string_view code, ByteView keyingMaterial);

    // What the other side needs for the agreement.
    ByteView Message() const
    {
        return m_message;
    }

    // Takes the other side's message; to be called once, before Seal and Open. False when it is not a valid message.
    // A wrong code shows only later, when nothing opens.
    bool Agree(ByteView theirMessage);

    ByteVector Seal(ByteView plain);

    // Nothing when it was not sealed with the same key, as the next message of its direction.
    std::optional<ByteVector> Open(ByteView sealed);

private:
    bssl::UniquePtr<SPAKE2_CTX> m_spake;
    ByteVector m_message;
    bssl::ScopedEVP_AEAD_CTX m_aead;
    std::uint64_t m_nSealed = 0;
    std::uint64_t m_nOpened = 0;
};
