// The command line.

#include "Options.h"

#include <algorithm>
#include <arpa/inet.h>
#include <gtest/gtest.h>

namespace {

using Arguments = std::vector<const char*>;

const Arguments REQUIRED = {"--address", "192.168.1.100", "--port", "43210",   "--pairing-port",
                            "37777",     "--code",        "012345", "--store", "stored.apk"};

SOptions With(const Arguments& more)
{
    Arguments all = REQUIRED;
    all.insert(all.end(), more.begin(), more.end());
    return ParseOptions(all);
}

std::string WhyNot(const Arguments& more)
{
    try {
        With(more);
        return "accepted";
    } catch (const std::runtime_error& error) {
        return error.what();
    }
}

} // namespace

TEST(Options, RequiredOnesAloneGiveTheDefaults)
{
    const SOptions options = ParseOptions(REQUIRED);
    EXPECT_STREQ(inet_ntoa(options.address), "192.168.1.100");
    EXPECT_EQ(options.nDebuggingPort, 43210);
    EXPECT_EQ(options.nPairingPort, 37777);
    EXPECT_EQ(options.szCode, "012345");
    EXPECT_EQ(options.store, "stored.apk");
    EXPECT_EQ(options.replies, std::vector<std::string>{"Success"});
    EXPECT_FALSE(options.bTrustAll || options.bDropOnInstall || options.bFlood);
    EXPECT_EQ(options.connectFault, EConnectFault::None);
    EXPECT_FALSE(options.nReplySize || options.nStopAfter);
}

TEST(Options, EverySwitchHasItsEffect)
{
    const SOptions options = With({"--reply", "first", "--trust-all", "--reply", "--second", "--name", "n",
                                   "--pairings", "keys", "--drop-on-install"});
    EXPECT_EQ(options.replies, (std::vector<std::string>{"first", "--second"}));
    EXPECT_TRUE(options.bTrustAll);
    EXPECT_EQ(options.szName, "n");
    EXPECT_EQ(options.pairings, "keys");
    EXPECT_TRUE(options.bDropOnInstall);

    EXPECT_EQ(With({"--offline"}).connectFault, EConnectFault::Offline);
    EXPECT_EQ(With({"--mute"}).connectFault, EConnectFault::Mute);
    EXPECT_EQ(With({"--unauthorized"}).connectFault, EConnectFault::Unauthorized);
    EXPECT_EQ(With({"--silent-install"}).nStopAfter, 0U);
    EXPECT_EQ(With({"--stop-after", "7"}).nStopAfter, 7U);
    EXPECT_EQ(With({"--endless-reply"}).nReplySize, 64U * 1024 * 1024);
    EXPECT_EQ(With({"--reply-size", "9"}).nReplySize, 9U);
    EXPECT_TRUE(With({"--flood", "9"}).bFlood);
    EXPECT_EQ(With({"--flood", "9"}).nReplySize, 9U);
}

TEST(Options, WhatIsWrongIsNamed)
{
    for (std::size_t i = 0; i < REQUIRED.size(); i += 2) {
        Arguments missing = REQUIRED;
        missing.erase(missing.begin() + static_cast<std::ptrdiff_t>(i),
                      missing.begin() + static_cast<std::ptrdiff_t>(i + 2));
        EXPECT_THROW(ParseOptions(missing), std::runtime_error) << REQUIRED[i];
    }
    EXPECT_EQ(WhyNot({"--bogus"}), "'--bogus' is unknown");
    EXPECT_EQ(WhyNot({"--reply"}), "--reply needs a value");
    EXPECT_EQ(WhyNot({"--port", "65536"}), "'65536' is no number here");
    EXPECT_EQ(WhyNot({"--stop-after", "1x"}), "'1x' is no number here");
    EXPECT_EQ(WhyNot({"--address", "0.0.0.0"}), "'0.0.0.0' is not an IPv4 address to listen on");
    EXPECT_EQ(WhyNot({"--address", "localhost"}), "'localhost' is not an IPv4 address to listen on");
}
