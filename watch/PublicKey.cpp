#include "PublicKey.h"

#include "Bytes.h"

#include <algorithm>
#include <openssl/base64.h>
#include <openssl/bn.h>
#include <openssl/evp.h>
#include <openssl/rsa.h>
#include <stdexcept>

namespace {

// The structure that adb encodes: number of 32-bit words of the modulus, a Montgomery constant, the modulus, another
// Montgomery constant of the same size, the exponent; all little endian.
constexpr std::size_t MODULUS_SIZE = std::tuple_size_v<PublicKey>;
constexpr std::size_t MODULUS_AT = 8;
constexpr std::size_t STRUCTURE_SIZE = MODULUS_AT + (2 * MODULUS_SIZE) + 4;

} // namespace

SAdbKey ParseAdbKey(std::string_view text)
{
    const std::string_view base64 = text.substr(0, text.find(' '));
    std::size_t nDecoded = 0;
    ByteVector structure(base64.size());
    if (!EVP_DecodeBase64(structure.data(), &nDecoded, structure.size(), BytesOf(base64).data(), base64.size()) ||
        nDecoded != STRUCTURE_SIZE) {
        throw std::runtime_error("not a key of adb's");
    }
    SAdbKey result{{}, std::string(text.substr(std::min(base64.size() + 1, text.size())))};
    std::reverse_copy(structure.begin() + MODULUS_AT, structure.begin() + MODULUS_AT + MODULUS_SIZE,
                      result.key.begin());
    return result;
}

PublicKey PublicKeyOf(X509* certificate)
{
    const bssl::UniquePtr<EVP_PKEY> key(X509_get_pubkey(certificate));
    const RSA* rsa = key ? EVP_PKEY_get0_RSA(key.get()) : nullptr;
    PublicKey result{};
    if (rsa) {
        BN_bn2bin_padded(result.data(), result.size(), RSA_get0_n(rsa));
    }
    return result;
}
