// Throws garbage at both ports of a watch from several sides at once for a while, then looks whether it is unhurt: it
// serves a computer, has closed what was opened, and ends without a word of the checks that it is built with.
//
//     watch-garbage SECONDS [SEED]     without a seed, another one at every run; printed in any case

#include "Garbage.h"
#include "Program.h"

#include <array>
#include <atomic>
#include <charconv>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <format>
#include <functional>
#include <stdexcept>
#include <string_view>
#include <thread>
#include <unistd.h>

namespace {

constexpr const char* CODE = "654321";
constexpr unsigned THROWERS = 4;

using Clock = std::chrono::steady_clock;

void Require(bool bTrue, const std::string& szWhat)
{
    if (!bTrue) {
        throw std::runtime_error(szWhat);
    }
}

unsigned ToNumber(std::string_view text)
{
    unsigned nNumber = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), nNumber);
    Require(error == std::errc() && end == text.data() + text.size(), std::format("'{}' is no number", text));
    return nNumber;
}

class CFolder
{
public:
    CFolder()
    {
        std::string szFolder = (std::filesystem::temp_directory_path() / "watch-garbage.XXXXXX").string();
        Require(mkdtemp(szFolder.data()) != nullptr, "mkdtemp");
        m_folder = szFolder;
    }

    ~CFolder()
    {
        std::error_code ignored;
        std::filesystem::remove_all(m_folder, ignored);
    }

    CFolder(const CFolder&) = delete;
    CFolder& operator=(const CFolder&) = delete;

    const std::filesystem::path& Path() const
    {
        return m_folder;
    }

private:
    std::filesystem::path m_folder;
};

struct SThrow
{
    const char* szName;
    std::function<bool(CGarbage&)> once;
    std::atomic<unsigned> nTimes = 0;
};

class CSiege
{
public:
    explicit CSiege(unsigned nSeed) : m_nSeed(nSeed) {}

    void Run(std::chrono::seconds time)
    {
        Require(m_program.WaitForOutput("listening "), "the watch does not start: " + m_program.Errors());
        Require(m_trusted.Pair(m_nPairingPort, CODE).has_value(), "the watch does not pair");
        const std::size_t nFiles = m_program.OpenFiles();
        ThrowUntil(Clock::now() + time);
        for (const SThrow& kind : m_throws) {
            std::printf("%-28s %u\n", kind.szName, kind.nTimes.load());
            Require(kind.nTimes > 0, std::format("{} was never thrown", kind.szName));
        }
        ExpectService();
        for (int i = 0; m_program.OpenFiles() != nFiles; ++i) {
            Require(i < 100, std::format("{} files open instead of {}", m_program.OpenFiles(), nFiles));
            std::this_thread::sleep_for(std::chrono::milliseconds(100));
        }
        m_program.Signal(SIGTERM);
        const int nStatus = m_program.Wait();
        Require(nStatus == 0 && m_program.Errors().empty(),
                std::format("the watch ended with {}:\n{}", nStatus, m_program.Errors()));
    }

private:
    void ThrowUntil(Clock::time_point end)
    {
        std::array<std::string, THROWERS> faults;
        {
            std::array<std::jthread, THROWERS> throwers;
            for (unsigned n = 0; n < THROWERS; ++n) {
                throwers[n] = std::jthread([this, n, end, &fault = faults[n]] { fault = Throw(n, end); });
            }
        }
        for (const std::string& szFault : faults) {
            Require(szFault.empty(), szFault + "\n" + m_program.Errors());
        }
    }

    // What went wrong; nothing when nothing did.
    std::string Throw(unsigned nThrower, Clock::time_point end)
    try {
        CGarbage garbage(m_nPairingPort, m_nPort, m_nSeed + nThrower);
        for (std::size_t n = nThrower; Clock::now() < end; ++n) {
            SThrow& kind = m_throws[n % m_throws.size()];
            Require(kind.once(garbage), std::format("after {} the watch keeps the connection", kind.szName));
            ++kind.nTimes;
        }
        return {};
    } catch (const std::exception& error) {
        return error.what();
    }

    void ExpectService() const
    {
        const CComputer next("next");
        Require(next.Pair(m_nPairingPort, CODE).has_value(), "the watch does not pair any more");
        CAdbLink link(m_nPort);
        Require(link.Connect(next) == EWelcome::Device, "the watch does not connect any more");
        Require(link.Install(BytesOf("package")) == "Success\n", "the watch does not install any more");
    }

    unsigned m_nSeed;
    std::uint16_t m_nPort = FreePort();
    std::uint16_t m_nPairingPort = FreePort();
    CFolder m_folder;
    CProgram m_program{m_folder.Path(),
                       {"--address", "127.0.0.1", "--port", std::to_string(m_nPort), "--pairing-port",
                        std::to_string(m_nPairingPort), "--code", CODE, "--store",
                        (m_folder.Path() / "stored.apk").string()}};
    CComputer m_trusted{"trusted"};
    std::array<SThrow, 6> m_throws{{
        {"random bytes", [](CGarbage& garbage) { return garbage.ThrowRandomBytes(); }},
        {"parts of a handshake", [](CGarbage& garbage) { return garbage.ThrowPartOfATlsHandshake(); }},
        {"damaged greetings", [](CGarbage& garbage) { return garbage.ThrowDamagedGreeting(); }},
        {"damaged pairings", [](CGarbage& garbage) { return garbage.ThrowDamagedPairing(CODE); }},
        {"mad messages", [this](CGarbage& garbage) { return garbage.ThrowMadMessages(m_trusted); }},
        {"random bytes inside TLS", [this](CGarbage& garbage) { return garbage.ThrowRandomBytesInsideTls(m_trusted); }},
    }};
};

} // namespace

int main(int argc, char* argv[])
try {
    std::signal(SIGPIPE, SIG_IGN);
    Require(argc == 2 || argc == 3, "usage: watch-garbage SECONDS [SEED]");
    const unsigned nSeed = argc == 3 ? ToNumber(argv[2]) : std::random_device()();
    std::printf("seed %u\n", nSeed);
    CSiege(nSeed).Run(std::chrono::seconds(ToNumber(argv[1])));
    return EXIT_SUCCESS;
} catch (const std::exception& error) {
    std::fprintf(stderr, "%s\n", error.what());
    return EXIT_FAILURE;
}
