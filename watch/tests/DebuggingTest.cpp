// The debugging port up to the streams: who is let in, and what is made of bad messages.

#include "WatchTest.h"

namespace {

using DebuggingTest = CWatchTest;

constexpr std::uint32_t VERSION_WITH_SUMS = 0x01000000;

STestMessage Message(const char (&letters)[5], std::uint32_t nArgument0, std::uint32_t nArgument1,
                     std::string_view payload = {})
{
    const ByteView bytes = BytesOf(payload);
    return {Letters(letters), nArgument0, nArgument1, ByteVector(bytes.begin(), bytes.end())};
}

} // namespace

TEST_F(DebuggingTest, PairedComputerIsTrusted)
{
    Start();
    CAdbLink link = PairedLink();
    EXPECT_TRUE(m_journal.WaitFor("debugging: trusted"));
    EXPECT_EQ(m_journal.Count("debugging: connection from 127.0.0.1:"), 1U);
    EXPECT_TRUE(link.Banner().starts_with("device::")) << link.Banner();
    EXPECT_NE(link.Banner().find("features=cmd,"), std::string::npos) << link.Banner();
}

TEST_F(DebuggingTest, UnpairedComputerIsNotTrusted)
{
    Start();
    PairWith(CComputer("person@home"));
    EXPECT_EQ(CAdbLink(m_pWatch->DebuggingPort()).Connect(CComputer("person@home")), EWelcome::TlsFailed);
    EXPECT_TRUE(m_journal.WaitFor("debugging: key not trusted"));
    EXPECT_TRUE(m_journal.WaitFor("debugging: closed"));
    EXPECT_EQ(m_journal.Count("debugging: trusted"), 0U);
    EXPECT_EQ(m_journal.Count("debugging: gave up"), 0U);
}

TEST_F(DebuggingTest, EverybodyIsTrustedWhenToldSo)
{
    m_options.bTrustAll = true;
    Start();
    EXPECT_EQ(CAdbLink(m_pWatch->DebuggingPort()).Connect(CComputer("stranger")), EWelcome::Device);
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
        CAdbLink link(m_pWatch->DebuggingPort());
        ASSERT_EQ(link.Connect(computer, Greeting(), GetParam()), EWelcome::Device);
        EXPECT_EQ(link.Install(RandomBytes(10, 1)), "Success\n");
    }
    CAdbLink stranger(m_pWatch->DebuggingPort());
    EXPECT_EQ(stranger.Connect(CComputer("stranger"), Greeting(), GetParam()), EWelcome::TlsFailed);
    EXPECT_TRUE(m_journal.WaitFor("debugging: key not trusted"));
    EXPECT_EQ(m_journal.Count("debugging: gave up"), 0U);
}

INSTANTIATE_TEST_SUITE_P(All, DebuggingOrderTest,
                         testing::Values(EOrder::MessageFirst, EOrder::HelloFirst, EOrder::HandshakeFirst,
                                         EOrder::NoMessage));

TEST_F(DebuggingTest, WhatIsNeitherTlsNorItsAnnouncementIsRefused)
{
    const ByteVector record = {22, 3, 1, 0, 4, 1, 2, 3, 4};
    const ByteVector empty = {22, 3, 1, 0, 0};
    const ByteVector announcement = Message("STLS", VERSION_WITH_SUMS, 0).Encode();
    const struct
    {
        ByteVector before;
        STestMessage message;
        const char* szReason;
    } rows[] = {
        {{}, Message("OPEN", 1, 0, "shell:"), "TLS: WRONG_VERSION_NUMBER"},
        {{}, Message("STLS", VERSION_WITH_SUMS, 1), "TLS: UNEXPECTED_MESSAGE"},
        {announcement, Message("STLS", VERSION_WITH_SUMS, 0), "TLS: WRONG_VERSION_NUMBER"},
        {record, Message("STLS", VERSION_WITH_SUMS, 0), "TLS: EXCESSIVE_MESSAGE_SIZE"},
        {empty, Message("OPEN", 1, 0, "shell:"), "TLS: WRONG_VERSION_NUMBER"},
    };
    Start();
    for (const auto& row : rows) {
        const std::string szLine = std::string("debugging: gave up: ") + row.szReason;
        const std::size_t nBefore = m_journal.Count(szLine);
        CAdbLink link(m_pWatch->DebuggingPort());
        link.Send(Greeting());
        link.Socket().Write(row.before);
        link.Send(row.message);
        EXPECT_TRUE(link.Socket().IsClosedByPeer());
        EXPECT_TRUE(m_journal.WaitFor(szLine, nBefore + 1));
    }
}

TEST_F(DebuggingTest, ProbeOfThePortIsHarmless)
{
    Start();
    CTestSocket(m_pWatch->DebuggingPort());
    EXPECT_TRUE(m_journal.WaitFor("debugging: closed"));
    EXPECT_EQ(m_journal.Count("debugging: gave up"), 0U);
    PairedLink();
}

TEST_F(DebuggingTest, SeveralConnectionsOfOneComputerLiveSideBySide)
{
    Start();
    const CComputer computer("person@home");
    PairWith(computer);
    CAdbLink first(m_pWatch->DebuggingPort());
    CAdbLink second(m_pWatch->DebuggingPort());
    EXPECT_EQ(first.Connect(computer), EWelcome::Device);
    EXPECT_EQ(second.Connect(computer), EWelcome::Device);
    EXPECT_EQ(second.Install(RandomBytes(10, 1)), "Success\n");
    EXPECT_EQ(first.Install(RandomBytes(10, 2)), "Success\n");
}

TEST_F(DebuggingTest, IdleComputerStaysConnected)
{
    m_options.patience = std::chrono::milliseconds(1500);
    Start();
    CAdbLink link = PairedLink();
    std::this_thread::sleep_for(m_options.patience + std::chrono::milliseconds(500));
    EXPECT_EQ(link.Install(RandomBytes(10, 1)), "Success\n");
}

TEST_F(DebuggingTest, SilenceEndsAtEveryStageBeforeTrust)
{
    m_options.patience = std::chrono::milliseconds(300);
    Start();
    CTestSocket beforeGreeting(m_pWatch->DebuggingPort());
    EXPECT_TRUE(beforeGreeting.IsClosedByPeer());
    EXPECT_TRUE(m_journal.WaitFor("debugging: gave up: timed out", 1));

    CAdbLink afterGreeting(m_pWatch->DebuggingPort());
    afterGreeting.Send(Greeting());
    EXPECT_TRUE(afterGreeting.Socket().IsClosedByPeer());
    EXPECT_TRUE(m_journal.WaitFor("debugging: gave up: timed out", 2));

    CAdbLink beforeTls(m_pWatch->DebuggingPort());
    beforeTls.Send(Greeting());
    beforeTls.Send(Message("STLS", VERSION_WITH_SUMS, 0));
    EXPECT_TRUE(beforeTls.Socket().IsClosedByPeer());
    EXPECT_TRUE(m_journal.WaitFor("debugging: gave up: timed out", 3));
}

TEST_F(DebuggingTest, MessageBegunMustEnd)
{
    m_options.patience = std::chrono::milliseconds(1500);
    Start();
    CAdbLink link = PairedLink();
    const ByteVector whole = Message("OPEN", 1, 0, "shell:").Encode();
    link.Socket().Write(ByteView(whole).first(whole.size() - 1));
    EXPECT_TRUE(link.Socket().IsClosedByPeer());
    EXPECT_TRUE(m_journal.WaitFor("debugging: gave up: timed out"));
}

TEST_F(DebuggingTest, OtherServicesAreRefused)
{
    Start();
    CAdbLink link = PairedLink();
    EXPECT_EQ(link.Open(1, "shell,v2,raw:id"), std::nullopt);
    EXPECT_EQ(link.Open(2, "exec:cmd package 'uninstall' x"), std::nullopt);
    EXPECT_EQ(link.Open(3, ""), std::nullopt);
    EXPECT_EQ(m_journal.Count("debugging: refused service shell,v2,raw:id"), 1U);
    EXPECT_EQ(link.Install(RandomBytes(10, 1)), "Success\n");
}

TEST_F(DebuggingTest, MessagesForNoStreamAreIgnored)
{
    Start();
    CAdbLink link = PairedLink();
    link.Send(Message("OKAY", 5, 6));
    link.Send(Message("WRTE", 5, 6, "text"));
    link.Send(Message("CLSE", 5, 6));
    link.Send(Message("SYNC", 5, 6)); // one that the watch has never heard of
    EXPECT_EQ(link.Install(RandomBytes(10, 1)), "Success\n");
}

TEST_F(DebuggingTest, MalformedGreetingsEndTheConnection)
{
    STestMessage wrongSum = Greeting();
    wrongSum.nCheckSum = 1;
    STestMessage noSumOfAnOldComputer = Greeting(VERSION_WITH_SUMS);
    noSumOfAnOldComputer.nCheckSum = 0;
    STestMessage wrongMagic = Greeting();
    wrongMagic.nMagic = 0;
    STestMessage tooLong = Greeting();
    tooLong.nAnnouncedSize = 1024 * 1024 + 1;
    STestMessage farTooLong = Greeting();
    farTooLong.nAnnouncedSize = 0xFFFFFFFF;
    const struct
    {
        STestMessage message;
        const char* szReason;
    } rows[] = {
        {wrongSum, "a message's check sum is wrong"},         {noSumOfAnOldComputer, "a message's check sum is wrong"},
        {wrongMagic, "not an adb message: 43 4e 58 4e"},      {tooLong, "a message announced 1048577 bytes"},
        {farTooLong, "a message announced 4294967295 bytes"}, {Message("OPEN", 1, 0, "shell:"), "no greeting"},
    };
    Start();
    for (const auto& row : rows) {
        const std::string szLine = std::string("debugging: gave up: ") + row.szReason;
        const std::size_t nBefore = m_journal.Count(szLine);
        EXPECT_EQ(CAdbLink(m_pWatch->DebuggingPort()).Connect(CComputer("x"), row.message), EWelcome::Closed);
        EXPECT_TRUE(m_journal.WaitFor(szLine, nBefore + 1));
    }
}

TEST_F(DebuggingTest, TrustedComputerIsCheckedToo)
{
    Start();
    STestMessage wrongMagic = Message("OPEN", 1, 0, "shell:");
    wrongMagic.nMagic = 1;
    STestMessage tooLong = Message("OPEN", 1, 0, "shell:");
    tooLong.nAnnouncedSize = 0x7FFFFFFF;
    for (const STestMessage& message : {wrongMagic, tooLong}) {
        CAdbLink link = PairedLink();
        link.Send(message);
        EXPECT_TRUE(link.Socket().IsClosedByPeer());
    }
    EXPECT_TRUE(m_journal.WaitFor("debugging: gave up: not an adb message: 4f 50 45 4e"));
    EXPECT_TRUE(m_journal.WaitFor("debugging: gave up: a message announced 2147483647 bytes"));
}

// adb greets a device that it has lost without summing the greeting up.
TEST_F(DebuggingTest, GreetingWithoutSumIsAccepted)
{
    m_options.bTrustAll = true;
    Start();
    STestMessage greeting = Greeting();
    greeting.nCheckSum = 0;
    EXPECT_EQ(CAdbLink(m_pWatch->DebuggingPort()).Connect(CComputer("x"), greeting), EWelcome::Device);
}

TEST_F(DebuggingTest, SumsCountForOldComputersOnly)
{
    m_options.bTrustAll = true;
    Start();
    STestMessage unsummed = Message("OPEN", 1, 0, "shell:");
    unsummed.nCheckSum = 0;

    CAdbLink today(m_pWatch->DebuggingPort());
    ASSERT_EQ(today.Connect(CComputer("x")), EWelcome::Device);
    today.Send(unsummed);
    const std::optional<STestMessage> answer = today.Receive();
    ASSERT_TRUE(answer);
    EXPECT_EQ(answer->nCommand, Letters("CLSE"));
    EXPECT_EQ(answer->nArgument1, 1U);

    CAdbLink old(m_pWatch->DebuggingPort());
    ASSERT_EQ(old.Connect(CComputer("x"), Greeting(VERSION_WITH_SUMS)), EWelcome::Device);
    EXPECT_EQ(old.Install(RandomBytes(10, 1)), "Success\n");
    old.Send(unsummed);
    EXPECT_TRUE(old.Socket().IsClosedByPeer());
    EXPECT_TRUE(m_journal.WaitFor("debugging: gave up: a message's check sum is wrong"));
}

TEST_F(DebuggingTest, TooManyConnectionsAreTurnedAway)
{
    Start();
    {
        std::vector<CTestSocket> held;
        for (std::size_t i = 0; i < CListener::MOST_CONNECTIONS; ++i) {
            held.emplace_back(m_pWatch->DebuggingPort());
        }
        CTestSocket oneMore(m_pWatch->DebuggingPort());
        EXPECT_TRUE(oneMore.IsClosedByPeer());
        EXPECT_EQ(m_journal.Count("debugging: turned away 127.0.0.1:"), 1U);
    }
    EXPECT_TRUE(m_journal.WaitFor("debugging: closed", CListener::MOST_CONNECTIONS));
    PairedLink();
}

TEST_F(DebuggingTest, WatchEndsWithConnectionsAtEveryStage)
{
    // One that waited for this would not be done when CTest ends the tests.
    m_options.patience = std::chrono::hours(1);
    Start();
    CTestSocket pairingSilent(m_pWatch->PairingPort());
    CTestSocket debuggingSilent(m_pWatch->DebuggingPort());
    CAdbLink greeted(m_pWatch->DebuggingPort());
    greeted.Send(Greeting());
    ASSERT_TRUE(greeted.Receive());
    CAdbLink trusted = PairedLink();
    ASSERT_TRUE(trusted.Open(1, InstallService(1000)));

    Stop();
    EXPECT_TRUE(pairingSilent.IsClosedByPeer());
    EXPECT_TRUE(debuggingSilent.IsClosedByPeer());
    EXPECT_TRUE(greeted.Socket().IsClosedByPeer());
    EXPECT_TRUE(trusted.Socket().IsClosedByPeer());
    EXPECT_EQ(m_journal.Count("debugging: gave up"), 0U);
}

TEST_F(DebuggingTest, PortInUseIsAnErrorThatNamesIt)
{
    Start();
    SOptions second = m_options;
    second.nDebuggingPort = m_pWatch->DebuggingPort();
    try {
        CWatch(second, m_journal.Log());
        FAIL() << "no error";
    } catch (const std::runtime_error& error) {
        const std::string szExpected = std::format("cannot listen on 127.0.0.1:{}", second.nDebuggingPort);
        EXPECT_EQ(std::string(error.what()).substr(0, szExpected.size()), szExpected);
    }
}

TEST_F(DebuggingTest, OfflineWatchGreetsThenDropsAndDoesNotComeBack)
{
    m_options.connectFault = EConnectFault::Offline;
    m_options.bTrustAll = true;
    Start();
    STestMessage again = Greeting();
    again.nCheckSum = 0;
    for (std::size_t i = 1; i <= 2; ++i) {
        CAdbLink link(m_pWatch->DebuggingPort());
        EXPECT_EQ(link.Connect(CComputer("x")), EWelcome::Device);
        EXPECT_EQ(link.Receive(), std::nullopt);
        EXPECT_TRUE(m_journal.WaitFor("debugging: trusted", i));
    }
    CTestSocket back(m_pWatch->DebuggingPort());
    back.Write(again.Encode());
    back.FinishSending();
    EXPECT_EQ(back.Read(1), std::nullopt);
    EXPECT_TRUE(m_journal.WaitFor("debugging: closed", 3));
    EXPECT_EQ(m_journal.Count("debugging: gave up"), 0U);
}

TEST_F(DebuggingTest, MuteWatchAnswersNothing)
{
    m_options.connectFault = EConnectFault::Mute;
    m_options.bTrustAll = true;
    m_options.patience = std::chrono::milliseconds(300);
    Start();
    CTestSocket socket(m_pWatch->DebuggingPort());
    socket.Write(Greeting().Encode());
    std::this_thread::sleep_for(2 * m_options.patience);
    EXPECT_EQ(m_journal.Count("debugging: closed"), 0U);
    socket.FinishSending();
    EXPECT_EQ(socket.Read(1), std::nullopt);
    EXPECT_TRUE(m_journal.WaitFor("debugging: closed"));
}

TEST_F(DebuggingTest, UnauthorizedWatchAsksForConsentAndNeverGetsIt)
{
    m_options.connectFault = EConnectFault::Unauthorized;
    m_options.bTrustAll = true;
    Start();
    constexpr std::uint32_t TOKEN = 1;
    constexpr std::uint32_t SIGNATURE = 2;
    constexpr std::uint32_t KEY = 3;
    CAdbLink link(m_pWatch->DebuggingPort());
    link.Send(Greeting());
    for (int i = 0; i < 2; ++i) {
        const std::optional<STestMessage> question = link.Receive();
        ASSERT_TRUE(question);
        EXPECT_EQ(question->nCommand, Letters("AUTH"));
        EXPECT_EQ(question->nArgument0, TOKEN);
        EXPECT_EQ(question->payload.size(), 20U);
        link.Send(Message("AUTH", i == 0 ? SIGNATURE : KEY, 0, "whatever"));
    }
    EXPECT_TRUE(m_journal.WaitFor("debugging: key not trusted"));
    link.Socket().FinishSending();
    EXPECT_EQ(link.Receive(), std::nullopt);
}
