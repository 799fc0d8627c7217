#include "Options.h"

#include <algorithm>
#include <arpa/inet.h>
#include <charconv>
#include <format>
#include <set>
#include <string_view>

const char* const USAGE =
    "usage: emulated-watch --address A --port P --pairing-port P --code DDDDDD --store FILE [--reply TEXT]... "
    "[--trust-all] [--name GUID] [--pairings FILE] [--timeout SECONDS] [--offline | --mute | --unauthorized] "
    "[--drop-on-install | --silent-install | --endless-reply | --reply-size N | --flood N] "
    "[--stop-after N]";

const char* const SWITCHES_HELP =
    "  --address A        the IPv4 address to listen on\n"
    "  --port P           the port of wireless debugging\n"
    "  --pairing-port P   the port of pairing\n"
    "  --code DDDDDD      the pairing code, six digits\n"
    "  --store FILE       where an installed package goes; the next one replaces it\n"
    "  --reply TEXT       the package manager's answer, \"Success\" by default; given several times, the\n"
    "                     answers of the successive installs, of which the last repeats\n"
    "  --trust-all        lets computers in that have not paired\n"
    "  --name GUID        the name that the watch gives when it pairs\n"
    "  --pairings FILE    keeps the keys of paired computers from one start to the next\n"
    "  --timeout SECONDS  how long a computer may take for a greeting, a pairing or the rest of a message;\n"
    "                     20 by default\n"
    "Faults, to see how a computer takes them:\n"
    "  --offline          a connection breaks half a second after its greeting, and adb gets no answer when it\n"
    "                     tries to restore it: the watch is connected first, then offline\n"
    "  --mute             connections are taken and never answered\n"
    "  --unauthorized     computers are asked for consent, as by the older kind of debugging, and never get it\n"
    "  --drop-on-install  the connection breaks when half of a package is there\n"
    "  --silent-install   packages are taken and never answered\n"
    "  --endless-reply    the answer goes on for 64 MiB\n"
    "  --reply-size N     the answer is N bytes long, filled up with dots\n"
    "  --flood N          there is no streamed install, so that adb copies the package and asks the shell, which\n"
    "                     says the next --reply, N bytes long, to whatever it is asked\n"
    "  --stop-after N     an answer stops after N bytes, and nothing follows\n";

namespace {

constexpr std::size_t LONGEST_NAME = 255;
constexpr std::uint64_t LONGEST_TIMEOUT = 3600;

std::uint64_t ParseNumber(std::string_view name, std::string_view text, std::uint64_t nLeast, std::uint64_t nMost)
{
    std::uint64_t nValue = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), nValue);
    if (error != std::errc() || end != text.data() + text.size() || nValue < nLeast || nValue > nMost) {
        throw CUsageError(std::format("{}: '{}' is not a number from {} to {}", name, text, nLeast, nMost));
    }
    return nValue;
}

std::uint16_t ParsePort(std::string_view name, std::string_view text)
{
    return static_cast<std::uint16_t>(ParseNumber(name, text, 1, 65535));
}

in_addr ParseAddress(std::string_view name, const char* szText)
{
    in_addr address{};
    // 0.0.0.0 would open the ports to every network of this machine.
    if (inet_pton(AF_INET, szText, &address) != 1 || address.s_addr == INADDR_ANY) {
        throw CUsageError(std::format("{}: '{}' is not an IPv4 address to listen on", name, szText));
    }
    return address;
}

std::string ParseCode(std::string_view name, std::string_view text)
{
    if (text.size() != 6 || !std::ranges::all_of(text, [](char c) { return c >= '0' && c <= '9'; })) {
        throw CUsageError(std::format("{}: '{}' is not six digits", name, text));
    }
    return std::string(text);
}

std::string ParseName(std::string_view name, std::string_view text)
{
    if (text.empty() || text.size() > LONGEST_NAME ||
        !std::ranges::all_of(text, [](char c) { return c > ' ' && c <= '~'; })) {
        throw CUsageError(std::format("{}: a name is 1 to {} visible ASCII characters", name, LONGEST_NAME));
    }
    return std::string(text);
}

std::filesystem::path ParseFile(std::string_view name, std::string_view text)
{
    const std::filesystem::path file = text;
    std::error_code ignored;
    if (!file.has_filename() || std::filesystem::is_directory(file, ignored) ||
        !std::filesystem::is_directory(std::filesystem::absolute(file).parent_path(), ignored)) {
        throw CUsageError(std::format("{}: '{}' is not a file in an existing folder", name, text));
    }
    return file;
}

void SetConnectFault(SOptions& options, EConnectFault fault)
{
    if (options.connectFault != EConnectFault::None) {
        throw CUsageError("a connection has one fault at a time");
    }
    options.connectFault = fault;
}

void SetInstallFault(SOptions& options, EInstallFault fault)
{
    if (options.installFault != EInstallFault::None || options.nReplySize || options.nFlood) {
        throw CUsageError("an install has one fault at a time");
    }
    options.installFault = fault;
}

struct SSwitch
{
    const char* szName;
    bool bHasValue;
    bool bRequired;
    void (*pfnApply)(SOptions& options, const char* szName, const char* szValue);
};

using O = SOptions;
using Text = const char*;

constexpr SSwitch SWITCHES[] = {
    {"--address", true, true, [](O& o, Text n, Text v) { o.address = ParseAddress(n, v); }},
    {"--port", true, true, [](O& o, Text n, Text v) { o.nDebuggingPort = ParsePort(n, v); }},
    {"--pairing-port", true, true, [](O& o, Text n, Text v) { o.nPairingPort = ParsePort(n, v); }},
    {"--code", true, true, [](O& o, Text n, Text v) { o.szCode = ParseCode(n, v); }},
    {"--store", true, true, [](O& o, Text n, Text v) { o.store = ParseFile(n, v); }},
    {"--reply", true, false, [](O& o, Text, Text v) { o.replies.emplace_back(v); }},
    {"--trust-all", false, false, [](O& o, Text, Text) { o.bTrustAll = true; }},
    {"--name", true, false, [](O& o, Text n, Text v) { o.szName = ParseName(n, v); }},
    {"--pairings", true, false, [](O& o, Text n, Text v) { o.pairings = ParseFile(n, v); }},
    {"--timeout", true, false,
     [](O& o, Text n, Text v) { o.patience = std::chrono::seconds(ParseNumber(n, v, 1, LONGEST_TIMEOUT)); }},
    {"--offline", false, false, [](O& o, Text, Text) { SetConnectFault(o, EConnectFault::Offline); }},
    {"--mute", false, false, [](O& o, Text, Text) { SetConnectFault(o, EConnectFault::Mute); }},
    {"--unauthorized", false, false, [](O& o, Text, Text) { SetConnectFault(o, EConnectFault::Unauthorized); }},
    {"--drop-on-install", false, false, [](O& o, Text, Text) { SetInstallFault(o, EInstallFault::Drop); }},
    {"--silent-install", false, false, [](O& o, Text, Text) { SetInstallFault(o, EInstallFault::Silent); }},
    {"--endless-reply", false, false, [](O& o, Text, Text) { SetInstallFault(o, EInstallFault::EndlessReply); }},
    {"--reply-size", true, false,
     [](O& o, Text n, Text v) {
         SetInstallFault(o, EInstallFault::None);
         o.nReplySize = ParseNumber(n, v, 0, ENDLESS_REPLY_SIZE);
     }},
    {"--flood", true, false,
     [](O& o, Text n, Text v) {
         SetInstallFault(o, EInstallFault::None);
         o.nFlood = ParseNumber(n, v, 0, ENDLESS_REPLY_SIZE);
     }},
    {"--stop-after", true, false,
     [](O& o, Text n, Text v) { o.nStopAfter = ParseNumber(n, v, 0, ENDLESS_REPLY_SIZE); }},
};

} // namespace

SOptions ParseOptions(std::span<const char* const> arguments)
{
    SOptions options;
    std::set<std::string_view> seen;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const std::string_view argument = arguments[i];
        const auto* found =
            std::ranges::find(SWITCHES, argument, [](const SSwitch& s) { return std::string_view(s.szName); });
        if (found == std::end(SWITCHES)) {
            throw CUsageError(std::format("'{}' is unknown", argument));
        }
        if (!seen.insert(argument).second && argument != "--reply") {
            throw CUsageError(std::format("{} is given twice", argument));
        }
        if (found->bHasValue && ++i == arguments.size()) {
            throw CUsageError(std::format("{} needs a value", argument));
        }
        found->pfnApply(options, found->szName, found->bHasValue ? arguments[i] : nullptr);
    }
    for (const SSwitch& s : SWITCHES) {
        if (s.bRequired && !seen.contains(s.szName)) {
            throw CUsageError(std::format("{} is missing", s.szName));
        }
    }
    if (options.nDebuggingPort == options.nPairingPort) {
        throw CUsageError("--port and --pairing-port are the same");
    }
    if (options.replies.empty()) {
        options.replies.emplace_back("Success");
    }
    return options;
}
