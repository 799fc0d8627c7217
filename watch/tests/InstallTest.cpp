// Installs: what arrives, what is answered, what goes wrong.

#include "InstallStream.h"
#include "WatchTest.h"

#include <algorithm>
#include <random>

namespace {

using InstallTest = CWatchTest;
using namespace std::string_view_literals;

// Bytes that look random and are the same every time.
std::string RandomPackage(std::size_t nSize)
{
    std::mt19937 generator(1);
    std::string szBytes(nSize, '\0');
    std::ranges::generate(szBytes, [&] { return static_cast<char>(generator()); });
    return szBytes;
}

} // namespace

TEST_F(InstallTest, PackageArrivesByteForByteAndReplacesTheOneBefore)
{
    Start();
    CAdbLink link = PairedLink();
    for (const std::size_t nSize : {3'000'001U, 999U, 0U}) {
        const std::string szPackage = RandomPackage(nSize);
        EXPECT_EQ(link.Install(szPackage), "Success\n");
        EXPECT_TRUE(StoredPackage() == szPackage) << nSize;
        EXPECT_EQ(m_journal.Count(std::format("install: receiving {} bytes", nSize)), 1U);
        EXPECT_EQ(m_journal.Count(std::format("install: stored {} bytes", nSize)), 1U);
    }
    EXPECT_TRUE(m_journal.WaitFor("install: replied Success", 3));
}

TEST_F(InstallTest, RepliesFollowTheCommandLine)
{
    m_options.replies = {"Failure [INSTALL_FAILED_ALREADY_EXISTS: there]", "Failure [INSTALL_FAILED_ABORTED]",
                         "Success"};
    Start();
    CAdbLink link = PairedLink();
    EXPECT_EQ(link.Install("package"), "Failure [INSTALL_FAILED_ALREADY_EXISTS: there]\n");
    EXPECT_EQ(link.Install("package"), "Failure [INSTALL_FAILED_ABORTED]\n");
    EXPECT_EQ(PairedLink().Install("package"), "Success\n");
    EXPECT_EQ(link.Install("package"), "Success\n");
    EXPECT_EQ(m_journal.Count("install: replied Failure [INSTALL_FAILED_ALREADY_EXISTS: there]"), 1U);
}

TEST_F(InstallTest, BrokenOffInstallLeavesTheEarlierPackage)
{
    Start();
    {
        CAdbLink link = PairedLink();
        link.Install("package");
        const SStreamIds stream = link.OpenInstall(10);
        link.WritePart(stream, "1234");
        link.Send(EAdbCommand::Close, stream);
        EXPECT_TRUE(m_journal.WaitFor("install: broken off after 4 of 10 bytes"));
        link.OpenInstall(11);
    }
    EXPECT_TRUE(m_journal.WaitFor("install: broken off after 0 of 11 bytes"));
    EXPECT_EQ(StoredPackage(), "package");
}

TEST_F(InstallTest, FileThatCannotBeWrittenEndsTheConnection)
{
    m_options.store = m_folder / "missing" / "stored.apk";
    Start();
    EXPECT_THROW(PairedLink().Install("package"), CPeerClosed);
    EXPECT_TRUE(m_journal.WaitFor("debugging: gave up: " + m_options.store.string() + ".part cannot be written"));
}

TEST_F(InstallTest, DropBreaksTheConnectionHalfway)
{
    m_options.bDropOnInstall = true;
    Start();
    CAdbLink link = PairedLink();
    const SStreamIds stream = link.OpenInstall(10);
    link.WritePart(stream, "1234");
    EXPECT_THROW(link.WritePart(stream, "5"), CPeerClosed);
    EXPECT_TRUE(m_journal.WaitFor("debugging: gave up: dropped on install"));
    EXPECT_FALSE(std::filesystem::exists(m_options.store));
}

TEST_F(InstallTest, ReplyThatStopsLeavesTheStreamOpen)
{
    const std::pair<std::size_t, const char*> rows[] = {{0, "install: stays silent"},
                                                        {3, "install: stops after 3 bytes of the reply"}};
    for (const auto& [nStop, szEvent] : rows) {
        m_options.nStopAfter = nStop;
        Start();
        CAdbLink link = PairedLink();
        const SStreamIds stream = link.OpenInstall(7);
        link.WritePart(stream, "package");
        if (nStop > 0) {
            EXPECT_EQ(TextOf(link.Receive().payload), "Suc");
            EXPECT_FALSE(link.Open("shell:"));
            EXPECT_EQ(m_journal.Count(szEvent), 0U) << "not yet acknowledged";
            link.Send(EAdbCommand::Okay, stream);
        }
        EXPECT_TRUE(m_journal.WaitFor(szEvent)) << szEvent;
        EXPECT_EQ(StoredPackage(), "package");
        // Whatever it is asked next, the answer is the first thing that comes.
        EXPECT_FALSE(link.Open("shell:"));
    }
}

TEST_F(InstallTest, ReplyIsAsLongAsTold)
{
    m_options.replies = {"Failure [X: y"};
    m_options.nReplySize = 1'000'000;
    Start();
    EXPECT_TRUE(PairedLink().Install("x") == "Failure [X: y" + std::string(1'000'000 - 14, '.') + '\n');
}

TEST_F(InstallTest, ReplyMayBeCutOff)
{
    m_options.nReplySize = 1'000'000;
    Start();
    CAdbLink link = PairedLink();
    const SStreamIds stream = link.OpenInstall(1);
    link.WritePart(stream, "x");
    link.Receive();
    link.Send(EAdbCommand::Close, stream);
    EXPECT_TRUE(m_journal.WaitFor("install: broken off after 65536 bytes of the reply"));
    EXPECT_FALSE(link.Open("shell:"));
}

TEST_F(InstallTest, FloodIsTheAnswerToEveryServiceButCopying)
{
    m_options.bFlood = true;
    m_options.nReplySize = 200'000;
    m_options.replies = {"first", "second"};
    m_options.bTrustAll = true;
    Start();
    CAdbLink link = Link();
    EXPECT_EQ(link.Connect(CComputer("x")).find("cmd"), std::string::npos);
    EXPECT_TRUE(link.ReadReply(link.Open("shell:rm -f x").value()) == "first" + std::string(200'000 - 6, '.') + '\n');
    EXPECT_TRUE(link.ReadReply(link.OpenInstall(100)).starts_with("second...."));
    EXPECT_EQ(m_journal.Count("debugging: floods service shell:rm -f x"), 1U);

    const SStreamIds copy = link.Open("sync:").value();
    EXPECT_EQ(link.ReadPiece(copy), "STAT\0\0\0\0\0\0\0\0\0\0\0\0"sv);
    link.WritePart(copy, "DATA");
    link.WritePart(copy, "DONExxxx");
    EXPECT_EQ(link.ReadPiece(copy), "OKAY\0\0\0\0"sv);
    link.WritePart(copy, "QUIT\0\0\0\0"sv);
    EXPECT_EQ(link.ReadReply(copy), "");
}
