// Installs: what arrives, what is answered, what goes wrong.

#include "InstallStream.h"
#include "WatchTest.h"

#include <algorithm>

namespace {

using InstallTest = CWatchTest;

constexpr const char* TOO_LARGE_REPLY = "Failure [INSTALL_FAILED_INSUFFICIENT_STORAGE: package too large]\n";
constexpr const char* NO_SIZE_REPLY = "Error: must either specify a package size or an APK file\n";
constexpr const char* DISK_REPLY = "Failure [INSTALL_FAILED_MEDIA_UNAVAILABLE: package cannot be stored]\n";

const std::vector<std::string> ONLY_THE_PACKAGE = {"stored.apk"};

std::string TextOfBytes(const ByteVector& bytes)
{
    return std::string(TextOf(bytes));
}

} // namespace

TEST(InstallService, IsKnownByItsWords)
{
    const auto sizeOf = [](const char* szService) { return ParseInstallService(szService).value().nSize; };
    EXPECT_EQ(sizeOf("exec:cmd package 'install' -S 1234"), 1234U);
    EXPECT_EQ(sizeOf("exec:cmd package 'install' '-r' '-d' -S 0"), 0U);
    EXPECT_EQ(sizeOf("exec:cmd package install  '-r'  -S 18446744073709551615 "), UINT64_MAX);
    EXPECT_EQ(sizeOf("exec:cmd package 'install' -S 7 '-r'"), 7U);
    EXPECT_EQ(sizeOf("exec:cmd package 'install'"), std::nullopt);
    EXPECT_EQ(sizeOf("exec:cmd package 'install' -S"), std::nullopt);
    EXPECT_EQ(sizeOf("exec:cmd package 'install' -S -1"), std::nullopt);
    EXPECT_EQ(sizeOf("exec:cmd package 'install' -S 12x"), std::nullopt);
    EXPECT_EQ(sizeOf("exec:cmd package 'install' -S 18446744073709551616"), std::nullopt);
    for (const char* szOther : {"", "exec:", "exec:cmd package ", "exec:cmd package 'install-create' -S 1",
                                "exec:cmd package 'uninstall' x", "exec:cmd activity 'install' -S 1",
                                "shell:cmd package 'install' -S 1", "exec:cmd package '", "exec:cmd package ''"}) {
        EXPECT_FALSE(ParseInstallService(szOther)) << szOther;
    }
}

TEST(InstallReply, GivesExactlyItsBytes)
{
    const auto wholeOf = [](CInstallReply reply, std::size_t nPiece) {
        std::string szWhole;
        for (std::string szPiece = reply.NextPiece(nPiece); !szPiece.empty(); szPiece = reply.NextPiece(nPiece)) {
            EXPECT_LE(szPiece.size(), nPiece);
            szWhole += szPiece;
        }
        EXPECT_EQ(reply.SizeGiven(), szWhole.size());
        return szWhole;
    };
    for (const std::size_t nPiece : {1U, 3U, 100U}) {
        EXPECT_EQ(wholeOf(CInstallReply("Success"), nPiece), "Success\n");
        EXPECT_EQ(wholeOf(CInstallReply(""), nPiece), "\n");
        EXPECT_EQ(wholeOf(CInstallReply("Success", 0), nPiece), "");
        EXPECT_EQ(wholeOf(CInstallReply("Success", 3), nPiece), "Suc");
        EXPECT_EQ(wholeOf(CInstallReply("Success", 7), nPiece), "Success");
        EXPECT_EQ(wholeOf(CInstallReply("Success", 8), nPiece), "Success\n");
        EXPECT_EQ(wholeOf(CInstallReply("Success", 11), nPiece), "Success...\n");
    }
}

TEST(InstallReply, StopsWithoutBeingAtItsEnd)
{
    for (const std::uint64_t nStop : {0U, 2U, 7U, 8U, 9U}) {
        CInstallReply reply("Success");
        reply.StopAfter(nStop);
        const std::string_view whole = "Success\n";
        EXPECT_EQ(reply.NextPiece(100), whole.substr(0, nStop));
        EXPECT_EQ(reply.NextPiece(100), "");
        EXPECT_EQ(reply.IsGiven(), nStop >= whole.size());
    }
}

TEST(InstallReply, LastOneRepeats)
{
    CReplies replies({"a", "b"});
    EXPECT_EQ(replies.Next(), "a");
    EXPECT_EQ(replies.Next(), "b");
    EXPECT_EQ(replies.Next(), "b");
}

TEST_F(InstallTest, PackageArrivesByteForByte)
{
    Start();
    CAdbLink link = PairedLink();
    const ByteVector package = RandomBytes(3'000'001, 1);
    EXPECT_EQ(link.Install(package), "Success\n");
    EXPECT_TRUE(StoredPackage() == TextOfBytes(package));
    EXPECT_EQ(FolderContents(), ONLY_THE_PACKAGE);
    EXPECT_EQ(m_journal.Count("install: receiving 3000001 bytes"), 1U);
    EXPECT_EQ(m_journal.Count("install: stored 3000001 bytes"), 1U);
    EXPECT_TRUE(m_journal.WaitFor("install: replied Success"));
}

TEST_F(InstallTest, PartMayBeAsLongAsTheProtocolAllows)
{
    Start();
    CAdbLink link = PairedLink();
    const ByteVector package = RandomBytes(1024 * 1024, 1);
    const std::optional<std::uint32_t> nTheirId = link.Open(1, InstallService(package.size()));
    ASSERT_TRUE(nTheirId);
    EXPECT_TRUE(link.WritePart(1, *nTheirId, package));
    EXPECT_EQ(link.ReadReply(1, *nTheirId), "Success\n");
    EXPECT_TRUE(StoredPackage() == TextOfBytes(package));
}

TEST_F(InstallTest, NextPackageReplacesTheOneBefore)
{
    Start();
    CAdbLink link = PairedLink();
    EXPECT_EQ(link.Install(RandomBytes(100'000, 1)), "Success\n");
    const ByteVector second = RandomBytes(999, 2);
    EXPECT_EQ(link.Install(second), "Success\n");
    EXPECT_TRUE(StoredPackage() == TextOfBytes(second));
    EXPECT_EQ(FolderContents(), ONLY_THE_PACKAGE);
}

TEST_F(InstallTest, RepliesFollowTheCommandLine)
{
    m_options.replies = {"Failure [INSTALL_FAILED_ALREADY_EXISTS: there]", "Failure [INSTALL_FAILED_ABORTED]",
                         "Success"};
    Start();
    CAdbLink link = PairedLink();
    const ByteVector package = RandomBytes(10, 1);
    EXPECT_EQ(link.Install(package), "Failure [INSTALL_FAILED_ALREADY_EXISTS: there]\n");
    EXPECT_EQ(link.Install(package), "Failure [INSTALL_FAILED_ABORTED]\n");
    EXPECT_EQ(PairedLink().Install(package), "Success\n");
    EXPECT_EQ(link.Install(package), "Success\n");
    EXPECT_EQ(m_journal.Count("install: replied Failure [INSTALL_FAILED_ALREADY_EXISTS: there]"), 1U);
}

TEST_F(InstallTest, EmptyPackageIsAPackage)
{
    for (const EInstallFault fault : {EInstallFault::None, EInstallFault::Drop}) {
        m_options.installFault = fault;
        Start();
        EXPECT_EQ(PairedLink().Install({}), "Success\n");
        EXPECT_EQ(FolderContents(), ONLY_THE_PACKAGE);
        EXPECT_EQ(StoredPackage(), "");
    }
}

TEST_F(InstallTest, WhatGoesBeyondTheAnnouncedSizeIsIgnored)
{
    Start();
    CAdbLink link = PairedLink();
    const std::optional<std::uint32_t> nTheirId = link.Open(1, InstallService(5));
    ASSERT_TRUE(nTheirId);
    EXPECT_TRUE(link.WritePart(1, *nTheirId, BytesOf("12345678")));
    EXPECT_EQ(link.ReadReply(1, *nTheirId), "Success\n");
    EXPECT_EQ(StoredPackage(), "12345");
}

TEST_F(InstallTest, UnusableSizesAreAnsweredAtOnce)
{
    Start();
    CAdbLink link = PairedLink();
    const auto replyTo = [&](std::uint32_t nId, const std::string& szService) -> std::optional<std::string> {
        const std::optional<std::uint32_t> nTheirId = link.Open(nId, szService);
        return nTheirId ? link.ReadReply(nId, *nTheirId) : std::nullopt;
    };
    EXPECT_EQ(replyTo(1, "exec:cmd package 'install'"), NO_SIZE_REPLY);
    EXPECT_EQ(replyTo(2, "exec:cmd package 'install' -S many"), NO_SIZE_REPLY);
    EXPECT_EQ(replyTo(3, InstallService(CInstallStream::LARGEST_PACKAGE + 1)), TOO_LARGE_REPLY);
    EXPECT_EQ(replyTo(4, InstallService(UINT64_MAX)), TOO_LARGE_REPLY);
    EXPECT_EQ(m_journal.Count("install: refused: no size"), 2U);
    EXPECT_EQ(m_journal.Count("install: refused: 268435457 bytes"), 1U);
    EXPECT_EQ(m_journal.Count("install: receiving"), 0U);
    EXPECT_EQ(link.Install(RandomBytes(10, 1)), "Success\n");
}

TEST_F(InstallTest, StreamsDoNotMixUp)
{
    Start();
    CAdbLink link = PairedLink();
    const std::optional<std::uint32_t> nFirst = link.Open(1, InstallService(4));
    const std::optional<std::uint32_t> nSecond = link.Open(2, InstallService(6));
    ASSERT_TRUE(nFirst && nSecond);
    EXPECT_TRUE(link.WritePart(2, *nSecond, BytesOf("abc")));
    EXPECT_TRUE(link.WritePart(1, *nFirst, BytesOf("12")));
    EXPECT_TRUE(link.WritePart(2, *nSecond, BytesOf("def")));
    EXPECT_EQ(link.ReadReply(2, *nSecond), "Success\n");
    EXPECT_EQ(StoredPackage(), "abcdef");
    EXPECT_TRUE(link.WritePart(1, *nFirst, BytesOf("34")));
    EXPECT_EQ(link.ReadReply(1, *nFirst), "Success\n");
    EXPECT_EQ(StoredPackage(), "1234");
    EXPECT_EQ(FolderContents(), ONLY_THE_PACKAGE);
}

TEST_F(InstallTest, TooManyStreamsAreRefused)
{
    Start();
    CAdbLink link = PairedLink();
    std::uint32_t nId = 0;
    std::optional<std::uint32_t> nTheirId;
    while (nId < CDebuggingSession::MOST_STREAMS) {
        nTheirId = link.Open(++nId, InstallService(1));
        ASSERT_TRUE(nTheirId);
    }
    EXPECT_FALSE(link.Open(nId + 1, InstallService(1)));
    EXPECT_TRUE(link.WritePart(nId, *nTheirId, BytesOf("x")));
    EXPECT_EQ(link.ReadReply(nId, *nTheirId), "Success\n");
    EXPECT_TRUE(link.Open(nId + 2, InstallService(1)));
}

TEST_F(InstallTest, BrokenOffInstallLeavesTheEarlierPackage)
{
    Start();
    const ByteVector package = RandomBytes(1000, 1);
    {
        CAdbLink link = PairedLink();
        EXPECT_EQ(link.Install(package), "Success\n");
        const std::optional<std::uint32_t> nTheirId = link.Open(9, InstallService(10));
        ASSERT_TRUE(nTheirId);
        EXPECT_TRUE(link.WritePart(9, *nTheirId, BytesOf("1234")));
        link.Send({Letters("CLSE"), 9, *nTheirId});
        EXPECT_TRUE(m_journal.WaitFor("install: broken off after 4 of 10 bytes"));
        ASSERT_TRUE(link.Open(10, InstallService(11)));
    }
    EXPECT_TRUE(m_journal.WaitFor("install: broken off after 0 of 11 bytes"));
    EXPECT_TRUE(m_journal.WaitFor("debugging: closed"));
    EXPECT_TRUE(StoredPackage() == TextOfBytes(package));
    EXPECT_EQ(FolderContents(), ONLY_THE_PACKAGE);
}

TEST_F(InstallTest, UnwritableFileIsAFailure)
{
    m_options.store = m_folder / "missing" / "stored.apk";
    Start();
    CAdbLink link = PairedLink();
    const std::optional<std::uint32_t> nTheirId = link.Open(1, InstallService(10));
    ASSERT_TRUE(nTheirId);
    EXPECT_EQ(link.ReadReply(1, *nTheirId), DISK_REPLY);
    EXPECT_EQ(m_journal.Count("install: refused: " + m_options.store.string() + ".part"), 1U);
}

TEST_F(InstallTest, FileThatCannotBeReplacedIsAFailure)
{
    m_options.store = m_folder / "folder";
    std::filesystem::create_directory(m_options.store);
    Start();
    EXPECT_EQ(PairedLink().Install(BytesOf("x")), DISK_REPLY);
    EXPECT_TRUE(m_journal.WaitFor("install: refused: " + m_options.store.string() + " cannot be written"));
    EXPECT_EQ(FolderContents(), std::vector<std::string>{"folder"});
}

TEST_F(InstallTest, DropBreaksTheConnectionHalfway)
{
    m_options.installFault = EInstallFault::Drop;
    Start();
    CAdbLink link = PairedLink();
    const std::optional<std::uint32_t> nTheirId = link.Open(1, InstallService(10));
    ASSERT_TRUE(nTheirId);
    EXPECT_TRUE(link.WritePart(1, *nTheirId, BytesOf("1234")));
    EXPECT_FALSE(link.WritePart(1, *nTheirId, BytesOf("5")));
    EXPECT_TRUE(m_journal.WaitFor("debugging: gave up: dropped on install"));
    EXPECT_EQ(m_journal.Count("install: broken off after 5 of 10 bytes"), 1U);
    EXPECT_TRUE(FolderContents().empty());
}

TEST_F(InstallTest, SilentInstallStoresAndNeverAnswers)
{
    m_options.installFault = EInstallFault::Silent;
    Start();
    CAdbLink link = PairedLink();
    const std::optional<std::uint32_t> nTheirId = link.Open(1, InstallService(3));
    ASSERT_TRUE(nTheirId);
    EXPECT_TRUE(link.WritePart(1, *nTheirId, BytesOf("abc")));
    EXPECT_TRUE(m_journal.WaitFor("install: stays silent"));
    EXPECT_EQ(StoredPackage(), "abc");
    // Whatever it is asked next, the answer is the first thing that comes: nothing was sent for the install.
    EXPECT_FALSE(link.Open(2, "shell:"));
    link.Send({Letters("CLSE"), 1, *nTheirId});
    EXPECT_TRUE(m_journal.WaitFor("install: broken off without a reply"));
}

TEST_F(InstallTest, EndlessReplyEndsAfterAll)
{
    m_options.installFault = EInstallFault::EndlessReply;
    Start();
    const std::optional<std::string> szReply = PairedLink().Install(BytesOf("x"));
    ASSERT_TRUE(szReply);
    EXPECT_EQ(szReply->size(), ENDLESS_REPLY_SIZE);
    EXPECT_TRUE(szReply->starts_with("Success...."));
    EXPECT_TRUE(m_journal.WaitFor(std::format("install: replied {} bytes", ENDLESS_REPLY_SIZE)));
}

TEST_F(InstallTest, EndlessReplyMayBeCutOff)
{
    m_options.installFault = EInstallFault::EndlessReply;
    Start();
    CAdbLink link = PairedLink();
    const std::optional<std::uint32_t> nTheirId = link.Open(1, InstallService(1));
    ASSERT_TRUE(nTheirId);
    EXPECT_TRUE(link.WritePart(1, *nTheirId, BytesOf("x")));
    EXPECT_EQ(link.ReadReply(1, *nTheirId, 100), std::nullopt);
    link.Send({Letters("CLSE"), 1, *nTheirId});
    EXPECT_TRUE(m_journal.WaitFor("install: broken off after 65536 bytes of the reply"));
    EXPECT_FALSE(link.Open(2, "shell:"));
}

TEST_F(InstallTest, ReplyIsAsLongAsTold)
{
    m_options.replies = {"Failure [X: y"};
    m_options.nReplySize = 10'000'000;
    Start();
    const std::optional<std::string> szReply = PairedLink().Install(BytesOf("x"));
    ASSERT_TRUE(szReply);
    EXPECT_EQ(szReply->size(), 10'000'000U);
    EXPECT_TRUE(szReply->starts_with("Failure [X: y...."));
    EXPECT_TRUE(szReply->ends_with("..\n"));
}

TEST_F(InstallTest, ReplyThatStopsLeavesTheStreamOpen)
{
    m_options.nStopAfter = 3;
    Start();
    CAdbLink link = PairedLink();
    const std::optional<std::uint32_t> nTheirId = link.Open(1, InstallService(1));
    ASSERT_TRUE(nTheirId);
    EXPECT_TRUE(link.WritePart(1, *nTheirId, BytesOf("x")));
    const std::optional<STestMessage> piece = link.Receive();
    ASSERT_TRUE(piece);
    EXPECT_EQ(TextOfBytes(piece->payload), "Suc");
    EXPECT_EQ(m_journal.Count("install: stops after 3 bytes of the reply"), 0U);
    for (int n = 0; n < 2; ++n) {
        link.Send({Letters("OKAY"), 1, *nTheirId});
    }
    // Whatever it is asked next, the answer is the first thing that comes.
    EXPECT_FALSE(link.Open(2, "shell:"));
    EXPECT_EQ(m_journal.Count("install: stops after 3 bytes of the reply"), 1U);
    link.Send({Letters("CLSE"), 1, *nTheirId});
    EXPECT_TRUE(m_journal.WaitFor("install: broken off after 3 bytes of the reply"));
}

TEST_F(InstallTest, FloodIsTheAnswerToEveryService)
{
    m_options.nFlood = 200'000;
    m_options.replies = {"first", "second"};
    Start();
    CAdbLink link = PairedLink();
    EXPECT_EQ(link.Banner().find("cmd"), std::string::npos);
    const auto replyTo = [&](std::uint32_t nId, const std::string& szService) {
        return link.ReadReply(nId, link.Open(nId, szService).value()).value_or("");
    };
    const std::string szFirst = replyTo(1, "shell:rm -f x");
    EXPECT_EQ(szFirst.size(), 200'000U);
    EXPECT_TRUE(szFirst.starts_with("first...."));
    EXPECT_TRUE(replyTo(2, InstallService(100)).starts_with("second...."));
    // Copying a file is none: it is only said to be done.
    const std::optional<std::uint32_t> nCopy = link.Open(3, "sync:");
    ASSERT_TRUE(nCopy);
    const std::optional<STestMessage> copied = link.Receive();
    ASSERT_TRUE(copied);
    EXPECT_EQ(TextOfBytes(copied->payload), std::string("STAT") + std::string(12, '\0'));
    link.Send({Letters("OKAY"), 3, *nCopy});
    EXPECT_TRUE(link.WritePart(3, *nCopy, BytesOf("DATA")));
    EXPECT_TRUE(link.WritePart(3, *nCopy, BytesOf("DONExxxx")));
    const std::optional<STestMessage> done = link.Receive();
    ASSERT_TRUE(done);
    EXPECT_EQ(TextOfBytes(done->payload), std::string("OKAY") + std::string(4, '\0'));
    link.Send({Letters("OKAY"), 3, *nCopy});
    EXPECT_TRUE(link.WritePart(3, *nCopy, BytesOf(std::string_view("QUIT\0\0\0\0", 8))));
    EXPECT_EQ(link.ReadReply(3, *nCopy), "");
    EXPECT_EQ(m_journal.Count("debugging: floods service shell:rm -f x"), 1U);
    EXPECT_TRUE(FolderContents().empty());
}

// A computer that takes small pieces only gets small pieces.
TEST_F(InstallTest, PiecesOfTheReplyRespectTheComputersLimit)
{
    m_options.bTrustAll = true;
    m_options.nReplySize = 10'000;
    Start();
    CAdbLink link(m_pWatch->DebuggingPort());
    ASSERT_EQ(link.Connect(CComputer("x"), Greeting(0x01000001, 4096)), EWelcome::Device);
    const std::optional<std::uint32_t> nTheirId = link.Open(1, InstallService(1));
    ASSERT_TRUE(nTheirId);
    EXPECT_TRUE(link.WritePart(1, *nTheirId, BytesOf("x")));
    const std::optional<STestMessage> piece = link.Receive();
    ASSERT_TRUE(piece);
    EXPECT_EQ(piece->payload.size(), 4096U);
}
