// The pairing port.

#include "PairingChannel.h"
#include "WatchTest.h"

#include <fstream>

namespace {
using PairingTest = CWatchTest;
}

TEST_F(PairingTest, RightCodePairsAndTellsTheName)
{
    m_options.szName = "adb-NAME-1";
    Start();
    EXPECT_EQ(CComputer("person@home").Pair(m_pWatch->PairingPort(), "123456"), "adb-NAME-1");
    EXPECT_TRUE(m_journal.WaitFor("pairing: closed"));
    EXPECT_EQ(m_journal.Count("pairing: connection from 127.0.0.1:"), 1U);
    EXPECT_EQ(m_journal.Count("pairing: paired person@home"), 1U);
    EXPECT_EQ(m_journal.Count("pairing: gave up"), 0U);
}

TEST_F(PairingTest, WrongCodeIsRefusedAndMayBeCorrected)
{
    Start();
    const CComputer computer("person@home");
    EXPECT_THROW(computer.Pair(m_pWatch->PairingPort(), "123457"), CPeerClosed);
    EXPECT_TRUE(m_journal.WaitFor("pairing: wrong code"));
    EXPECT_EQ(m_journal.Count("pairing: paired"), 0U);
    EXPECT_THROW(Link().Connect(computer), CConnectionError);
    EXPECT_TRUE(m_journal.WaitFor("debugging: key not trusted"));
    PairWith(computer);
    Link().Connect(computer);
}

TEST_F(PairingTest, ComputerThatLeavesIsNoFault)
{
    Start();
    CClient(m_pWatch->PairingPort());
    EXPECT_TRUE(m_journal.WaitFor("pairing: closed"));
    CClient(m_pWatch->PairingPort()).ConnectTls(CComputer("x").TlsContext().get());
    EXPECT_TRUE(m_journal.WaitFor("pairing: closed", 2));
    EXPECT_EQ(m_journal.Count("pairing: gave up"), 0U);
}

TEST_F(PairingTest, ComputerWithoutCertificateOrWithOlderTlsIsRefused)
{
    Start();
    const bssl::UniquePtr<SSL_CTX> nameless(SSL_CTX_new(TLS_method()));
    CClient(m_pWatch->PairingPort()).ConnectTls(nameless.get());
    EXPECT_TRUE(m_journal.WaitFor("pairing: gave up: TLS: PEER_DID_NOT_RETURN_A_CERTIFICATE"));
    const bssl::UniquePtr<SSL_CTX> old = CComputer("x").TlsContext();
    SSL_CTX_set_min_proto_version(old.get(), TLS1_2_VERSION);
    SSL_CTX_set_max_proto_version(old.get(), TLS1_2_VERSION);
    CClient(m_pWatch->PairingPort()).ConnectTls(old.get());
    EXPECT_TRUE(m_journal.WaitFor("pairing: gave up: TLS: UNSUPPORTED_PROTOCOL"));
}

TEST_F(PairingTest, WhatIsNoPacketOrNoKeyIsRefused)
{
    Start();
    const CComputer computer("x");
    CClient chatty(m_pWatch->PairingPort());
    chatty.ConnectTls(computer.TlsContext().get());
    chatty.Write(BytesOf("Good morning."));
    EXPECT_TRUE(m_journal.WaitFor("pairing: gave up: unexpected packet"));
    CClient keyless(m_pWatch->PairingPort());
    keyless.ConnectTls(computer.TlsContext().get());
    CPairingChannel(keyless, spake2_role_alice, "123456").Send(EPeerInfo::ComputerKey, "none person@home");
    EXPECT_TRUE(m_journal.WaitFor("pairing: gave up: not a key of adb's"));
    EXPECT_EQ(m_journal.Count("pairing: paired"), 0U);
}

TEST_F(PairingTest, PairingsOutliveTheWatchOnlyInAFile)
{
    const CComputer computer("person@home");
    Start();
    PairWith(computer);
    Start();
    EXPECT_THROW(Link().Connect(computer), CConnectionError);
    EXPECT_TRUE(m_journal.WaitFor("debugging: key not trusted"));

    m_options.pairings = m_folder / "pairings";
    Start();
    PairWith(computer);
    Start();
    Link().Connect(computer);
}

TEST_F(PairingTest, PairingThatCannotBeWrittenIsNone)
{
    m_options.pairings = m_folder / "missing" / "pairings";
    Start();
    const CComputer computer("x");
    for (std::size_t nTimes = 1; nTimes <= 2; ++nTimes) {
        EXPECT_THROW(computer.Pair(m_pWatch->PairingPort(), "123456"), CPeerClosed);
        EXPECT_TRUE(
            m_journal.WaitFor("pairing: gave up: " + m_options.pairings.string() + " cannot be written", nTimes));
    }
}

TEST_F(PairingTest, WatchDoesNotStartWithSpoiledPairings)
{
    m_options.pairings = m_folder;
    EXPECT_THROW(Start(), std::runtime_error);
    m_options.pairings = m_folder / "pairings";
    std::ofstream(m_options.pairings) << "nonsense\n";
    EXPECT_THROW(Start(), std::runtime_error);
}
