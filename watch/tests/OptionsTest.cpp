// The command line, row by row.

#include "Options.h"

#include <algorithm>
#include <arpa/inet.h>
#include <gtest/gtest.h>

namespace {

using Arguments = std::vector<const char*>;

const Arguments REQUIRED = {"--address", "192.168.1.100", "--port", "43210",   "--pairing-port",
                            "37777",     "--code",        "012345", "--store", "stored.apk"};

Arguments With(const Arguments& more)
{
    Arguments all = REQUIRED;
    all.insert(all.end(), more.begin(), more.end());
    return all;
}

// The required switches with another value for one of them; without a value, that switch is left out.
Arguments Instead(std::string_view name, const char* szValue)
{
    Arguments all = REQUIRED;
    const auto found = std::ranges::find(all, name, [](const char* sz) { return std::string_view(sz); });
    if (szValue) {
        *std::next(found) = szValue;
    } else {
        all.erase(found, found + 2);
    }
    return all;
}

void ExpectError(const Arguments& arguments, const std::string& szExpected)
{
    try {
        ParseOptions(arguments);
        ADD_FAILURE() << "accepted; expected: " << szExpected;
    } catch (const CUsageError& error) {
        EXPECT_EQ(error.what(), szExpected);
    }
}

} // namespace

TEST(Options, RequiredOnesAloneGiveTheDefaults)
{
    const SOptions options = ParseOptions(REQUIRED);
    char szAddress[INET_ADDRSTRLEN] = "";
    EXPECT_STREQ(inet_ntop(AF_INET, &options.address, szAddress, sizeof szAddress), "192.168.1.100");
    EXPECT_EQ(options.nDebuggingPort, 43210);
    EXPECT_EQ(options.nPairingPort, 37777);
    EXPECT_EQ(options.szCode, "012345");
    EXPECT_EQ(options.store, "stored.apk");
    EXPECT_EQ(options.replies, std::vector<std::string>{"Success"});
    EXPECT_FALSE(options.bTrustAll);
    EXPECT_EQ(options.szName, "adb-EMULATEDWATCH-000001");
    EXPECT_TRUE(options.pairings.empty());
    EXPECT_EQ(options.patience, std::chrono::seconds(20));
    EXPECT_EQ(options.connectFault, EConnectFault::None);
    EXPECT_EQ(options.installFault, EInstallFault::None);
    EXPECT_EQ(options.nReplySize, std::nullopt);
    EXPECT_EQ(options.nFlood, std::nullopt);
    EXPECT_EQ(options.nStopAfter, std::nullopt);
}

TEST(Options, EverySwitchHasItsEffect)
{
    const SOptions options = ParseOptions(With({"--reply", "first", "--trust-all", "--reply", "--second", "--name", "n",
                                                "--pairings", "keys", "--timeout", "3"}));
    EXPECT_EQ(options.replies, (std::vector<std::string>{"first", "--second"}));
    EXPECT_TRUE(options.bTrustAll);
    EXPECT_EQ(options.szName, "n");
    EXPECT_EQ(options.pairings, "keys");
    EXPECT_EQ(options.patience, std::chrono::seconds(3));

    EXPECT_EQ(ParseOptions(With({"--offline"})).connectFault, EConnectFault::Offline);
    EXPECT_EQ(ParseOptions(With({"--mute"})).connectFault, EConnectFault::Mute);
    EXPECT_EQ(ParseOptions(With({"--unauthorized"})).connectFault, EConnectFault::Unauthorized);
    EXPECT_EQ(ParseOptions(With({"--drop-on-install"})).installFault, EInstallFault::Drop);
    EXPECT_EQ(ParseOptions(With({"--silent-install"})).installFault, EInstallFault::Silent);
    EXPECT_EQ(ParseOptions(With({"--endless-reply"})).installFault, EInstallFault::EndlessReply);
    EXPECT_EQ(ParseOptions(With({"--reply-size", "0"})).nReplySize, 0U);
    EXPECT_EQ(ParseOptions(With({"--reply-size", "67108864"})).nReplySize, 67108864U);
    EXPECT_EQ(ParseOptions(With({"--flood", "67108864"})).nFlood, 67108864U);
    EXPECT_EQ(ParseOptions(With({"--stop-after", "7", "--flood", "9"})).nStopAfter, 7U);
    EXPECT_EQ(ParseOptions(With({"--stop-after", "7", "--reply-size", "9"})).nStopAfter, 7U);
    EXPECT_EQ(ParseOptions(With({"--reply", ""})).replies, std::vector<std::string>{""});
    EXPECT_EQ(ParseOptions(Instead("--port", "1")).nDebuggingPort, 1);
    EXPECT_EQ(ParseOptions(Instead("--port", "65535")).nDebuggingPort, 65535);
}

TEST(Options, MissingAndUnknownOnesAreNamed)
{
    ExpectError({}, "--address is missing");
    for (const char* szName : {"--address", "--port", "--pairing-port", "--code", "--store"}) {
        ExpectError(Instead(szName, nullptr), std::string(szName) + " is missing");
    }
    for (const char* szName :
         {"--reply", "--name", "--pairings", "--timeout", "--reply-size", "--flood", "--stop-after"}) {
        ExpectError(With({szName}), std::string(szName) + " needs a value");
    }
    ExpectError(With({"--bogus"}), "'--bogus' is unknown");
    ExpectError(With({"stray"}), "'stray' is unknown");
    ExpectError(With({""}), "'' is unknown");
    ExpectError(With({"--port", "2"}), "--port is given twice");
    ExpectError(With({"--trust-all", "--trust-all"}), "--trust-all is given twice");
}

TEST(Options, BadValuesAreRefused)
{
    for (const char* szPort : {"0", "65536", "-1", "+1", "1x", " 1", "", "0x10", "99999999999999999999"}) {
        ExpectError(Instead("--port", szPort), std::format("--port: '{}' is not a number from 1 to 65535", szPort));
        ExpectError(Instead("--pairing-port", szPort),
                    std::format("--pairing-port: '{}' is not a number from 1 to 65535", szPort));
    }
    for (const char* szAddress : {"", "192.168.1", "192.168.1.256", "192.168.1.1 ", "192.168.1.1:5", "localhost", "::1",
                                  "192.168.01.1", "0.0.0.0"}) {
        ExpectError(Instead("--address", szAddress),
                    std::format("--address: '{}' is not an IPv4 address to listen on", szAddress));
    }
    for (const char* szCode : {"", "12345", "1234567", "12345a", " 12345", "-12345"}) {
        ExpectError(Instead("--code", szCode), std::format("--code: '{}' is not six digits", szCode));
    }
    for (const char* szFile : {"", ".", "/", "no-such-folder/stored.apk", "/tmp/"}) {
        ExpectError(Instead("--store", szFile),
                    std::format("--store: '{}' is not a file in an existing folder", szFile));
        ExpectError(With({"--pairings", szFile}),
                    std::format("--pairings: '{}' is not a file in an existing folder", szFile));
    }
    const std::string szLong(256, 'n');
    for (const char* szName : {"", "two words", "line\n", "\xC3\xA4", szLong.c_str()}) {
        ExpectError(With({"--name", szName}), "--name: a name is 1 to 255 visible ASCII characters");
    }
    ExpectError(With({"--timeout", "0"}), "--timeout: '0' is not a number from 1 to 3600");
    ExpectError(With({"--timeout", "3601"}), "--timeout: '3601' is not a number from 1 to 3600");
    ExpectError(With({"--reply-size", "67108865"}), "--reply-size: '67108865' is not a number from 0 to 67108864");
    ExpectError(With({"--flood", "67108865"}), "--flood: '67108865' is not a number from 0 to 67108864");
    ExpectError(With({"--stop-after", "-1"}), "--stop-after: '-1' is not a number from 0 to 67108864");
}

TEST(Options, ContradictionsAreRefused)
{
    ExpectError(Instead("--port", "37777"), "--port and --pairing-port are the same");
    ExpectError(With({"--offline", "--mute"}), "a connection has one fault at a time");
    ExpectError(With({"--mute", "--unauthorized"}), "a connection has one fault at a time");
    ExpectError(With({"--drop-on-install", "--silent-install"}), "an install has one fault at a time");
    ExpectError(With({"--endless-reply", "--reply-size", "1"}), "an install has one fault at a time");
    ExpectError(With({"--reply-size", "1", "--endless-reply"}), "an install has one fault at a time");
    ExpectError(With({"--reply-size", "1", "--flood", "1"}), "an install has one fault at a time");
    ExpectError(With({"--flood", "1", "--silent-install"}), "an install has one fault at a time");
}
