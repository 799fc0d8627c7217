#include "PairingCipher.h"

#include <array>
#include <openssl/digest.h>
#include <openssl/hkdf.h>
#include <stdexcept>

namespace {

using namespace std::string_view_literals;

// Both names count with their terminating zero; the label of the key without one.
constexpr std::string_view CLIENT_NAME = "adb pair client\0"sv;
constexpr std::string_view DEVICE_NAME = "adb pair server\0"sv;
constexpr std::string_view KEY_LABEL = "adb pairing_auth aes-128-gcm key";
constexpr std::size_t KEY_SIZE = 16;

void Require(bool bDone, const char* szStep)
{
    if (!bDone) {
        throw std::runtime_error(std::string("pairing cipher: ") + szStep + " failed");
    }
}

using Nonce = std::array<std::uint8_t, 12>;

// Both directions share a key and count from zero; a counter is its nonce, little endian.
Nonce NonceOf(std::uint64_t nCounter)
{
    Nonce nonce{};
    for (std::size_t i = 0; i < sizeof nCounter; ++i) {
        nonce[i] = static_cast<std::uint8_t>(nCounter >> (8 * i));
    }
    return nonce;
}

} // namespace

CPairingCipher::CPairingCipher(std::string_view code, ByteView keyingMaterial)
    : m_spake(SPAKE2_CTX_new(spake2_role_bob, BytesOf(DEVICE_NAME).data(), DEVICE_NAME.size(),
                             BytesOf(CLIENT_NAME).data(), CLIENT_NAME.size())),
      m_message(MESSAGE_SIZE)
{
    ByteVector password(code.begin(), code.end());
    password.insert(password.end(), keyingMaterial.begin(), keyingMaterial.end());
    std::size_t nSize = 0;
    Require(m_spake && SPAKE2_generate_msg(m_spake.get(), m_message.data(), &nSize, m_message.size(), password.data(),
                                           password.size()),
            "making the message");
}

bool CPairingCipher::Agree(ByteView theirMessage)
{
    std::array<std::uint8_t, SPAKE2_MAX_KEY_SIZE> secret{};
    std::size_t nSize = 0;
    if (!SPAKE2_process_msg(m_spake.get(), secret.data(), &nSize, secret.size(), theirMessage.data(),
                            theirMessage.size())) {
        return false;
    }
    std::array<std::uint8_t, KEY_SIZE> key{};
    Require(HKDF(key.data(), key.size(), EVP_sha256(), secret.data(), nSize, nullptr, 0, BytesOf(KEY_LABEL).data(),
                 KEY_LABEL.size()) &&
                EVP_AEAD_CTX_init(m_aead.get(), EVP_aead_aes_128_gcm(), key.data(), key.size(), SEAL_SIZE, nullptr),
            "making the key");
    return true;
}

ByteVector CPairingCipher::Seal(ByteView plain)
{
    const Nonce nonce = NonceOf(m_nSealed++);
    ByteVector sealed(plain.size() + SEAL_SIZE);
    std::size_t nSize = 0;
    Require(EVP_AEAD_CTX_seal(m_aead.get(), sealed.data(), &nSize, sealed.size(), nonce.data(), nonce.size(),
                              plain.data(), plain.size(), nullptr, 0),
            "sealing");
    return sealed;
}

std::optional<ByteVector> CPairingCipher::Open(ByteView sealed)
{
    const Nonce nonce = NonceOf(m_nOpened);
    ByteVector plain(sealed.size());
    std::size_t nSize = 0;
    if (!EVP_AEAD_CTX_open(m_aead.get(), plain.data(), &nSize, plain.size(), nonce.data(), nonce.size(), sealed.data(),
                           sealed.size(), nullptr, 0)) {
        return std::nullopt;
    }
    ++m_nOpened;
    plain.resize(nSize);
    return plain;
}
