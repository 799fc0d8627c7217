#include "TlsIdentity.h"

#include <openssl/bn.h>
#include <openssl/evp.h>
#include <openssl/rsa.h>
#include <openssl/x509.h>
#include <stdexcept>

namespace {

constexpr int KEY_BITS = 2048;
constexpr long VALID_SECONDS = 10L * 365 * 24 * 3600;

void Require(bool bDone, const char* szStep)
{
    if (!bDone) {
        throw std::runtime_error(std::string("TLS identity: ") + szStep + " failed");
    }
}

bssl::UniquePtr<EVP_PKEY> MakeKey()
{
    const bssl::UniquePtr<BIGNUM> exponent(BN_new());
    const bssl::UniquePtr<RSA> rsa(RSA_new());
    bssl::UniquePtr<EVP_PKEY> key(EVP_PKEY_new());
    Require(exponent && rsa && key && BN_set_word(exponent.get(), RSA_F4) &&
                RSA_generate_key_ex(rsa.get(), KEY_BITS, exponent.get(), nullptr) &&
                EVP_PKEY_set1_RSA(key.get(), rsa.get()),
            "making the key");
    return key;
}

bssl::UniquePtr<X509> MakeCertificate(EVP_PKEY* key)
{
    bssl::UniquePtr<X509> certificate(X509_new());
    X509* x = certificate.get();
    Require(x && X509_set_version(x, X509_VERSION_3) && ASN1_INTEGER_set(X509_get_serialNumber(x), 1) &&
                X509_gmtime_adj(X509_getm_notBefore(x), 0) && X509_gmtime_adj(X509_getm_notAfter(x), VALID_SECONDS) &&
                X509_set_pubkey(x, key),
            "filling the certificate");
    X509_NAME* name = X509_get_subject_name(x);
    Require(
        X509_NAME_add_entry_by_txt(name, "CN", MBSTRING_ASC, reinterpret_cast<const std::uint8_t*>("Adb"), -1, -1, 0) &&
            X509_set_issuer_name(x, name) && X509_sign(x, key, EVP_sha256()),
        "signing the certificate");
    return certificate;
}

} // namespace

CTlsIdentity::CTlsIdentity() : m_key(MakeKey()), m_certificate(MakeCertificate(m_key.get())) {}

bssl::UniquePtr<SSL_CTX> CTlsIdentity::MakeContext() const
{
    bssl::UniquePtr<SSL_CTX> context(SSL_CTX_new(TLS_method()));
    SSL_CTX* c = context.get();
    Require(c && SSL_CTX_set_min_proto_version(c, TLS1_3_VERSION) && SSL_CTX_set_max_proto_version(c, TLS1_3_VERSION) &&
                SSL_CTX_use_certificate(c, m_certificate.get()) && SSL_CTX_use_PrivateKey(c, m_key.get()),
            "making the context");
    // A resumed session would skip the client's certificate, and with it the question whether its key is trusted.
    SSL_CTX_set_session_cache_mode(c, SSL_SESS_CACHE_OFF);
    SSL_CTX_set_options(c, SSL_OP_NO_TICKET);
    return context;
}
