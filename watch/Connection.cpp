#include "Connection.h"

#include "RecordInput.h"

#include <openssl/err.h>
#include <sys/socket.h>

namespace {

struct SJudgement
{
    const CConnection::CertificateJudge& judge;
    bool bRefused = false;
};

ssl_verify_result_t JudgeCertificate(SSL* ssl, std::uint8_t* pnAlert)
{
    auto* judgement = static_cast<SJudgement*>(SSL_get_app_data(ssl));
    const bssl::UniquePtr<X509> certificate(SSL_get_peer_certificate(ssl));
    judgement->bRefused = !judgement->judge(certificate.get());
    *pnAlert = SSL_AD_CERTIFICATE_UNKNOWN;
    return judgement->bRefused ? ssl_verify_invalid : ssl_verify_ok;
}

std::string TlsFault()
{
    const char* szReason = ERR_reason_error_string(ERR_peek_error());
    return std::string("TLS: ") + (szReason ? szReason : "failed");
}

} // namespace

bool CConnection::StartTls(SSL_CTX* context, const CertificateJudge& judge)
{
    SJudgement judgement{judge};
    m_ssl.reset(SSL_new(context));
    SSL_set_wfd(m_ssl.get(), m_fd);
    SSL_set0_rbio(m_ssl.get(), OpenRecordInput(m_fd).release());
    SSL_set_app_data(m_ssl.get(), &judgement);
    SSL_set_custom_verify(m_ssl.get(), SSL_VERIFY_PEER | SSL_VERIFY_FAIL_IF_NO_PEER_CERT, JudgeCertificate);
    const int nResult = SSL_accept(m_ssl.get());
    if (!judgement.bRefused) {
        Require(nResult);
    }
    return !judgement.bRefused;
}

ByteVector CConnection::ExportKeyingMaterial(std::string_view label, std::size_t nSize) const
{
    ByteVector material(nSize);
    Require(SSL_export_keying_material(m_ssl.get(), material.data(), nSize, label.data(), label.size(), nullptr, 0, 0));
    return material;
}

void CConnection::Read(std::span<std::uint8_t> buffer)
{
    while (!buffer.empty()) {
        buffer = buffer.subspan(Require(m_ssl ? SSL_read(m_ssl.get(), buffer.data(), static_cast<int>(buffer.size()))
                                              : recv(m_fd, buffer.data(), buffer.size(), 0)));
    }
}

void CConnection::Write(ByteView bytes)
{
    while (!bytes.empty()) {
        bytes = bytes.subspan(Require(m_ssl ? SSL_write(m_ssl.get(), bytes.data(), static_cast<int>(bytes.size()))
                                            : send(m_fd, bytes.data(), bytes.size(), MSG_NOSIGNAL)));
    }
}

void CConnection::SayGoodbye()
{
    if (m_ssl) {
        SSL_shutdown(m_ssl.get());
    }
}

// The result of a call that has succeeded; throws when it has not.
std::size_t CConnection::Require(ssize_t nResult) const
{
    if (nResult > 0) {
        return static_cast<std::size_t>(nResult);
    }
    const int nError = m_ssl ? SSL_get_error(m_ssl.get(), static_cast<int>(nResult)) : SSL_ERROR_SYSCALL;
    if (nError == SSL_ERROR_ZERO_RETURN || nError == SSL_ERROR_SYSCALL) { // adb leaves without a goodbye
        throw CPeerClosed();
    }
    throw CConnectionError(TlsFault());
}
