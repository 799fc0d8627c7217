// The emulated watch: a device that real adb pairs with, connects to and installs a package on.

#include "Options.h"
#include "Watch.h"

#include <arpa/inet.h>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace {

// The threads of the watch inherit the mask, so a signal waits until this thread asks for it.
sigset_t BlockStopSignals()
{
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGINT);
    sigaddset(&signals, SIGTERM);
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);
    return signals;
}

void RunUntilStopped(const SOptions& options)
{
    const sigset_t signals = BlockStopSignals();
    // Whoever waits for an event reads through a pipe or a file, where the C library would hold lines back.
    CLog log([](const std::string& szLine) {
        std::puts(szLine.c_str());
        std::fflush(stdout);
    });
    {
        const CWatch watch(options, log);
        // NOLINTNEXTLINE(concurrency-mt-unsafe): the C library has a buffer for each thread
        const std::string szAddress = inet_ntoa(options.address);
        log.Line("listening {} debugging {} pairing {} code {}", szAddress, watch.DebuggingPort(), watch.PairingPort(),
                 options.szCode);
        int nSignal = 0;
        sigwait(&signals, &nSignal);
    }
    log.Line("stopped");
}

} // namespace

int main(int argc, char* argv[])
{
    const std::span<const char* const> arguments(argv + 1, argv + argc);
    try {
        if (arguments.size() == 1 && std::strcmp(arguments[0], "--help") == 0) {
            std::fputs(Help().c_str(), stdout);
        } else {
            RunUntilStopped(ParseOptions(arguments));
        }
        return EXIT_SUCCESS;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "emulated-watch: %s; --help tells more\n", error.what());
        return EXIT_FAILURE;
    }
}
