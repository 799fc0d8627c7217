#include "Garbage.h"

#include <algorithm>

namespace {

constexpr std::size_t LONGEST = 40'000;
constexpr unsigned MESSAGES = 100;

// As one would record it on the network.
ByteVector ClientHello(const CComputer& computer)
{
    const bssl::UniquePtr<SSL_CTX> context = computer.TlsContext();
    const bssl::UniquePtr<SSL> ssl(SSL_new(context.get()));
    BIO* sent = BIO_new(BIO_s_mem());
    SSL_set_bio(ssl.get(), BIO_new(BIO_s_mem()), sent);
    SSL_connect(ssl.get());
    const std::uint8_t* pBytes = nullptr;
    std::size_t nSize = 0;
    BIO_mem_contents(sent, &pBytes, &nSize);
    return {pBytes, pBytes + nSize};
}

} // namespace

CGarbage::CGarbage(std::uint16_t nPairingPort, std::uint16_t nDebuggingPort, unsigned nSeed)
    : m_nPairingPort(nPairingPort), m_nDebuggingPort(nDebuggingPort), m_generator(nSeed),
      m_hello(ClientHello(m_stranger))
{
}

bool CGarbage::ThrowRandomBytes()
{
    const ByteVector bytes = RandomBytes();
    return Throw(m_nPairingPort, bytes) && Throw(m_nDebuggingPort, bytes);
}

bool CGarbage::ThrowPartOfATlsHandshake()
{
    ByteVector part = m_hello;
    part.resize(1 + m_generator() % part.size());
    if (m_generator() % 3 != 0) {
        AnyByteOf(part) ^= static_cast<std::uint8_t>(m_generator());
    }
    ByteVector whole = Greeting().Encode();
    const ByteVector tls = STestMessage{Letters("STLS"), 0x01000000, 0}.Encode();
    whole.insert(whole.end(), tls.begin(), tls.end());
    whole.insert(whole.end(), part.begin(), part.end());
    return Throw(m_nPairingPort, part) && Throw(m_nDebuggingPort, whole);
}

bool CGarbage::ThrowDamagedGreeting()
{
    ByteVector greeting = Greeting().Encode();
    AnyByteOf(greeting) ^= static_cast<std::uint8_t>(1U << m_generator() % 8);
    greeting.resize(1 + m_generator() % greeting.size());
    return Throw(m_nDebuggingPort, greeting);
}

bool CGarbage::ThrowDamagedPairing(const std::string& szCode)
{
    const auto damage = [this](ByteVector& bytes) {
        AnyByteOf(bytes) ^= static_cast<std::uint8_t>(1U << m_generator() % 8);
    };
    const bool bInAgreement = m_generator() % 2 == 0;
    SPairingManners manners;
    (bInAgreement ? manners.alterAgreement : manners.alterPeerInfo) = damage;
    const bool bPaired = m_stranger.Pair(m_nPairingPort, szCode, manners).has_value();
    return !(bInAgreement && bPaired);
}

bool CGarbage::ThrowMadMessages(const CComputer& trusted)
{
    static constexpr std::uint32_t COMMANDS[] = {Letters("CNXN"), Letters("STLS"), Letters("OPEN"), Letters("OKAY"),
                                                 Letters("WRTE"), Letters("CLSE"), Letters("AUTH"), 0};
    const std::string services[] = {
        InstallService(100),    InstallService(UINT64_MAX), "exec:cmd package 'install' -S ",
        std::string(5000, 'x'), std::string("\0\n\xFF", 3), ""};
    CAdbLink link(m_nDebuggingPort);
    if (link.Connect(trusted) != EWelcome::Device) {
        return false;
    }
    for (unsigned n = 0; n < MESSAGES; ++n) {
        const ByteView service = BytesOf(services[m_generator() % std::size(services)]);
        const std::uint32_t nCommand = COMMANDS[m_generator() % std::size(COMMANDS)];
        const auto nOurs = static_cast<std::uint32_t>(m_generator() % 4);
        const auto nTheirs = static_cast<std::uint32_t>(m_generator() % 4);
        const auto nCheckSum = static_cast<std::uint32_t>(m_generator());
        link.Send({nCommand, nOurs, nTheirs, ByteVector(service.begin(), service.end()), nCheckSum, {}, {}});
    }
    link.Send({.nMagic = 0}); // ends the connection: the magic is wrong
    return link.Socket().IsClosedByPeer();
}

bool CGarbage::ThrowRandomBytesInsideTls(const CComputer& trusted)
{
    CTestSocket pairing(m_nPairingPort);
    pairing.StartTls(trusted.TlsContext().get());
    pairing.Write(RandomBytes());
    pairing.FinishSending();
    CAdbLink link(m_nDebuggingPort);
    if (!pairing.IsClosedByPeer() || link.Connect(trusted) != EWelcome::Device) {
        return false;
    }
    link.Socket().Write(RandomBytes());
    link.Socket().FinishSending();
    return link.Socket().IsClosedByPeer();
}

ByteVector CGarbage::RandomBytes()
{
    ByteVector bytes(m_generator() % LONGEST);
    std::ranges::generate(bytes, [this] { return static_cast<std::uint8_t>(m_generator()); });
    return bytes;
}

std::uint8_t& CGarbage::AnyByteOf(ByteVector& bytes)
{
    return bytes[m_generator() % bytes.size()];
}

// Reads what comes, until the watch has had enough.
bool CGarbage::Throw(std::uint16_t nPort, ByteView bytes) const
{
    CTestSocket socket(nPort);
    socket.Write(bytes);
    socket.FinishSending();
    return socket.IsClosedByPeer();
}
