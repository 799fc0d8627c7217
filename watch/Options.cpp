#include "Options.h"

#include <algorithm>
#include <arpa/inet.h>
#include <charconv>
#include <format>
#include <set>
#include <stdexcept>
#include <string_view>

namespace {

constexpr std::size_t ENDLESS = 64UL * 1024 * 1024;

template<class Number>
Number ParseNumber(std::string_view text)
{
    Number nValue = 0;
    const char* const pBegin = text.data();
    const char* const pEnd = pBegin + text.size();
    const auto [end, error] = std::from_chars(pBegin, pEnd, nValue);
    if (error != std::errc() || end != pEnd) {
        throw std::runtime_error(std::format("'{}' is no number here", text));
    }
    return nValue;
}

in_addr ParseAddress(const char* szText)
{
    in_addr address{};
    // 0.0.0.0 would open the ports to every network of this machine.
    if (inet_pton(AF_INET, szText, &address) != 1 || address.s_addr == INADDR_ANY) {
        throw std::runtime_error(std::format("'{}' is not an IPv4 address to listen on", szText));
    }
    return address;
}

using O = SOptions;
using Text = const char*;

struct SSwitch
{
    std::string_view name;
    std::string_view value; // as the help calls it; empty: it takes none
    bool bRequired;
    void (*pfnApply)(O& options, Text szValue);
    std::string_view help;
};

constexpr SSwitch SWITCHES[] = {
    {"--address", "A", true, [](O& o, Text v) { o.address = ParseAddress(v); }, "the IPv4 address to listen on"},
    {"--port", "P", true, [](O& o, Text v) { o.nDebuggingPort = ParseNumber<std::uint16_t>(v); },
     "the port of wireless debugging"},
    {"--pairing-port", "P", true, [](O& o, Text v) { o.nPairingPort = ParseNumber<std::uint16_t>(v); },
     "the port of pairing"},
    {"--code", "DDDDDD", true, [](O& o, Text v) { o.szCode = v; }, "the pairing code"},
    {"--store", "FILE", true, [](O& o, Text v) { o.store = v; },
     "where an installed package goes; the next one replaces it"},
    {"--reply", "TEXT", false, [](O& o, Text v) { o.replies.emplace_back(v); },
     "the answer to an install, \"Success\" by default; given again, that to the next, the last repeats"},
    {"--trust-all", "", false, [](O& o, Text) { o.bTrustAll = true; }, "lets computers in that have not paired"},
    {"--name", "GUID", false, [](O& o, Text v) { o.szName = v; }, "the name that the watch gives when it pairs"},
    {"--pairings", "FILE", false, [](O& o, Text v) { o.pairings = v; },
     "keeps the keys of paired computers from one start to the next"},
    {"--offline", "", false, [](O& o, Text) { o.connectFault = EConnectFault::Offline; },
     "a connection breaks half a second after its greeting and is not restored"},
    {"--mute", "", false, [](O& o, Text) { o.connectFault = EConnectFault::Mute; },
     "connections are taken and never answered"},
    {"--unauthorized", "", false, [](O& o, Text) { o.connectFault = EConnectFault::Unauthorized; },
     "computers are asked for consent, as by the older kind of debugging, and never get it"},
    {"--drop-on-install", "", false, [](O& o, Text) { o.bDropOnInstall = true; },
     "the connection breaks when half of a package is there"},
    {"--silent-install", "", false, [](O& o, Text) { o.nStopAfter = 0; }, "packages are taken and never answered"},
    {"--stop-after", "N", false, [](O& o, Text v) { o.nStopAfter = ParseNumber<std::size_t>(v); },
     "an answer stops after N bytes, and nothing follows"},
    {"--reply-size", "N", false, [](O& o, Text v) { o.nReplySize = ParseNumber<std::size_t>(v); },
     "the answer is N bytes long, filled up with dots"},
    {"--endless-reply", "", false, [](O& o, Text) { o.nReplySize = ENDLESS; }, "the answer goes on for 64 MiB"},
    {"--flood", "N", false,
     [](O& o, Text v) {
         o.bFlood = true;
         o.nReplySize = ParseNumber<std::size_t>(v);
     },
     "no streamed install: adb copies the package, and whatever it asks the shell is answered so"},
};

} // namespace

std::string Help()
{
    std::string szHelp = "usage: emulated-watch SWITCHES; the first five must be given\n";
    for (const SSwitch& s : SWITCHES) {
        szHelp += std::format("  {:<18} {}\n", std::string(s.name).append(" ").append(s.value), s.help);
    }
    return szHelp;
}

SOptions ParseOptions(std::span<const char* const> arguments)
{
    SOptions options;
    std::set<std::string_view> seen;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const std::string_view argument = arguments[i];
        const auto* found = std::ranges::find(SWITCHES, argument, &SSwitch::name);
        if (found == std::end(SWITCHES)) {
            throw std::runtime_error(std::format("'{}' is unknown", argument));
        }
        if (!found->value.empty() && ++i == arguments.size()) {
            throw std::runtime_error(std::format("{} needs a value", argument));
        }
        found->pfnApply(options, arguments[i]);
        seen.insert(argument);
    }
    for (const SSwitch& s : SWITCHES) {
        if (s.bRequired && !seen.contains(s.name)) {
            throw std::runtime_error(std::format("{} is missing", s.name));
        }
    }
    if (options.replies.empty()) {
        options.replies.emplace_back("Success");
    }
    return options;
}
