// The program itself: arguments, output, signals, exit status.

#include "Computer.h"
#include "Program.h"
#include "WatchTest.h"

#include <csignal>

namespace {

class CommandLineTest : public CWatchTest
{
protected:
    std::vector<std::string> Arguments() const
    {
        return {"--address",      "127.0.0.1",
                "--port",         std::to_string(m_nPort),
                "--pairing-port", std::to_string(m_nPairingPort),
                "--code",         "654321",
                "--store",        m_options.store.string()};
    }

    std::uint16_t m_nPort = FreePort();
    std::uint16_t m_nPairingPort = FreePort();
};

} // namespace

TEST_F(CommandLineTest, WatchServesUntilItIsToldToStop)
{
    for (const int nSignal : {SIGTERM, SIGINT}) {
        CProgram program(m_folder, Arguments());
        ASSERT_TRUE(program.WaitForOutput(
            std::format("listening 127.0.0.1 debugging {} pairing {} code 654321\n", m_nPort, m_nPairingPort)));
        const CComputer computer("person@home");
        EXPECT_EQ(computer.Pair(m_nPairingPort, "654321"), "adb-EMULATEDWATCH-000001");
        CAdbLink link(m_nPort);
        EXPECT_EQ(link.Connect(computer), EWelcome::Device);
        EXPECT_EQ(link.Install(BytesOf("package")), "Success\n");
        EXPECT_TRUE(program.WaitForOutput("install: replied Success\n"));
        EXPECT_EQ(StoredPackage(), "package");
        program.Signal(nSignal);
        EXPECT_EQ(program.Wait(), 0);
        EXPECT_TRUE(program.Output().ends_with("debugging: closed\nstopped\n")) << program.Output();
        EXPECT_EQ(program.Errors(), "");
    }
}

TEST_F(CommandLineTest, BadArgumentsAreAnsweredWithTheUsageLine)
{
    const std::vector<std::string> rows[] = {
        {}, {"--bogus"}, {"--port", "0"}, {"--code", "12"}, {"--address", "nowhere"}};
    for (const std::vector<std::string>& arguments : rows) {
        CProgram program(m_folder, arguments);
        EXPECT_EQ(program.Wait(), 2);
        EXPECT_EQ(program.Output(), "");
        const std::string szErrors = program.Errors();
        EXPECT_TRUE(szErrors.starts_with("emulated-watch: ")) << szErrors;
        EXPECT_NE(szErrors.find("\nusage: emulated-watch --address A --port P "), std::string::npos) << szErrors;
        EXPECT_EQ(std::ranges::count(szErrors, '\n'), 2);
    }
}

TEST_F(CommandLineTest, HelpNamesEverySwitchOfTheUsageLine)
{
    CProgram program(m_folder, {"--help"});
    EXPECT_EQ(program.Wait(), 0);
    const std::string szHelp = program.Output();
    for (const char* szName :
         {"--address", "--port", "--pairing-port", "--code", "--store", "--reply", "--trust-all", "--name",
          "--pairings", "--timeout", "--offline", "--mute", "--unauthorized", "--drop-on-install", "--silent-install",
          "--endless-reply", "--reply-size", "--flood", "--stop-after"}) {
        EXPECT_NE(szHelp.find(std::string("\n  ") + szName + ' '), std::string::npos) << szName;
        EXPECT_NE(szHelp.substr(0, szHelp.find('\n')).find(szName), std::string::npos) << szName;
    }
}

TEST_F(CommandLineTest, PortInUseIsAFailureOfItsOwn)
{
    m_options.nDebuggingPort = m_nPort;
    Start();
    CProgram program(m_folder, Arguments());
    EXPECT_EQ(program.Wait(), 1);
    EXPECT_EQ(program.Output(), "");
    EXPECT_EQ(program.Errors(),
              std::format("emulated-watch: cannot listen on 127.0.0.1:{}: Address already in use\n", m_nPort));
}
