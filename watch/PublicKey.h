// RSA public keys as adb writes them and as certificates carry them.
#pragma once

#include <array>
#include <cstdint>
#include <openssl/x509.h>
#include <string>
#include <string_view>

// The modulus of an RSA-2048 key, big endian. A computer gives its key as adb text when it pairs and inside a
// certificate when it connects; this is what both have in common.
using PublicKey = std::array<std::uint8_t, 256>;

// A line of the kind that adb keeps in its key files: base64 of the key structure, a blank, the owner's name.
struct SAdbKey
{
    PublicKey key;
    std::string szName;
};

// Throws std::runtime_error when the text is not such a line.
SAdbKey ParseAdbKey(std::string_view text);

// Zeros when the certificate's key is not RSA-2048.
PublicKey PublicKeyOf(X509* certificate);
