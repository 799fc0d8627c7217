// The pairing port.

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

TEST_F(PairingTest, WatchDoesNotStartWithSpoiledPairings)
{
    m_options.pairings = m_folder / "pairings";
    std::ofstream(m_options.pairings) << "nonsense\n";
    EXPECT_THROW(Start(), std::runtime_error);
}
