// RSA public keys as adb writes them and as certificates carry them.
#pragma once

#include <array>
#include <cstdint>
#include <openssl/x509.h>
#include <optional>
#include <string>
#include <string_view>

// An RSA-2048 public key. A computer gives its key as adb text when it pairs and inside a certificate when it
// connects; modulus and exponent are what both have in common.
struct SPublicKey
{
    std::array<std::uint8_t, 256> modulus; // big endian
    std::uint32_t nExponent;

    bool operator==(const SPublicKey&) const = default;
};

// A line of the kind that adb keeps in its key files: base64 of the key structure, a blank, the owner's name.
struct SAdbKey
{
    SPublicKey key;
    std::string szBase64;
    std::string szName; // printable; empty when the line had none
};

// Nothing when the text is not such a line, or when the structure in it is not an RSA-2048 key.
std::optional<SAdbKey> ParseAdbKey(std::string_view text);

// Nothing when the certificate's key is not RSA-2048.
std::optional<SPublicKey> PublicKeyOf(X509* certificate);
