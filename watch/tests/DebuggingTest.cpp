// The debugging port up to the streams: who is let in, and how.

#include "WatchTest.h"

namespace {
using DebuggingTest = CWatchTest;
}

TEST_F(DebuggingTest, PairedComputerIsTrusted)
{
    Start();
    const CComputer computer("person@home");
    PairWith(computer);
    const std::string szBanner = Link().Connect(computer);
    EXPECT_TRUE(szBanner.starts_with("device::")) << szBanner;
    EXPECT_NE(szBanner.find("features=cmd,"), std::string::npos) << szBanner;
    EXPECT_TRUE(m_journal.WaitFor("debugging: trusted"));
    EXPECT_EQ(m_journal.Count("debugging: connection from 127.0.0.1:"), 1U);
}

TEST_F(DebuggingTest, EverybodyIsTrustedWhenToldSo)
{
    m_options.bTrustAll = true;
    Start();
    Link().Connect(CComputer("stranger"));
    EXPECT_TRUE(m_journal.WaitFor("debugging: trusted"));
}

// adb's threads race when it begins TLS.
class DebuggingOrderTest : public DebuggingTest, public testing::WithParamInterface<EOrder>
{
};

TEST_P(DebuggingOrderTest, OfHelloAndAnnouncementDoesNotMatter)
{
    Start();
    const CComputer computer("person@home");
    PairWith(computer);
    for (int n = 0; n < 3; ++n) {
        CAdbLink link = Link();
        link.Connect(computer, GetParam());
        EXPECT_EQ(link.Install("package"), "Success\n");
    }
    EXPECT_THROW(Link().Connect(CComputer("stranger"), GetParam()), CConnectionError);
    EXPECT_TRUE(m_journal.WaitFor("debugging: key not trusted"));
    EXPECT_TRUE(m_journal.WaitFor("debugging: closed", 4));
    EXPECT_EQ(m_journal.Count("debugging: gave up"), 0U);
}

INSTANTIATE_TEST_SUITE_P(All, DebuggingOrderTest,
                         testing::Values(EOrder::MessageFirst, EOrder::HelloFirst, EOrder::HandshakeFirst,
                                         EOrder::NoMessage));

// Within a record of TLS an announcement is TLS's own.
TEST_F(DebuggingTest, WhatIsNeitherTlsNorItsAnnouncementIsRefused)
{
    const ByteVector announcement = EncodeAdbMessage(EAdbCommand::StartTls, STLS_VERSION, 0);
    ByteVector record = {22, 3, 1, 0, static_cast<std::uint8_t>(announcement.size())};
    record.insert(record.end(), announcement.begin(), announcement.end());
    const std::pair<ByteVector, std::string> rows[] = {
        {EncodeAdbMessage(EAdbCommand::Open, 1, 0), "WRONG_VERSION_NUMBER"},
        {record, "EXCESSIVE_MESSAGE_SIZE"},
    };
    Start();
    for (const auto& [bytes, szReason] : rows) {
        CAdbLink link = Link();
        link.Greet();
        link.Receive();
        link.Write(bytes);
        link.FinishSending();
        EXPECT_TRUE(m_journal.WaitFor("debugging: gave up: TLS: " + szReason)) << szReason;
    }
}

TEST_F(DebuggingTest, FirstMessageIsTheGreeting)
{
    Start();
    CAdbLink link = Link();
    link.Send(EAdbCommand::Open, 1, 0, "shell:");
    EXPECT_TRUE(m_journal.WaitFor("debugging: gave up: no greeting"));
}

TEST_F(DebuggingTest, PortsMistakenForEachOtherAreRefused)
{
    Start();
    EXPECT_THROW(CComputer("x").Pair(m_pWatch->DebuggingPort(), "123456"), CConnectionError);
    EXPECT_TRUE(m_journal.WaitFor("debugging: closed"));
    EXPECT_EQ(m_journal.Count("debugging: gave up: not an adb message: 16 03 01"), 1U);
    EXPECT_THROW(CAdbLink(m_pWatch->PairingPort()).Connect(CComputer("x")), CConnectionError);
    EXPECT_TRUE(m_journal.WaitFor("pairing: gave up: TLS: WRONG_VERSION_NUMBER"));
}

TEST_F(DebuggingTest, ProbeOfThePortIsHarmless)
{
    Start();
    Link();
    EXPECT_TRUE(m_journal.WaitFor("debugging: closed"));
    EXPECT_EQ(m_journal.Count("debugging: gave up"), 0U);
    PairedLink();
}

TEST_F(DebuggingTest, SeveralConnectionsLiveSideBySide)
{
    Start();
    CAdbLink first = PairedLink();
    CAdbLink second = PairedLink();
    EXPECT_EQ(second.Install("package"), "Success\n");
    EXPECT_EQ(first.Install("package"), "Success\n");
}

TEST_F(DebuggingTest, OtherServicesAreRefused)
{
    Start();
    CAdbLink link = PairedLink();
    EXPECT_FALSE(link.Open("shell,v2,raw:id"));
    EXPECT_FALSE(link.Open("exec:cmd package 'archive' -S 1"));
    EXPECT_EQ(m_journal.Count("debugging: refused service shell,v2,raw:id"), 1U);
    EXPECT_EQ(link.Install("package"), "Success\n");
}

TEST_F(DebuggingTest, MessagesForNoStreamAreIgnored)
{
    Start();
    CAdbLink link = PairedLink();
    link.Send(EAdbCommand::Okay, 5, 6);
    link.Send(EAdbCommand::Write, 5, 6, "text");
    link.Send(EAdbCommand::Close, 5, 6);
    EXPECT_EQ(link.Install("package"), "Success\n");
}

TEST_F(DebuggingTest, WatchEndsWithConnectionsAtEveryStage)
{
    Start();
    CClient pairingSilent(m_pWatch->PairingPort());
    CAdbLink debuggingSilent = Link();
    CAdbLink greeted = Link();
    greeted.Greet();
    greeted.Receive();
    CAdbLink installing = PairedLink();
    installing.OpenInstall(1000);

    m_pWatch.reset();
    for (CAdbLink* link : {&debuggingSilent, &greeted, &installing}) {
        EXPECT_THROW(link->Receive(), CPeerClosed);
    }
    EXPECT_EQ(m_journal.Count("debugging: closed"), 3U);
    EXPECT_EQ(m_journal.Count("pairing: closed"), 2U);
    EXPECT_EQ(m_journal.Count("debugging: gave up"), 0U);
}

TEST_F(DebuggingTest, PortInUseIsAnErrorThatNamesIt)
{
    Start();
    m_options.nDebuggingPort = m_pWatch->DebuggingPort();
    try {
        CWatch(m_options, m_journal.Log());
        FAIL() << "no error";
    } catch (const std::runtime_error& error) {
        EXPECT_EQ(error.what(),
                  std::format("cannot listen on 127.0.0.1:{}: Address already in use", m_options.nDebuggingPort));
    }
}

TEST_F(DebuggingTest, OfflineWatchGreetsThenDropsAndDoesNotComeBack)
{
    m_options.connectFault = EConnectFault::Offline;
    m_options.bTrustAll = true;
    Start();
    for (std::size_t nTimes = 1; nTimes <= 2; ++nTimes) {
        CAdbLink link = Link();
        link.Connect(CComputer("x"));
        EXPECT_TRUE(m_journal.WaitFor("debugging: closed", nTimes)) << "by the watch";
        EXPECT_THROW(link.Receive(), CPeerClosed);
    }
    CAdbLink back = Link();
    back.Greet(true);
    back.FinishSending();
    EXPECT_THROW(back.Receive(), CPeerClosed);
    EXPECT_TRUE(m_journal.WaitFor("debugging: closed", 3));
    EXPECT_EQ(m_journal.Count("debugging: trusted"), 2U);
}

TEST_F(DebuggingTest, MuteWatchAnswersNothing)
{
    m_options.connectFault = EConnectFault::Mute;
    Start();
    CAdbLink link = Link();
    link.Greet();
    link.FinishSending();
    EXPECT_THROW(link.Receive(), CPeerClosed);
    EXPECT_TRUE(m_journal.WaitFor("debugging: closed"));
}

TEST_F(DebuggingTest, UnauthorizedWatchAsksForConsentAndNeverGetsIt)
{
    m_options.connectFault = EConnectFault::Unauthorized;
    Start();
    constexpr std::uint32_t TOKEN = 1;
    constexpr std::uint32_t SIGNATURE = 2;
    constexpr std::uint32_t KEY = 3;
    CAdbLink link = Link();
    link.Greet();
    for (const std::uint32_t nAnswer : {SIGNATURE, KEY}) {
        const SAdbMessage question = link.Receive();
        EXPECT_EQ(question.command, EAdbCommand::Authenticate);
        EXPECT_EQ(question.nArgument0, TOKEN);
        EXPECT_EQ(question.payload.size(), 20U);
        link.Send(EAdbCommand::Authenticate, nAnswer, 0, "whatever");
    }
    EXPECT_TRUE(m_journal.WaitFor("debugging: key not trusted"));
    link.FinishSending();
    EXPECT_THROW(link.Receive(), CPeerClosed);
}
