#include "Computer.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <format>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <numeric>
#include <openssl/aead.h>
#include <openssl/base64.h>
#include <openssl/curve25519.h>
#include <openssl/digest.h>
#include <openssl/err.h>
#include <openssl/hkdf.h>
#include <openssl/mem.h>
#include <openssl/rsa.h>
#include <openssl/x509.h>
#include <stdexcept>
#include <sys/socket.h>
#include <system_error>

namespace {

constexpr std::size_t PACKET_HEADER_SIZE = 6;
constexpr std::size_t AGREEMENT_SIZE = 32;
constexpr std::size_t PEER_INFO_SIZE = 8192;
constexpr std::size_t SEALED_PEER_INFO_SIZE = PEER_INFO_SIZE + 16;

void Require(bool bDone, const char* szStep)
{
    if (!bDone) {
        throw std::runtime_error(std::string("the test's computer: ") + szStep);
    }
}

void AppendLittleEndian(ByteVector& bytes, std::uint32_t nWord)
{
    for (int nShift = 0; nShift < 32; nShift += 8) {
        bytes.push_back(static_cast<std::uint8_t>(nWord >> nShift));
    }
}

std::uint32_t WordAt(const ByteVector& bytes, std::size_t nIndex)
{
    std::uint32_t nWord = 0;
    for (std::size_t i = 4; i-- > 0;) {
        nWord = nWord << 8 | bytes[4 * nIndex + i];
    }
    return nWord;
}

std::uint32_t SumOf(const ByteVector& bytes)
{
    return std::accumulate(bytes.begin(), bytes.end(), std::uint32_t{0});
}

ByteVector Packet(std::uint8_t nType, const ByteVector& payload)
{
    ByteVector packet = {
        1, nType, 0, 0, static_cast<std::uint8_t>(payload.size() >> 8), static_cast<std::uint8_t>(payload.size())};
    packet.insert(packet.end(), payload.begin(), payload.end());
    return packet;
}

std::optional<ByteVector> ReadPacket(CTestSocket& socket, std::uint8_t nType, std::size_t nSize)
{
    const std::optional<ByteVector> header = socket.Read(PACKET_HEADER_SIZE);
    if (!header || *header != ByteVector({1, nType, 0, 0, static_cast<std::uint8_t>(nSize >> 8),
                                          static_cast<std::uint8_t>(nSize)})) {
        return std::nullopt;
    }
    return socket.Read(nSize);
}

// adb's half of the key agreement.
class CAgreement
{
public:
    CAgreement(const std::string& szCode, SSL* tls)
        : m_spake(SPAKE2_CTX_new(spake2_role_alice, BytesOf("adb pair client").data(), 16,
                                 BytesOf("adb pair server").data(), 16)),
          m_message(AGREEMENT_SIZE)
    {
        ByteVector password(szCode.begin(), szCode.end());
        password.resize(szCode.size() + 64);
        Require(SSL_export_keying_material(tls, password.data() + szCode.size(), 64, "adb-label", 10, nullptr, 0, 0),
                "keying material");
        std::size_t nSize = 0;
        Require(SPAKE2_generate_msg(m_spake.get(), m_message.data(), &nSize, m_message.size(), password.data(),
                                    password.size()),
                "SPAKE2 message");
    }

    const ByteVector& Message() const
    {
        return m_message;
    }

    void Finish(const ByteVector& theirs)
    {
        std::array<std::uint8_t, SPAKE2_MAX_KEY_SIZE> secret{};
        std::size_t nSize = 0;
        std::array<std::uint8_t, 16> key{};
        const std::string_view info = "adb pairing_auth aes-128-gcm key";
        Require(SPAKE2_process_msg(m_spake.get(), secret.data(), &nSize, secret.size(), theirs.data(), theirs.size()) &&
                    HKDF(key.data(), key.size(), EVP_sha256(), secret.data(), nSize, nullptr, 0, BytesOf(info).data(),
                         info.size()) &&
                    EVP_AEAD_CTX_init(m_aead.get(), EVP_aead_aes_128_gcm(), key.data(), key.size(), 16, nullptr),
                "agreement");
    }

    // The only message of each direction, hence the nonce zero.
    ByteVector Seal(const ByteVector& plain) const
    {
        const std::array<std::uint8_t, 12> nonce{};
        ByteVector sealed(plain.size() + 16);
        std::size_t nSize = 0;
        Require(EVP_AEAD_CTX_seal(m_aead.get(), sealed.data(), &nSize, sealed.size(), nonce.data(), nonce.size(),
                                  plain.data(), plain.size(), nullptr, 0),
                "sealing");
        return sealed;
    }

    ByteVector Open(const ByteVector& sealed) const
    {
        const std::array<std::uint8_t, 12> nonce{};
        ByteVector plain(sealed.size());
        std::size_t nSize = 0;
        Require(EVP_AEAD_CTX_open(m_aead.get(), plain.data(), &nSize, plain.size(), nonce.data(), nonce.size(),
                                  sealed.data(), sealed.size(), nullptr, 0),
                "opening");
        plain.resize(nSize);
        return plain;
    }

private:
    bssl::UniquePtr<SPAKE2_CTX> m_spake;
    ByteVector m_message;
    bssl::ScopedEVP_AEAD_CTX m_aead;
};

} // namespace

CTestSocket::CTestSocket(std::uint16_t nPort) : m_socket(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0))
{
    const timeval patience{30, 0};
    setsockopt(m_socket.Get(), SOL_SOCKET, SO_RCVTIMEO, &patience, sizeof patience);
    setsockopt(m_socket.Get(), SOL_SOCKET, SO_SNDTIMEO, &patience, sizeof patience);
    const int nOn = 1;
    setsockopt(m_socket.Get(), IPPROTO_TCP, TCP_NODELAY, &nOn, sizeof nOn);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(nPort);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    if (connect(m_socket.Get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
        throw std::system_error(errno, std::generic_category(), "connect");
    }
}

void CTestSocket::StartTls(SSL_CTX* context, ByteView afterHello, ByteView afterHandshake)
{
    bssl::UniquePtr<SSL> ssl(SSL_new(context));
    SSL_set_bio(ssl.get(), BIO_new(BIO_s_mem()), BIO_new(BIO_s_mem()));
    SSL_connect(ssl.get());
    const std::uint8_t* pHello = nullptr;
    std::size_t nSize = 0;
    Require(BIO_mem_contents(SSL_get_wbio(ssl.get()), &pHello, &nSize) && nSize > 0, "a hello");
    Write({pHello, nSize});
    Write(afterHello);

    m_ssl = std::move(ssl);
    Require(SSL_set_fd(m_ssl.get(), m_socket.Get()), "SSL_set_fd");
    // The client's half of TLS 1.3 ends before the server has seen the client's certificate: a refusal shows with the
    // first read.
    SSL_connect(m_ssl.get());
    ERR_clear_error();
    send(m_socket.Get(), afterHandshake.data(), afterHandshake.size(), MSG_NOSIGNAL);
}

bool CTestSocket::Write(ByteView bytes)
{
    while (!bytes.empty()) {
        const auto nWritten = m_ssl ? SSL_write(m_ssl.get(), bytes.data(), static_cast<int>(bytes.size()))
                                    : send(m_socket.Get(), bytes.data(), bytes.size(), MSG_NOSIGNAL);
        ERR_clear_error();
        if (nWritten <= 0) {
            return false;
        }
        bytes = bytes.subspan(static_cast<std::size_t>(nWritten));
    }
    return true;
}

std::optional<ByteVector> CTestSocket::Read(std::size_t nSize)
{
    ByteVector bytes(nSize);
    std::size_t nRead = 0;
    while (nRead < nSize) {
        const auto nResult = m_ssl ? SSL_read(m_ssl.get(), bytes.data() + nRead, static_cast<int>(nSize - nRead))
                                   : recv(m_socket.Get(), bytes.data() + nRead, nSize - nRead, 0);
        ERR_clear_error();
        if (nResult <= 0) {
            return std::nullopt;
        }
        nRead += static_cast<std::size_t>(nResult);
    }
    return bytes;
}

bool CTestSocket::IsClosedByPeer()
{
    std::array<std::uint8_t, 4096> ignored{};
    for (;;) {
        const ssize_t nResult = recv(m_socket.Get(), ignored.data(), ignored.size(), 0);
        if (nResult <= 0) {
            return nResult == 0 || errno == ECONNRESET;
        }
    }
}

void CTestSocket::FinishSending()
{
    shutdown(m_socket.Get(), SHUT_WR);
}

CComputer::CComputer(std::string szName) : m_szName(std::move(szName)) {}

std::optional<std::string> CComputer::Pair(std::uint16_t nPort, const std::string& szCode,
                                           const SPairingManners& manners) const
{
    CTestSocket socket(nPort);
    const bssl::UniquePtr<SSL_CTX> anonymous(SSL_CTX_new(TLS_method()));
    socket.StartTls(manners.bShowCertificate ? TlsContext().get() : anonymous.get());
    if (!SSL_is_init_finished(socket.Tls())) {
        return std::nullopt;
    }
    CAgreement agreement(szCode, socket.Tls());
    ByteVector packet = Packet(0, agreement.Message());
    if (manners.alterAgreement) {
        manners.alterAgreement(packet);
    }
    socket.Write(packet);
    const std::optional<ByteVector> theirs = ReadPacket(socket, 0, AGREEMENT_SIZE);
    if (!theirs) {
        return std::nullopt;
    }
    agreement.Finish(*theirs);

    const std::string szKey = KeyLine();
    ByteVector info = {0};
    info.insert(info.end(), szKey.begin(), szKey.end());
    info.resize(PEER_INFO_SIZE);
    if (manners.alterPeerInfo) {
        manners.alterPeerInfo(info);
    }
    socket.Write(Packet(1, agreement.Seal(info)));
    const std::optional<ByteVector> answer = ReadPacket(socket, 1, SEALED_PEER_INFO_SIZE);
    if (!answer) {
        return std::nullopt;
    }
    const ByteVector device = agreement.Open(*answer);
    Require(device.size() == PEER_INFO_SIZE && device[0] == 1, "the device's peer info");
    return std::string(reinterpret_cast<const char*>(device.data() + 1));
}

std::string CComputer::KeyLine() const
{
    const RSA* rsa = EVP_PKEY_get0_RSA(m_identity.Key());
    ByteVector modulus(256);
    Require(BN_bn2le_padded(modulus.data(), modulus.size(), RSA_get0_n(rsa)), "the modulus");
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

ByteVector STestMessage::Encode() const
{
    ByteVector bytes;
    AppendLittleEndian(bytes, nCommand);
    AppendLittleEndian(bytes, nArgument0);
    AppendLittleEndian(bytes, nArgument1);
    AppendLittleEndian(bytes, nAnnouncedSize.value_or(static_cast<std::uint32_t>(payload.size())));
    AppendLittleEndian(bytes, nCheckSum.value_or(SumOf(payload)));
    AppendLittleEndian(bytes, nMagic.value_or(nCommand ^ 0xFFFFFFFF));
    bytes.insert(bytes.end(), payload.begin(), payload.end());
    return bytes;
}

STestMessage Greeting(std::uint32_t nVersion, std::uint32_t nMaxPayload)
{
    const ByteView banner = BytesOf("host::features=shell_v2,cmd,stat_v2");
    return {Letters("CNXN"), nVersion, nMaxPayload, ByteVector(banner.begin(), banner.end())};
}

EWelcome CAdbLink::Connect(const CComputer& computer, const STestMessage& greeting, EOrder order)
{
    Send(greeting);
    const std::optional<STestMessage> answer = Receive();
    if (!answer || answer->nCommand != Letters("STLS") || answer->nArgument0 != 0x01000000) {
        return EWelcome::Closed;
    }
    const ByteVector message = STestMessage{Letters("STLS"), 0x01000000, 0}.Encode();
    if (order == EOrder::MessageFirst) {
        m_socket.Write(message);
    }
    m_socket.StartTls(computer.TlsContext().get(), order == EOrder::HelloFirst ? message : ByteVector(),
                      order == EOrder::HandshakeFirst ? message : ByteVector());
    const std::optional<STestMessage> welcome = Receive();
    if (!welcome || welcome->nCommand != Letters("CNXN") || welcome->nArgument0 != 0x01000001) {
        return EWelcome::TlsFailed;
    }
    m_szBanner = TextOf(welcome->payload);
    return EWelcome::Device;
}

std::optional<STestMessage> CAdbLink::Receive()
{
    const std::optional<ByteVector> header = m_socket.Read(24);
    if (!header) {
        return std::nullopt;
    }
    std::optional<ByteVector> payload = m_socket.Read(WordAt(*header, 3));
    if (!payload) {
        return std::nullopt;
    }
    STestMessage message{WordAt(*header, 0), WordAt(*header, 1), WordAt(*header, 2), *std::move(payload)};
    Require(WordAt(*header, 4) == SumOf(message.payload), "a check sum of the device's");
    Require(WordAt(*header, 5) == (message.nCommand ^ 0xFFFFFFFF), "a magic of the device's");
    return message;
}

std::optional<std::uint32_t> CAdbLink::Open(std::uint32_t nId, const std::string& szService)
{
    // adb's service names end with a zero.
    const char* szEnd = szService.c_str() + szService.size() + 1;
    Send({Letters("OPEN"), nId, 0, ByteVector(szService.c_str(), szEnd)});
    const std::optional<STestMessage> answer = Receive();
    Require(!answer || answer->nArgument1 == nId, "an answer to another stream");
    if (!answer || answer->nCommand != Letters("OKAY") || answer->nArgument0 == 0) {
        return std::nullopt;
    }
    return answer->nArgument0;
}

bool CAdbLink::WritePart(std::uint32_t nId, std::uint32_t nTheirId, ByteView part)
{
    Send({Letters("WRTE"), nId, nTheirId, ByteVector(part.begin(), part.end())});
    const std::optional<STestMessage> answer = Receive();
    return answer && answer->nCommand == Letters("OKAY") && answer->nArgument0 == nTheirId && answer->nArgument1 == nId;
}

std::optional<std::string> CAdbLink::ReadReply(std::uint32_t nId, std::uint32_t nTheirId, std::size_t nMost)
{
    std::string szReply;
    for (;;) {
        const std::optional<STestMessage> message = Receive();
        if (!message || message->nArgument0 != nTheirId || message->nArgument1 != nId) {
            return std::nullopt;
        }
        if (message->nCommand == Letters("CLSE")) {
            return szReply;
        }
        szReply += TextOf(message->payload);
        if (message->nCommand != Letters("WRTE") || szReply.size() > nMost) {
            return std::nullopt;
        }
        Send({Letters("OKAY"), nId, nTheirId});
    }
}

std::optional<std::string> CAdbLink::Install(ByteView package)
{
    constexpr std::size_t PART = 64 * 1024;
    const std::uint32_t nId = ++m_nLastId;
    const std::optional<std::uint32_t> nTheirId = Open(nId, InstallService(package.size()));
    if (!nTheirId) {
        return std::nullopt;
    }
    while (!package.empty()) {
        const ByteView part = package.first(std::min(PART, package.size()));
        if (!WritePart(nId, *nTheirId, part)) {
            return std::nullopt;
        }
        package = package.subspan(part.size());
    }
    return ReadReply(nId, *nTheirId);
}

std::string InstallService(std::size_t nSize)
{
    return std::format("exec:cmd package 'install' -S {}", nSize);
}
