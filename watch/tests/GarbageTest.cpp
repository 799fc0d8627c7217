// What strangers, and trusted computers gone mad, may throw at the ports: the watch lives on and serves the next one.

#include "WatchTest.h"

#include <random>

namespace {

using GarbageTest = CWatchTest;

constexpr unsigned ROUNDS = 60;
constexpr std::size_t LONGEST = 40'000;

// The bytes with which a TLS client begins, as one would record them.
ByteVector ClientHello()
{
    const bssl::UniquePtr<SSL_CTX> context = CComputer("x").TlsContext();
    const bssl::UniquePtr<SSL> ssl(SSL_new(context.get()));
    BIO* sent = BIO_new(BIO_s_mem());
    SSL_set_bio(ssl.get(), BIO_new(BIO_s_mem()), sent);
    SSL_connect(ssl.get());
    const std::uint8_t* pBytes = nullptr;
    std::size_t nSize = 0;
    BIO_mem_contents(sent, &pBytes, &nSize);
    return {pBytes, pBytes + nSize};
}

// Throws bytes at a port and reads what comes until the watch has had enough.
void Throw(std::uint16_t nPort, ByteView bytes)
{
    CTestSocket socket(nPort);
    socket.Write(bytes);
    socket.FinishSending();
    EXPECT_TRUE(socket.IsClosedByPeer());
}

} // namespace

TEST_F(GarbageTest, RandomBytesAtBothPorts)
{
    Start();
    std::mt19937 generator(1);
    for (unsigned n = 0; n < ROUNDS; ++n) {
        const ByteVector bytes = RandomBytes(generator() % LONGEST, n);
        Throw(m_pWatch->PairingPort(), bytes);
        Throw(m_pWatch->DebuggingPort(), bytes);
    }
    EXPECT_EQ(PairedLink().Install(BytesOf("x")), "Success\n");
}

TEST_F(GarbageTest, PartsOfATlsHandshakeAtBothPorts)
{
    Start();
    const ByteVector hello = ClientHello();
    ASSERT_GT(hello.size(), 100U);
    const ByteVector greeting = Greeting().Encode();
    const ByteVector tls = STestMessage{Letters("STLS"), 0x01000000, 0}.Encode();
    std::mt19937 generator(2);
    for (unsigned n = 0; n < ROUNDS; ++n) {
        ByteVector part(hello.begin(), hello.begin() + static_cast<std::ptrdiff_t>(1 + generator() % hello.size()));
        part[generator() % part.size()] ^= static_cast<std::uint8_t>(n % 3 == 0 ? 0 : generator());
        Throw(m_pWatch->PairingPort(), part);

        ByteVector whole = greeting;
        whole.insert(whole.end(), tls.begin(), tls.end());
        whole.insert(whole.end(), part.begin(), part.end());
        Throw(m_pWatch->DebuggingPort(), whole);
    }
    EXPECT_EQ(PairedLink().Install(BytesOf("x")), "Success\n");
}

TEST_F(GarbageTest, DamagedGreetings)
{
    Start();
    std::mt19937 generator(3);
    for (unsigned n = 0; n < ROUNDS; ++n) {
        ByteVector greeting = Greeting().Encode();
        greeting[generator() % greeting.size()] ^= static_cast<std::uint8_t>(1U << generator() % 8);
        greeting.resize(1 + generator() % greeting.size());
        Throw(m_pWatch->DebuggingPort(), greeting);
    }
    EXPECT_EQ(PairedLink().Install(BytesOf("x")), "Success\n");
}

TEST_F(GarbageTest, MadMessagesOfATrustedComputer)
{
    m_options.bTrustAll = true;
    Start();
    const CComputer computer("x");
    std::mt19937 generator(4);
    const std::uint32_t commands[] = {Letters("CNXN"), Letters("STLS"), Letters("OPEN"), Letters("OKAY"),
                                      Letters("WRTE"), Letters("CLSE"), Letters("AUTH"), 0};
    const std::string services[] = {
        InstallService(100),    InstallService(UINT64_MAX), "exec:cmd package 'install' -S ",
        std::string(5000, 'x'), std::string("\0\n\xFF", 3), ""};
    for (unsigned n = 0; n < ROUNDS / 10; ++n) {
        CAdbLink link(m_pWatch->DebuggingPort());
        ASSERT_EQ(link.Connect(computer), EWelcome::Device);
        for (unsigned i = 0; i < 100; ++i) {
            const ByteView service = BytesOf(services[generator() % std::size(services)]);
            link.Send({commands[generator() % std::size(commands)],
                       static_cast<std::uint32_t>(generator() % 4),
                       static_cast<std::uint32_t>(generator() % 4),
                       ByteVector(service.begin(), service.end()),
                       static_cast<std::uint32_t>(generator()),
                       {},
                       {}});
        }
        link.Send({.nMagic = 0}); // ends the connection: the magic is wrong
        EXPECT_TRUE(link.Socket().IsClosedByPeer());
    }
    CAdbLink link(m_pWatch->DebuggingPort());
    ASSERT_EQ(link.Connect(computer), EWelcome::Device);
    EXPECT_EQ(link.Install(BytesOf("x")), "Success\n");
    EXPECT_EQ(StoredPackage(), "x");
    EXPECT_EQ(FolderContents(), std::vector<std::string>{"stored.apk"});
}

TEST_F(GarbageTest, RandomBytesInsideTls)
{
    m_options.bTrustAll = true;
    Start();
    const CComputer computer("x");
    for (unsigned n = 0; n < ROUNDS / 10; ++n) {
        CTestSocket pairing(m_pWatch->PairingPort());
        pairing.StartTls(computer.TlsContext().get());
        pairing.Write(RandomBytes(LONGEST, n));
        EXPECT_TRUE(pairing.IsClosedByPeer());

        CAdbLink link(m_pWatch->DebuggingPort());
        ASSERT_EQ(link.Connect(computer), EWelcome::Device);
        link.Socket().Write(RandomBytes(LONGEST, n));
        EXPECT_TRUE(link.Socket().IsClosedByPeer());
    }
    EXPECT_EQ(PairedLink().Install(BytesOf("x")), "Success\n");
}
