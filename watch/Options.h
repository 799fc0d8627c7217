// The command line of the emulated watch.
#pragma once

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <netinet/in.h>
#include <optional>
#include <span>
#include <stdexcept>
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

// How an install goes wrong on the device's side.
enum class EInstallFault
{
    None,
    Drop,        // the connection breaks when half of the package is there
    Silent,      // the package is taken, an answer never comes
    EndlessReply // the answer goes on until ENDLESS_REPLY_SIZE bytes, then the stream closes
};

// The most that is ever answered.
constexpr std::uint64_t ENDLESS_REPLY_SIZE = 64 * 1024 * 1024;

struct SOptions
{
    in_addr address{};
    std::uint16_t nDebuggingPort = 0; // 0: any free port; not from a command line
    std::uint16_t nPairingPort = 0;
    std::string szCode;
    std::filesystem::path store;
    std::vector<std::string> replies; // at least one
    bool bTrustAll = false;
    std::string szName = "adb-EMULATEDWATCH-000001";
    std::filesystem::path pairings; // empty: pairings end with the watch
    EConnectFault connectFault = EConnectFault::None;
    EInstallFault installFault = EInstallFault::None;
    std::optional<std::uint64_t> nReplySize;
    std::optional<std::uint64_t> nStopAfter; // of any answer, so many bytes
    std::optional<std::uint64_t> nFlood;     // the size of the shell's answers, which then take the place of installs
    std::chrono::milliseconds patience = std::chrono::seconds(20);
};

// The text says what is wrong with the command line.
class CUsageError : public std::runtime_error
{
    using std::runtime_error::runtime_error;
};

// One line.
extern const char* const USAGE;

// What every switch does, line by line.
extern const char* const SWITCHES_HELP;

// Takes the arguments behind the program's name. Throws CUsageError.
SOptions ParseOptions(std::span<const char* const> arguments);
