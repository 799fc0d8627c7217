// One TCP connection, in the clear and then under TLS.
#pragma once

#include "Bytes.h"

#include <functional>
#include <openssl/ssl.h>
#include <stdexcept>
#include <string>
#include <sys/types.h>

// Why a connection cannot go on. The text is for the log.
class CConnectionError : public std::runtime_error
{
    using std::runtime_error::runtime_error;
};

// The peer is gone. At a point where it may leave, this is no fault.
class CPeerClosed : public CConnectionError
{
public:
    CPeerClosed() : CConnectionError("closed by the other side") {}
};

// Used by one thread. Every operation takes the time that the peer takes, and throws a CConnectionError when the peer
// leaves or TLS fails; the connection is of no use after that.
class CConnection
{
public:
    // Answers whether a peer that shows this certificate may go on.
    using CertificateJudge = std::function<bool(X509*)>;

    // The socket stays its owner's. When another thread shuts it down, the peer seems to have left.
    explicit CConnection(int fd) : m_fd(fd) {}

    // Becomes the TLS server of the connection. The peer must show a certificate. False when the judge has refused it,
    // and the peer been told so.
    bool StartTls(SSL_CTX* context, const CertificateJudge& judge);

    // Keying material of the TLS connection, the same on both sides.
    ByteVector ExportKeyingMaterial(std::string_view label, std::size_t nSize) const;

    void Read(std::span<std::uint8_t> buffer);

    void Write(ByteView bytes);

    // Says goodbye to the peer as TLS wants it, without waiting for an answer.
    void SayGoodbye();

protected: // for the tests' computer, which begins TLS as the client
    int m_fd;
    bssl::UniquePtr<SSL> m_ssl; // null in the clear

private:
    std::size_t Require(ssize_t nResult) const;
};
