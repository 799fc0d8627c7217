// The program itself: arguments, output, signals, exit status.

#include "Computer.h"
#include "WatchTest.h"

#include <arpa/inet.h>
#include <array>
#include <csignal>
#include <fcntl.h>
#include <fstream>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <thread>

extern char** environ;

namespace {

constexpr const char* PROGRAM = EMULATED_WATCH_PROGRAM;

std::string ContentsOf(const std::filesystem::path& file)
{
    std::ifstream stream(file);
    return {std::istreambuf_iterator<char>(stream), {}};
}

// A port that was free a moment ago.
std::uint16_t FreePort()
{
    const CFileDescriptor fd(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t nSize = sizeof address;
    bind(fd.Get(), reinterpret_cast<const sockaddr*>(&address), nSize);
    getsockname(fd.Get(), reinterpret_cast<sockaddr*>(&address), &nSize);
    return ntohs(address.sin_port);
}

// A running program, its outputs in files of the folder.
class CProgram
{
public:
    CProgram(const std::filesystem::path& folder, const std::vector<std::string>& arguments)
        : m_out(folder / "out"), m_err(folder / "err")
    {
        std::vector<char*> argv = {const_cast<char*>(PROGRAM)};
        for (const std::string& szArgument : arguments) {
            argv.push_back(const_cast<char*>(szArgument.c_str()));
        }
        argv.push_back(nullptr);
        posix_spawn_file_actions_t actions;
        posix_spawn_file_actions_init(&actions);
        posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, m_out.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
        posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, m_err.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
        const int nError = posix_spawn(&m_nProcess, PROGRAM, &actions, nullptr, argv.data(), environ);
        posix_spawn_file_actions_destroy(&actions);
        if (nError != 0) {
            throw std::system_error(nError, std::generic_category(), PROGRAM);
        }
    }

    ~CProgram()
    {
        if (m_nProcess > 0) {
            kill(m_nProcess, SIGKILL);
            waitpid(m_nProcess, nullptr, 0);
        }
    }

    CProgram(const CProgram&) = delete;
    CProgram& operator=(const CProgram&) = delete;

    bool WaitForOutput(const std::string& szText) const
    {
        for (int i = 0; i < 200; ++i) {
            if (Output().find(szText) != std::string::npos) {
                return true;
            }
            std::this_thread::sleep_for(std::chrono::milliseconds(100));
        }
        return false;
    }

    void Signal(int nSignal) const
    {
        kill(m_nProcess, nSignal);
    }

    // The exit status; -1 when it was ended by a signal or does not end in time.
    int Wait()
    {
        for (int i = 0; i < 200; ++i) {
            int nStatus = 0;
            if (waitpid(m_nProcess, &nStatus, WNOHANG) == m_nProcess) {
                m_nProcess = 0;
                return WIFEXITED(nStatus) ? WEXITSTATUS(nStatus) : -1;
            }
            std::this_thread::sleep_for(std::chrono::milliseconds(100));
        }
        return -1;
    }

    std::string Output() const
    {
        return ContentsOf(m_out);
    }

    std::string Errors() const
    {
        return ContentsOf(m_err);
    }

private:
    std::filesystem::path m_out;
    std::filesystem::path m_err;
    pid_t m_nProcess = 0;
};

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
    for (const char* szName : {"--address", "--port", "--pairing-port", "--code", "--store", "--reply", "--trust-all",
                               "--name", "--pairings", "--timeout", "--offline", "--mute", "--unauthorized",
                               "--drop-on-install", "--silent-install", "--endless-reply", "--reply-size"}) {
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
