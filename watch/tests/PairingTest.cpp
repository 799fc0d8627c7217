// The pairing port.

#include "WatchTest.h"

#include <fstream>
#include <thread>

namespace {

using PairingTest = CWatchTest;

// Alters the byte at a place of a packet or of a peer info.
auto SetByte(std::size_t nAt, std::uint8_t nValue)
{
    return [=](ByteVector& bytes) { bytes.at(nAt) = nValue; };
}

} // namespace

TEST_F(PairingTest, RightCodePairsAndTellsTheName)
{
    m_options.szName = "adb-NAME-1";
    Start();
    const CComputer computer("person@home");
    EXPECT_EQ(computer.Pair(m_pWatch->PairingPort(), "123456"), "adb-NAME-1");
    EXPECT_TRUE(m_journal.WaitFor("pairing: closed"));
    EXPECT_EQ(m_journal.Count("pairing: connection from 127.0.0.1:"), 1U);
    EXPECT_EQ(m_journal.Count("pairing: paired person@home"), 1U);
    EXPECT_EQ(m_journal.Count("pairing: gave up"), 0U);
}

TEST_F(PairingTest, WrongCodeIsRefusedAndTheKeyStaysUntrusted)
{
    Start();
    const CComputer computer("person@home");
    EXPECT_EQ(computer.Pair(m_pWatch->PairingPort(), "123457"), std::nullopt);
    EXPECT_TRUE(m_journal.WaitFor("pairing: wrong code"));
    EXPECT_TRUE(m_journal.WaitFor("pairing: closed"));
    EXPECT_EQ(m_journal.Count("pairing: paired"), 0U);
    EXPECT_EQ(CAdbLink(m_pWatch->DebuggingPort()).Connect(computer), EWelcome::TlsFailed);
}

TEST_F(PairingTest, CodeMayBeTriedAgain)
{
    Start();
    const CComputer computer("person@home");
    EXPECT_EQ(computer.Pair(m_pWatch->PairingPort(), "000000"), std::nullopt);
    EXPECT_EQ(computer.Pair(m_pWatch->PairingPort(), "12345"), std::nullopt);
    EXPECT_EQ(computer.Pair(m_pWatch->PairingPort(), ""), std::nullopt);
    EXPECT_EQ(computer.Pair(m_pWatch->PairingPort(), "123456"), m_options.szName);
    EXPECT_EQ(computer.Pair(m_pWatch->PairingPort(), "123456"), m_options.szName);
}

TEST_F(PairingTest, SeveralComputersPairAtATime)
{
    Start();
    std::vector<std::jthread> threads;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([this] { PairWith(CComputer("person@home")); });
    }
    threads.clear();
    EXPECT_TRUE(m_journal.WaitFor("pairing: paired person@home", 4));
}

TEST_F(PairingTest, ComputerWithoutCertificateIsRefused)
{
    Start();
    EXPECT_EQ(CComputer("x").Pair(m_pWatch->PairingPort(), "123456", {.bShowCertificate = false}), std::nullopt);
    EXPECT_TRUE(m_journal.WaitFor("pairing: gave up: TLS: PEER_DID_NOT_RETURN_A_CERTIFICATE"));
}

TEST_F(PairingTest, OlderTlsIsRefused)
{
    Start();
    const bssl::UniquePtr<SSL_CTX> old = CComputer("x").TlsContext();
    SSL_CTX_set_min_proto_version(old.get(), TLS1_2_VERSION);
    SSL_CTX_set_max_proto_version(old.get(), TLS1_2_VERSION);
    CTestSocket socket(m_pWatch->PairingPort());
    socket.StartTls(old.get());
    EXPECT_TRUE(socket.IsClosedByPeer());
    EXPECT_TRUE(m_journal.WaitFor("pairing: gave up: TLS: UNSUPPORTED_PROTOCOL"));
}

TEST_F(PairingTest, NameOfAComputerCannotForgeAnEvent)
{
    Start();
    PairWith(CComputer("x\ndebugging: trusted"));
    EXPECT_TRUE(m_journal.WaitFor("pairing: paired x?debugging: trusted"));
}

TEST_F(PairingTest, MalformedPacketsEndTheConnection)
{
    Start();
    const struct
    {
        std::size_t nAt;
        std::uint8_t nValue;
        const char* szReason;
    } rows[] = {
        {0, 2, "unexpected packet, version 2 type 0 of 32 bytes"},
        {1, 1, "unexpected packet, version 1 type 1 of 32 bytes"},
        {2, 0xFF, "unexpected packet, version 1 type 0 of 4278190112 bytes"},
        {5, 31, "unexpected packet, version 1 type 0 of 31 bytes"},
        {5, 33, "unexpected packet, version 1 type 0 of 33 bytes"},
    };
    for (const auto& row : rows) {
        const SPairingManners manners{.alterAgreement = SetByte(row.nAt, row.nValue)};
        EXPECT_EQ(CComputer("x").Pair(m_pWatch->PairingPort(), "123456", manners), std::nullopt);
        EXPECT_TRUE(m_journal.WaitFor(std::string("pairing: gave up: ") + row.szReason));
    }
    EXPECT_EQ(m_journal.Count("pairing: paired"), 0U);
}

TEST_F(PairingTest, AgreementMessageOffTheCurveEndsTheConnection)
{
    Start();
    const SPairingManners manners{.alterAgreement = [](ByteVector& packet) {
        std::fill(packet.begin() + 6, packet.end(), std::uint8_t{0});
        packet[6] = 2; // y = 2 has no x
    }};
    EXPECT_EQ(CComputer("x").Pair(m_pWatch->PairingPort(), "123456", manners), std::nullopt);
    EXPECT_TRUE(m_journal.WaitFor("pairing: gave up: bad agreement message"));
}

TEST_F(PairingTest, PeerInfoThatHoldsNoKeyEndsTheConnection)
{
    Start();
    const SPairingManners rows[] = {
        {.alterPeerInfo = SetByte(0, 1)},   // a device's
        {.alterPeerInfo = SetByte(1, '!')}, // not base64
        {.alterPeerInfo = SetByte(1, 0)},   // empty
        {.alterPeerInfo = [](ByteVector& info) { std::fill(info.begin() + 1, info.end(), std::uint8_t{'A'}); }},
    };
    std::size_t nTimes = 0;
    for (const SPairingManners& manners : rows) {
        EXPECT_EQ(CComputer("x").Pair(m_pWatch->PairingPort(), "123456", manners), std::nullopt);
        EXPECT_TRUE(m_journal.WaitFor("pairing: gave up: the computer sent no key", ++nTimes));
    }
    EXPECT_EQ(m_journal.Count("pairing: paired"), 0U);
}

TEST_F(PairingTest, SilenceEndsAtEveryStage)
{
    m_options.patience = std::chrono::milliseconds(300);
    Start();
    CTestSocket beforeTls(m_pWatch->PairingPort());
    EXPECT_TRUE(beforeTls.IsClosedByPeer());
    EXPECT_TRUE(m_journal.WaitFor("pairing: gave up: timed out"));

    CTestSocket afterTls(m_pWatch->PairingPort());
    afterTls.StartTls(CComputer("x").TlsContext().get());
    EXPECT_TRUE(afterTls.IsClosedByPeer());
    EXPECT_TRUE(m_journal.WaitFor("pairing: gave up: timed out", 2));
}

TEST_F(PairingTest, ComputerThatLeavesIsNoFault)
{
    Start();
    CTestSocket(m_pWatch->PairingPort());
    EXPECT_TRUE(m_journal.WaitFor("pairing: closed"));
    CTestSocket(m_pWatch->PairingPort()).StartTls(CComputer("x").TlsContext().get());
    EXPECT_TRUE(m_journal.WaitFor("pairing: closed", 2));
    EXPECT_EQ(m_journal.Count("pairing: gave up"), 0U);
}

TEST_F(PairingTest, PairingsOutliveTheWatchWhenItHasAFile)
{
    m_options.pairings = m_folder / "pairings";
    const CComputer computer("person@home");
    Start();
    PairWith(computer);
    Stop();
    Start();
    EXPECT_EQ(CAdbLink(m_pWatch->DebuggingPort()).Connect(computer), EWelcome::Device);
}

TEST_F(PairingTest, PairingsEndWithTheWatchWhenItHasNone)
{
    const CComputer computer("person@home");
    Start();
    PairWith(computer);
    Stop();
    Start();
    EXPECT_EQ(CAdbLink(m_pWatch->DebuggingPort()).Connect(computer), EWelcome::TlsFailed);
}

TEST_F(PairingTest, FileThatCannotBeWrittenSpoilsNoPairing)
{
    m_options.pairings = m_folder / "missing" / "pairings";
    const CComputer computer("person@home");
    Start();
    PairWith(computer);
    EXPECT_TRUE(m_journal.WaitFor("pairing: not remembered: " + m_options.pairings.string() + " cannot be written"));
    EXPECT_EQ(CAdbLink(m_pWatch->DebuggingPort()).Connect(computer), EWelcome::Device);
}

TEST_F(PairingTest, WatchDoesNotStartWithSpoiledPairings)
{
    m_options.pairings = m_folder / "pairings";
    std::ofstream(m_options.pairings) << "nonsense\n";
    EXPECT_THROW(Start(), std::runtime_error);
}
