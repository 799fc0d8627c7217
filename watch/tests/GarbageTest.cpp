// What strangers, and trusted computers gone mad, may throw at the ports: the watch lives on and serves the next one.

#include "Garbage.h"
#include "WatchTest.h"

#include <functional>

namespace {

constexpr unsigned ROUNDS = 60;

class GarbageTest : public CWatchTest
{
protected:
    // Throws so often, and then wants to be served.
    void Expect(unsigned nRounds, unsigned nSeed, const std::function<bool(CGarbage&)>& throwOnce)
    {
        CGarbage garbage(m_pWatch->PairingPort(), m_pWatch->DebuggingPort(), nSeed);
        for (unsigned n = 0; n < nRounds; ++n) {
            EXPECT_TRUE(throwOnce(garbage)) << "round " << n;
        }
        EXPECT_EQ(PairedLink().Install(BytesOf("x")), "Success\n");
        EXPECT_EQ(StoredPackage(), "x");
        EXPECT_EQ(FolderContents(), std::vector<std::string>{"stored.apk"});
    }
};

} // namespace

TEST_F(GarbageTest, RandomBytesAtBothPorts)
{
    Start();
    Expect(ROUNDS, 1, [](CGarbage& garbage) { return garbage.ThrowRandomBytes(); });
}

TEST_F(GarbageTest, PartsOfATlsHandshakeAtBothPorts)
{
    Start();
    Expect(ROUNDS, 2, [](CGarbage& garbage) { return garbage.ThrowPartOfATlsHandshake(); });
}

TEST_F(GarbageTest, DamagedGreetings)
{
    Start();
    Expect(ROUNDS, 3, [](CGarbage& garbage) { return garbage.ThrowDamagedGreeting(); });
}

TEST_F(GarbageTest, MadMessagesOfATrustedComputer)
{
    m_options.bTrustAll = true;
    Start();
    const CComputer computer("x");
    Expect(ROUNDS / 10, 4, [&](CGarbage& garbage) { return garbage.ThrowMadMessages(computer); });
}

TEST_F(GarbageTest, RandomBytesInsideTls)
{
    m_options.bTrustAll = true;
    Start();
    const CComputer computer("x");
    Expect(ROUNDS / 10, 5, [&](CGarbage& garbage) { return garbage.ThrowRandomBytesInsideTls(computer); });
}

TEST_F(GarbageTest, DamagedPairings)
{
    Start();
    Expect(ROUNDS / 6, 6, [this](CGarbage& garbage) { return garbage.ThrowDamagedPairing(m_options.szCode); });
}
