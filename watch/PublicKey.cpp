#include "PublicKey.h"

#include "Bytes.h"
#include "Log.h"

#include <algorithm>
#include <cstddef>
#include <openssl/base64.h>
#include <openssl/bn.h>
#include <openssl/evp.h>
#include <openssl/rsa.h>

namespace {

// The structure that adb encodes: number of 32-bit words of the modulus, a Montgomery constant, the modulus, another
// Montgomery constant of the same size, the exponent; all little endian.
constexpr std::size_t MODULUS_SIZE = std::tuple_size_v<decltype(SPublicKey::modulus)>;
constexpr std::size_t MODULUS_AT = 8;
constexpr std::size_t EXPONENT_AT = MODULUS_AT + 2 * MODULUS_SIZE;
constexpr std::size_t STRUCTURE_SIZE = EXPONENT_AT + 4;

std::uint32_t LittleEndianAt(ByteView bytes, std::size_t nAt)
{
    return static_cast<std::uint32_t>(bytes[nAt]) | static_cast<std::uint32_t>(bytes[nAt + 1]) << 8 |
           static_cast<std::uint32_t>(bytes[nAt + 2]) << 16 | static_cast<std::uint32_t>(bytes[nAt + 3]) << 24;
}

} // namespace

std::optional<SAdbKey> ParseAdbKey(std::string_view text)
{
    const std::string_view base64 = text.substr(0, text.find(' '));
    const std::string_view name = text.substr(std::min(base64.size() + 1, text.size()));

    std::size_t nDecoded = 0;
    ByteVector structure(base64.size());
    if (!EVP_DecodeBase64(structure.data(), &nDecoded, structure.size(), BytesOf(base64).data(), base64.size()) ||
        nDecoded != STRUCTURE_SIZE || LittleEndianAt(structure, 0) != MODULUS_SIZE / 4) {
        return std::nullopt;
    }
    SAdbKey result{{}, std::string(base64), Printable(name)};
    std::reverse_copy(structure.begin() + MODULUS_AT, structure.begin() + MODULUS_AT + MODULUS_SIZE,
                      result.key.modulus.begin());
    result.key.nExponent = LittleEndianAt(structure, EXPONENT_AT);
    return result;
}

std::optional<SPublicKey> PublicKeyOf(X509* certificate)
{
    const bssl::UniquePtr<EVP_PKEY> key(X509_get_pubkey(certificate));
    const RSA* rsa = key ? EVP_PKEY_get0_RSA(key.get()) : nullptr;
    SPublicKey result{};
    if (!rsa || RSA_bits(rsa) != MODULUS_SIZE * 8 || BN_num_bits(RSA_get0_e(rsa)) > 32 ||
        !BN_bn2bin_padded(result.modulus.data(), result.modulus.size(), RSA_get0_n(rsa))) {
        return std::nullopt;
    }
    result.nExponent = static_cast<std::uint32_t>(BN_get_word(RSA_get0_e(rsa)));
    return result;
}
