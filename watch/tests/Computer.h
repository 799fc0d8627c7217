// The computer's side of wireless debugging, for tests: what adb does, written down a second time so that a mistake of
// the watch does not cancel itself out, and able to do it wrong.
#pragma once

#include "Bytes.h"
#include "FileDescriptor.h"
#include "TlsIdentity.h"

#include <functional>
#include <map>
#include <openssl/ssl.h>
#include <optional>
#include <string>

// A TCP connection to 127.0.0.1. Reads end after half a minute at the latest, as if the other side had closed.
class CTestSocket
{
public:
    explicit CTestSocket(std::uint16_t nPort);

    // `afterHello` is sent right behind the first that TLS has to say, `afterHandshake` behind the last of it.
    void StartTls(SSL_CTX* context, ByteView afterHello = {}, ByteView afterHandshake = {});

    // False when the other side has closed.
    bool Write(ByteView bytes);

    // Nothing when the other side closed before so many bytes had come.
    std::optional<ByteVector> Read(std::size_t nSize);

    // Whether nothing more comes than the end of the connection.
    bool IsClosedByPeer();

    // Ends the sending half, as a program does that has said all it had to say.
    void FinishSending();

    SSL* Tls() const
    {
        return m_ssl.get();
    }

private:
    CFileDescriptor m_socket;
    bssl::UniquePtr<SSL> m_ssl;
};

// Deviations from what adb sends when it pairs.
struct SPairingManners
{
    std::function<void(ByteVector& agreement)> alterAgreement = {}; // the packet, header included
    std::function<void(ByteVector& peerInfo)> alterPeerInfo = {};   // before it is sealed
    bool bShowCertificate = true;
};

// A computer with an adb key of its own.
class CComputer
{
public:
    explicit CComputer(std::string szName);

    // The watch's name; nothing when the watch closed the connection instead.
    std::optional<std::string> Pair(std::uint16_t nPort, const std::string& szCode,
                                    const SPairingManners& manners = {}) const;

    // The line of adb's key file.
    std::string KeyLine() const;

    bssl::UniquePtr<SSL_CTX> TlsContext() const
    {
        return m_identity.MakeContext();
    }

private:
    std::string m_szName;
    CTlsIdentity m_identity;
};

constexpr std::uint32_t Letters(const char (&sz)[5])
{
    return static_cast<std::uint32_t>(sz[0]) | static_cast<std::uint32_t>(sz[1]) << 8 |
           static_cast<std::uint32_t>(sz[2]) << 16 | static_cast<std::uint32_t>(sz[3]) << 24;
}

struct STestMessage
{
    std::uint32_t nCommand = 0;
    std::uint32_t nArgument0 = 0;
    std::uint32_t nArgument1 = 0;
    ByteVector payload = {};
    std::optional<std::uint32_t> nCheckSum = {};      // the right one by default
    std::optional<std::uint32_t> nMagic = {};         // the right one by default
    std::optional<std::uint32_t> nAnnouncedSize = {}; // the payload's by default

    ByteVector Encode() const;
};

// The greeting that adb sends first.
STestMessage Greeting(std::uint32_t nVersion = 0x01000001, std::uint32_t nMaxPayload = 1024 * 1024);

// How a watch receives a computer.
enum class EWelcome
{
    Device,    // with its own greeting
    TlsFailed, // let in to TLS and thrown out, or not let in
    Closed,    // not even that
};

// When adb's two threads send the message that announces TLS: before TLS's hello, right behind it, as the last of the
// handshake, or never.
enum class EOrder
{
    MessageFirst,
    HelloFirst,
    HandshakeFirst,
    NoMessage,
};

// A connection to the debugging port.
class CAdbLink
{
public:
    explicit CAdbLink(std::uint16_t nPort) : m_socket(nPort) {}

    EWelcome Connect(const CComputer& computer, const STestMessage& greeting = Greeting(),
                     EOrder order = EOrder::MessageFirst);

    // The device's greeting.
    const std::string& Banner() const
    {
        return m_szBanner;
    }

    bool Send(const STestMessage& message)
    {
        return m_socket.Write(message.Encode());
    }

    // The next message, its check sum and magic verified; nothing when the connection is closed.
    std::optional<STestMessage> Receive();

    // Opens a stream and returns the device's id of it; nothing when the device refuses.
    std::optional<std::uint32_t> Open(std::uint32_t nId, const std::string& szService);

    // Sends part of a package on a stream and waits for the OKAY. False when something else came.
    bool WritePart(std::uint32_t nId, std::uint32_t nTheirId, ByteView part);

    // Collects what the device writes on a stream until it closes the stream, at most `nMost` bytes.
    std::optional<std::string> ReadReply(std::uint32_t nId, std::uint32_t nTheirId, std::size_t nMost = SIZE_MAX);

    // All of an install as adb does it; nothing when the connection broke or the device refused.
    std::optional<std::string> Install(ByteView package);

    CTestSocket& Socket()
    {
        return m_socket;
    }

private:
    CTestSocket m_socket;
    std::string m_szBanner;
    std::uint32_t m_nLastId = 0;
};

std::string InstallService(std::size_t nSize);
