// The computer's side of wireless debugging, for tests. It writes messages and pairs with the watch's own code: that
// adb does so in the same way is what tests/commands holds, with the real adb.
#pragma once

#include "AdbMessage.h"
#include "FileDescriptor.h"
#include "TlsIdentity.h"

#include <optional>

// A TCP connection to 127.0.0.1. Half a minute without an answer counts as its end.
class CClient : public CConnection
{
public:
    explicit CClient(std::uint16_t nPort);

    // As the client. A watch that refuses shows it with the first read. `afterHello` is sent right behind the first
    // that TLS has to say, `afterHandshake` behind the last of it.
    void ConnectTls(SSL_CTX* context, ByteView afterHello = {}, ByteView afterHandshake = {});

    // Ends the sending half, as a program does that has said all it had to say.
    void FinishSending();

private:
    explicit CClient(CFileDescriptor socket) : CConnection(socket.Get()), m_socket(std::move(socket)) {}

    CFileDescriptor m_socket;
};

// A computer with an adb key of its own.
class CComputer
{
public:
    explicit CComputer(std::string szName) : m_szName(std::move(szName)) {}

    // The watch's name. Throws CPeerClosed when the watch hangs up.
    std::string Pair(std::uint16_t nPort, const std::string& szCode) const;

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

// When adb's two threads send the message that announces TLS: before TLS's hello, right behind it, as the last of the
// handshake, or never.
enum class EOrder
{
    MessageFirst,
    HelloFirst,
    HandshakeFirst,
    NoMessage,
};

struct SStreamIds
{
    std::uint32_t nOurs;
    std::uint32_t nTheirs;
};

// A connection to the debugging port. Everything throws a CConnectionError when the watch ends it.
class CAdbLink : public CClient
{
public:
    using CClient::CClient;

    // Up to the device's greeting, which is its banner.
    std::string Connect(const CComputer& computer, EOrder order = EOrder::MessageFirst);

    // The greeting that adb sends first, or when it has lost the device.
    void Greet(bool bAgain = false);

    void Send(EAdbCommand command, std::uint32_t nArgument0, std::uint32_t nArgument1, std::string_view payload = {})
    {
        Write(EncodeAdbMessage(command, nArgument0, nArgument1, BytesOf(payload)));
    }

    // Sends that on a stream.
    void Send(EAdbCommand command, SStreamIds stream, std::string_view payload = {})
    {
        Send(command, stream.nOurs, stream.nTheirs, payload);
    }

    SAdbMessage Receive()
    {
        return ReadAdbMessage(*this);
    }

    // Nothing when the device refuses the service.
    std::optional<SStreamIds> Open(std::string_view service);

    // Opens the stream of an install.
    SStreamIds OpenInstall(std::size_t nSize);

    // Sends part of a package and waits for the OKAY.
    void WritePart(SStreamIds stream, std::string_view part);

    // The next that the device writes on a stream, acknowledged; nothing when it closes the stream instead.
    std::optional<std::string> ReadPiece(SStreamIds stream);

    // Everything that the device writes on a stream until it closes the stream.
    std::string ReadReply(SStreamIds stream);

    // All of an install as adb does it.
    std::string Install(std::string_view package);

private:
    SAdbMessage Expect(SStreamIds stream);

    std::uint32_t m_nLastId = 0;
};
