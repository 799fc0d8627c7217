// One TCP connection, in the clear or under TLS, whose waits all end.
#pragma once

#include "Bytes.h"
#include "FileDescriptor.h"
#include "StopSignal.h"

#include <chrono>
#include <functional>
#include <openssl/ssl.h>
#include <optional>
#include <stdexcept>
#include <string>

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

// The peer showed a certificate that the caller of StartTls did not accept.
class CKeyRefused : public CConnectionError
{
public:
    CKeyRefused() : CConnectionError("key refused") {}
};

// The watch is ending.
class CStopping : public CConnectionError
{
public:
    CStopping() : CConnectionError("the watch stops") {}
};

// Used by one thread. Every operation throws a CConnectionError when the peer leaves, the time is up, TLS fails or the
// stop signal is raised; the connection is of no use after that.
class CConnection
{
public:
    // Answers whether a peer that shows this certificate may go on.
    using CertificateJudge = std::function<bool(X509*)>;

    CConnection(CFileDescriptor socket, const CStopSignal& stop);

    // Gives everything that follows this much time in all. Without a time, the peer may stay silent for ever.
    void Allow(std::optional<std::chrono::milliseconds> time);

    // Becomes the TLS server of the connection. The peer must show a certificate; one that the judge refuses makes the
    // peer receive an alert and this call throw CKeyRefused. `announcement` is a message in the clear that the peer may
    // send once, before its hello, between two records, or not at all.
    void StartTls(SSL_CTX* context, CertificateJudge judge, ByteView announcement = {});

    // Keying material of the TLS connection, the same on both sides.
    ByteVector ExportKeyingMaterial(std::string_view label, std::size_t nSize) const;

    // Returns when there is something to read: its first byte, which stays to be read. A peer that leaves instead is a
    // CPeerClosed.
    std::uint8_t WaitForData();

    void Read(std::span<std::uint8_t> buffer);

    void Write(ByteView bytes);

    // Passes time in which nothing is read or written.
    void Pause(std::chrono::milliseconds time);

    // Says goodbye to the peer as TLS wants it, without waiting for an answer.
    void SayGoodbye();

private:
    template<class Call>
    std::size_t Perform(short nEvents, Call call);
    short TlsEvents(int nResult) const;
    static short PlainEvents(int nResult, short nEvents);
    void CheckTime() const;
    void Wait(short nEvents);

    static ssl_verify_result_t JudgeCertificate(SSL* ssl, std::uint8_t* pnAlert);

    CFileDescriptor m_socket;
    const CStopSignal& m_stop;
    bssl::UniquePtr<SSL> m_ssl; // after the socket: it goes first
    CertificateJudge m_judge;
    bool m_bRefused = false;
    std::optional<std::chrono::steady_clock::time_point> m_deadline;
};
