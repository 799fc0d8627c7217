#include "Connection.h"

#include "RecordInput.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <fcntl.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <openssl/err.h>
#include <poll.h>
#include <sys/socket.h>

namespace {

using Clock = std::chrono::steady_clock;

// A computer that lost its network sends no farewell. The probes end its connection after half a minute, without them
// the silence of a computer that is merely idle could not be told from it.
constexpr int PROBE_AFTER_SECONDS = 15;
constexpr int PROBE_EVERY_SECONDS = 5;
constexpr int PROBES = 3;

void SetOption(int fd, int nLevel, int nOption, int nValue)
{
    setsockopt(fd, nLevel, nOption, &nValue, sizeof nValue);
}

int ChunkOf(std::size_t nSize)
{
    return static_cast<int>(std::min<std::size_t>(nSize, INT_MAX));
}

std::string TlsFault()
{
    const char* szReason = ERR_reason_error_string(ERR_peek_error());
    return std::string("TLS: ") + (szReason ? szReason : "failed");
}

} // namespace

CConnection::CConnection(CFileDescriptor socket, const CStopSignal& stop) : m_socket(std::move(socket)), m_stop(stop)
{
    const int fd = m_socket.Get();
    fcntl(fd, F_SETFL, fcntl(fd, F_GETFL) | O_NONBLOCK);
    SetOption(fd, IPPROTO_TCP, TCP_NODELAY, 1);
    SetOption(fd, SOL_SOCKET, SO_KEEPALIVE, 1);
    SetOption(fd, IPPROTO_TCP, TCP_KEEPIDLE, PROBE_AFTER_SECONDS);
    SetOption(fd, IPPROTO_TCP, TCP_KEEPINTVL, PROBE_EVERY_SECONDS);
    SetOption(fd, IPPROTO_TCP, TCP_KEEPCNT, PROBES);
}

void CConnection::Allow(std::optional<std::chrono::milliseconds> time)
{
    m_deadline.reset();
    if (time) {
        m_deadline = Clock::now() + *time;
    }
}

void CConnection::StartTls(SSL_CTX* context, CertificateJudge judge, ByteView announcement)
{
    m_judge = std::move(judge);
    m_ssl.reset(SSL_new(context));
    bssl::UniquePtr<BIO> input = OpenRecordInput(m_socket.Get(), announcement);
    if (!m_ssl || !input || !SSL_set_wfd(m_ssl.get(), m_socket.Get())) {
        throw CConnectionError(TlsFault());
    }
    SSL_set0_rbio(m_ssl.get(), input.release());
    SSL_set_app_data(m_ssl.get(), this);
    SSL_set_custom_verify(m_ssl.get(), SSL_VERIFY_PEER | SSL_VERIFY_FAIL_IF_NO_PEER_CERT, JudgeCertificate);
    try {
        Perform(POLLIN, [this] { return SSL_accept(m_ssl.get()); });
    } catch (const CStopping&) {
        throw;
    } catch (const CConnectionError&) {
        if (m_bRefused) {
            throw CKeyRefused();
        }
        throw;
    }
}

ByteVector CConnection::ExportKeyingMaterial(std::string_view label, std::size_t nSize) const
{
    ByteVector material(nSize);
    if (!SSL_export_keying_material(m_ssl.get(), material.data(), nSize, label.data(), label.size(), nullptr, 0, 0)) {
        throw CConnectionError(TlsFault());
    }
    return material;
}

std::uint8_t CConnection::WaitForData()
{
    std::uint8_t byte = 0;
    if (m_ssl) {
        Perform(POLLIN, [&] { return SSL_peek(m_ssl.get(), &byte, 1); });
    } else {
        Perform(POLLIN, [&] { return static_cast<int>(recv(m_socket.Get(), &byte, 1, MSG_PEEK)); });
    }
    return byte;
}

void CConnection::Read(std::span<std::uint8_t> buffer)
{
    while (!buffer.empty()) {
        buffer = buffer.subspan(Perform(POLLIN, [&] {
            return m_ssl ? SSL_read(m_ssl.get(), buffer.data(), ChunkOf(buffer.size()))
                         : static_cast<int>(recv(m_socket.Get(), buffer.data(), buffer.size(), 0));
        }));
    }
}

void CConnection::Write(ByteView bytes)
{
    while (!bytes.empty()) {
        bytes = bytes.subspan(Perform(POLLOUT, [&] {
            return m_ssl ? SSL_write(m_ssl.get(), bytes.data(), ChunkOf(bytes.size()))
                         : static_cast<int>(send(m_socket.Get(), bytes.data(), bytes.size(), MSG_NOSIGNAL));
        }));
    }
}

void CConnection::Pause(std::chrono::milliseconds time)
{
    pollfd stop{m_stop.Descriptor(), POLLIN, 0};
    if (poll(&stop, 1, static_cast<int>(time.count())) > 0) {
        throw CStopping();
    }
}

void CConnection::SayGoodbye()
{
    if (m_ssl) {
        SSL_shutdown(m_ssl.get());
        ERR_clear_error();
    }
}

// Repeats a call that would block until it gets somewhere. TLS knows itself what to wait for; in the clear it is
// `nEvents`.
template<class Call>
std::size_t CConnection::Perform(short nEvents, Call call)
{
    for (;;) {
        CheckTime();
        ERR_clear_error();
        const int nResult = call();
        if (nResult > 0) {
            return static_cast<std::size_t>(nResult);
        }
        Wait(m_ssl ? TlsEvents(nResult) : PlainEvents(nResult, nEvents));
    }
}

short CConnection::TlsEvents(int nResult) const
{
    switch (SSL_get_error(m_ssl.get(), nResult)) {
    case SSL_ERROR_WANT_READ:
        return POLLIN;
    case SSL_ERROR_WANT_WRITE:
        return POLLOUT;
    case SSL_ERROR_ZERO_RETURN:
    case SSL_ERROR_SYSCALL: // adb leaves without a goodbye
        throw CPeerClosed();
    default:
        throw CConnectionError(TlsFault());
    }
}

short CConnection::PlainEvents(int nResult, short nEvents)
{
    if (nResult == 0 || (errno != EAGAIN && errno != EINTR)) {
        throw CPeerClosed();
    }
    return nEvents;
}

// A peer that never lets a call block must not escape the clock.
void CConnection::CheckTime() const
{
    if (m_stop.IsRaised()) {
        throw CStopping();
    }
    if (m_deadline && Clock::now() >= *m_deadline) {
        throw CConnectionError("timed out");
    }
}

void CConnection::Wait(short nEvents)
{
    using std::chrono::milliseconds;
    int nTime = -1;
    if (m_deadline) {
        const auto left = std::chrono::ceil<milliseconds>(*m_deadline - Clock::now());
        nTime = static_cast<int>(std::clamp<milliseconds::rep>(left.count(), 0, INT_MAX));
    }
    pollfd waits[] = {{m_socket.Get(), nEvents, 0}, {m_stop.Descriptor(), POLLIN, 0}};
    poll(waits, std::size(waits), nTime);
}

ssl_verify_result_t CConnection::JudgeCertificate(SSL* ssl, std::uint8_t* pnAlert)
{
    auto* self = static_cast<CConnection*>(SSL_get_app_data(ssl));
    const bssl::UniquePtr<X509> certificate(SSL_get_peer_certificate(ssl));
    if (self->m_judge(certificate.get())) {
        return ssl_verify_ok;
    }
    self->m_bRefused = true;
    *pnAlert = SSL_AD_CERTIFICATE_UNKNOWN;
    return ssl_verify_invalid;
}
