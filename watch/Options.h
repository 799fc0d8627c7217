// The command line of the emulated watch.
#pragma once

#include <cstdint>
#include <filesystem>
#include <netinet/in.h>
#include <optional>
#include <span>
#include <string>
#include <vector>

// How a computer that connects is received.
enum class EConnectFault
{
    None,
    Offline,     // greeted, then dropped half a second later; when it comes back, left without an answer
    Mute,        // left without an answer from the start
    Unauthorized // asked for the consent of a person who never gives it
};

struct SOptions
{
    in_addr address{};
    std::uint16_t nDebuggingPort = 0; // 0: any free port
    std::uint16_t nPairingPort = 0;
    std::string szCode;
    std::filesystem::path store;
    std::vector<std::string> replies; // at least one
    bool bTrustAll = false;
    std::string szName = "adb-EMULATEDWATCH-000001";
    std::filesystem::path pairings; // empty: pairings end with the watch
    EConnectFault connectFault = EConnectFault::None;
    bool bDropOnInstall = false;
    bool bFlood = false;                   // a shell that answers in the place of installs
    std::optional<std::size_t> nReplySize; // at least 1
    std::optional<std::size_t> nStopAfter; // of any answer, so many bytes
};

// What every switch does, line by line.
std::string Help();

// Takes the arguments behind the program's name. Throws std::runtime_error that says what is wrong with them.
SOptions ParseOptions(std::span<const char* const> arguments);
