// The emulated watch: a device that real adb pairs with, connects to and installs a package on.

#include "Log.h"
#include "Options.h"
#include "Watch.h"

#include <arpa/inet.h>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>

namespace {

constexpr int EXIT_USAGE = 2;

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

void RunUntilStopped(const SOptions& options, const sigset_t& signals)
{
    CLog log(PrintLine);
    {
        const CWatch watch(options, log);
        char szAddress[INET_ADDRSTRLEN] = "";
        inet_ntop(AF_INET, &options.address, szAddress, sizeof szAddress);
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
    if (arguments.size() == 1 && std::strcmp(arguments[0], "--help") == 0) {
        std::printf("%s\n\n%s", USAGE, SWITCHES_HELP);
        return EXIT_SUCCESS;
    }
    try {
        RunUntilStopped(ParseOptions(arguments), BlockStopSignals());
        return EXIT_SUCCESS;
    } catch (const CUsageError& error) {
        std::fprintf(stderr, "emulated-watch: %s\n%s\n", error.what(), USAGE);
        return EXIT_USAGE;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "emulated-watch: %s\n", error.what());
        return EXIT_FAILURE;
    }
}
