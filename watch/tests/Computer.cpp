#include "Computer.h"

#include "PairingChannel.h"

#include <algorithm>
#include <cerrno>
#include <format>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <openssl/base64.h>
#include <openssl/bn.h>
#include <openssl/rsa.h>
#include <sys/socket.h>
#include <system_error>

namespace {

CFileDescriptor ConnectTo(std::uint16_t nPort)
{
    CFileDescriptor fd(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
    const timeval patience{30, 0};
    setsockopt(fd.Get(), SOL_SOCKET, SO_RCVTIMEO, &patience, sizeof patience);
    setsockopt(fd.Get(), SOL_SOCKET, SO_SNDTIMEO, &patience, sizeof patience);
    const int nOn = 1;
    setsockopt(fd.Get(), IPPROTO_TCP, TCP_NODELAY, &nOn, sizeof nOn);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(nPort);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    if (connect(fd.Get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
        throw std::system_error(errno, std::generic_category(), "connect");
    }
    return fd;
}

void AppendLittleEndian(ByteVector& bytes, std::uint32_t nWord)
{
    for (int nShift = 0; nShift < 32; nShift += 8) {
        bytes.push_back(static_cast<std::uint8_t>(nWord >> nShift));
    }
}

} // namespace

CClient::CClient(std::uint16_t nPort) : CClient(ConnectTo(nPort)) {}

void CClient::ConnectTls(SSL_CTX* context, ByteView afterHello, ByteView afterHandshake)
{
    bssl::UniquePtr<SSL> ssl(SSL_new(context));
    SSL_set_bio(ssl.get(), BIO_new(BIO_s_mem()), BIO_new(BIO_s_mem()));
    SSL_connect(ssl.get());
    const std::uint8_t* pHello = nullptr;
    std::size_t nSize = 0;
    BIO_mem_contents(SSL_get_wbio(ssl.get()), &pHello, &nSize);
    Write({pHello, nSize});
    Write(afterHello);

    m_ssl = std::move(ssl);
    SSL_set_fd(m_ssl.get(), m_fd);
    SSL_connect(m_ssl.get());
    send(m_fd, afterHandshake.data(), afterHandshake.size(), MSG_NOSIGNAL);
}

void CClient::FinishSending()
{
    shutdown(m_fd, SHUT_WR);
}

std::string CComputer::Pair(std::uint16_t nPort, const std::string& szCode) const
{
    CClient client(nPort);
    client.ConnectTls(TlsContext().get());
    CPairingChannel channel(client, spake2_role_alice, szCode);
    channel.Send(EPeerInfo::ComputerKey, KeyLine());
    return channel.Receive().value();
}

std::string CComputer::KeyLine() const
{
    const RSA* rsa = EVP_PKEY_get0_RSA(m_identity.Key());
    ByteVector modulus(256);
    BN_bn2le_padded(modulus.data(), modulus.size(), RSA_get0_n(rsa));
    ByteVector structure;
    AppendLittleEndian(structure, 64);
    AppendLittleEndian(structure, 0x12345678); // the constants that only signing on old devices needs
    structure.insert(structure.end(), modulus.begin(), modulus.end());
    structure.insert(structure.end(), 256, 0xAB);
    AppendLittleEndian(structure, static_cast<std::uint32_t>(BN_get_word(RSA_get0_e(rsa))));

    ByteVector base64(4 * ((structure.size() + 2) / 3) + 1);
    const std::size_t nSize = EVP_EncodeBlock(base64.data(), structure.data(), structure.size());
    return std::format("{} {}", TextOf(ByteView(base64).first(nSize)), m_szName);
}

std::string CAdbLink::Connect(const CComputer& computer, EOrder order)
{
    Greet();
    if (Receive().command != EAdbCommand::StartTls) {
        throw CConnectionError("no announcement of TLS");
    }
    const ByteVector message = EncodeAdbMessage(EAdbCommand::StartTls, STLS_VERSION, 0);
    if (order == EOrder::MessageFirst) {
        Write(message);
    }
    ConnectTls(computer.TlsContext().get(), order == EOrder::HelloFirst ? message : ByteVector(),
               order == EOrder::HandshakeFirst ? message : ByteVector());
    const SAdbMessage welcome = Receive();
    if (welcome.command != EAdbCommand::Connect) {
        throw CConnectionError("no greeting");
    }
    return std::string(TextOf(welcome.payload));
}

void CAdbLink::Greet(bool bAgain)
{
    ByteVector message = EncodeAdbMessage(EAdbCommand::Connect, ADB_VERSION, ADB_MAX_PAYLOAD,
                                          BytesOf("host::features=shell_v2,cmd,stat_v2"));
    if (bAgain) {
        constexpr std::size_t CHECK_SUM_AT = 16;
        std::fill_n(message.begin() + CHECK_SUM_AT, 4, std::uint8_t{0});
    }
    Write(message);
}

std::optional<SStreamIds> CAdbLink::Open(std::string_view service)
{
    const std::uint32_t nId = ++m_nLastId;
    Send(EAdbCommand::Open, nId, 0, std::string(service) + '\0');
    const SAdbMessage answer = Receive();
    if (answer.nArgument1 != nId || (answer.command != EAdbCommand::Okay && answer.command != EAdbCommand::Close)) {
        throw CConnectionError("no answer to the opening of a stream");
    }
    return answer.command == EAdbCommand::Okay ? std::optional(SStreamIds{nId, answer.nArgument0}) : std::nullopt;
}

SStreamIds CAdbLink::OpenInstall(std::size_t nSize)
{
    return Open(std::format("exec:cmd package 'install' -S {}", nSize)).value();
}

// The next message, which must be one for the stream.
SAdbMessage CAdbLink::Expect(SStreamIds stream)
{
    SAdbMessage message = Receive();
    if (message.nArgument0 != stream.nTheirs || message.nArgument1 != stream.nOurs) {
        throw CConnectionError("a message of another stream");
    }
    return message;
}

void CAdbLink::WritePart(SStreamIds stream, std::string_view part)
{
    Send(EAdbCommand::Write, stream, part);
    if (Expect(stream).command != EAdbCommand::Okay) {
        throw CConnectionError("the device does not acknowledge");
    }
}

std::optional<std::string> CAdbLink::ReadPiece(SStreamIds stream)
{
    const SAdbMessage message = Expect(stream);
    if (message.command == EAdbCommand::Close) {
        return std::nullopt;
    }
    Send(EAdbCommand::Okay, stream);
    return std::string(TextOf(message.payload));
}

std::string CAdbLink::ReadReply(SStreamIds stream)
{
    std::string szReply;
    while (const std::optional<std::string> szPiece = ReadPiece(stream)) {
        szReply += *szPiece;
    }
    return szReply;
}

std::string CAdbLink::Install(std::string_view package)
{
    const SStreamIds stream = OpenInstall(package.size());
    while (!package.empty()) {
        const std::string_view part = package.substr(0, ADB_MAX_PAYLOAD);
        WritePart(stream, part);
        package.remove_prefix(part.size());
    }
    return ReadReply(stream);
}
