// The key and the self-signed certificate that one side of a TLS connection shows.
#pragma once

#include <openssl/ssl.h>

// A fresh RSA-2048 identity. Wireless debugging knows peers by their keys, never by a chain of certificates, so
// nothing else about the certificate matters.
class CTlsIdentity
{
public:
    CTlsIdentity();

    // A context for TLS 1.3 alone that shows this identity and leaves the peer's certificate to the connection.
    bssl::UniquePtr<SSL_CTX> MakeContext() const;

    const EVP_PKEY* Key() const
    {
        return m_key.get();
    }

private:
    bssl::UniquePtr<EVP_PKEY> m_key;
    bssl::UniquePtr<X509> m_certificate;
};
