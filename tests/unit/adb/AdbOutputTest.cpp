// What each thing that adb prints is taken for.

#include "adb/AdbOutput.h"

#include "tests/kit/ProcessorTime.h"
#include "tests/kit/Test.h"

#include <algorithm>
#include <cctype>
#include <iterator>
#include <string>

using namespace kit;

namespace {

constexpr const char* kPatterns[] = {
    "_Default_",
    "connected to ",
    "already connected to ",
    "cannot connect to ",
    "failed to authenticate to ",
    "Success",
    "Performing Streamed Install",
    "adb: failed to install",
    "adb: failed to stat",
    "adb.exe: more than one device/emulator",
    "adb.exe: device offline",
    "adb.exe: no devices/emulators found",
    "",
    "cannot connect to daemon at tcp:",
    "Successfully paired to ",
    "Failed: Unable to start pairing client.",
    "",
    "* daemon started successfully",
    "adb server version (",
    "* daemon not running; starting now at tcp:",
    "",
};
constexpr int nPatterns = 21;
static_assert(std::size(kPatterns) == nPatterns);

// The package manager's names, for the outcomes 302 to 341 in order.
constexpr const char* kFailureNames[] = {
    "INSTALL_FAILED_ALREADY_EXISTS",
    "INSTALL_FAILED_INVALID_APK",
    "INSTALL_FAILED_INVALID_URI",
    "INSTALL_FAILED_INSUFFICIENT_STORAGE",
    "INSTALL_FAILED_DUPLICATE_PACKAGE",
    "INSTALL_FAILED_NO_SHARED_USER",
    "INSTALL_FAILED_UPDATE_INCOMPATIBLE",
    "INSTALL_FAILED_SHARED_USER_INCOMPATIBLE",
    "INSTALL_FAILED_MISSING_SHARED_LIBRARY",
    "INSTALL_FAILED_REPLACE_COULDNT_DELETE",
    "INSTALL_FAILED_DEXOPT",
    "INSTALL_FAILED_OLDER_SDK",
    "INSTALL_FAILED_CONFLICTING_PROVIDER",
    "INSTALL_FAILED_NEWER_SDK",
    "INSTALL_FAILED_TEST_ONLY",
    "INSTALL_FAILED_CPU_ABI_INCOMPATIBLE",
    "INSTALL_FAILED_MISSING_FEATURE",
    "INSTALL_FAILED_CONTAINER_ERROR",
    "INSTALL_FAILED_INVALID_INSTALL_LOCATION",
    "INSTALL_FAILED_MEDIA_UNAVAILABLE",
    "INSTALL_FAILED_VERIFICATION_TIMEOUT",
    "INSTALL_FAILED_VERIFICATION_FAILURE",
    "INSTALL_FAILED_PACKAGE_CHANGED",
    "INSTALL_FAILED_UID_CHANGED",
    "INSTALL_FAILED_VERSION_DOWNGRADE",
    "INSTALL_PARSE_FAILED_NOT_APK",
    "INSTALL_PARSE_FAILED_BAD_MANIFEST",
    "INSTALL_PARSE_FAILED_UNEXPECTED_EXCEPTION",
    "INSTALL_PARSE_FAILED_NO_CERTIFICATES",
    "INSTALL_PARSE_FAILED_INCONSISTENT_CERTIFICATES",
    "INSTALL_PARSE_FAILED_CERTIFICATE_ENCODING",
    "INSTALL_PARSE_FAILED_BAD_PACKAGE_NAME",
    "INSTALL_PARSE_FAILED_BAD_SHARED_USER_ID",
    "INSTALL_PARSE_FAILED_MANIFEST_MALFORMED",
    "INSTALL_PARSE_FAILED_MANIFEST_EMPTY",
    "INSTALL_FAILED_INTERNAL_ERROR",
    "INSTALL_FAILED_USER_RESTRICTED",
    "INSTALL_FAILED_DUPLICATE_PERMISSION",
    "INSTALL_FAILED_NO_MATCHING_ABIS",
    "INSTALL_FAILED_ABORTED",
};
static_assert(std::size(kFailureNames) == 40);

using Classifier = ADB_EXIT_CODE (*)(std::string_view);

constexpr PCWSTR pszUnknownFailure = L"Unknown ADB_EXIT_CODE, please report to KALVO";
constexpr PCWSTR pszUnknownFailureCaption = L"GetFailedToInstallExitCode()";

// The index that a line is found at among a range, or -1.
int Find(std::string_view line, int nFirst, int nLast)
{
    int nIndex = -1;
    return FindOutputPattern(line, nFirst, nLast, nIndex) ? nIndex : -1;
}

class OutputPattern : public Test
{
};

TEST_F(OutputPattern, MatchesItsTextAndWhateverFollows)
{
    for (int n = 0; n < nPatterns; ++n) {
        const std::string strText = kPatterns[n];
        EXPECT_EQ(Find(strText, n, n), n) << n;
        EXPECT_EQ(Find(strText + "and more", n, n), strText.empty() ? -1 : n) << n;
    }
}

TEST_F(OutputPattern, MatchesOnlyAtTheBeginningOfTheLine)
{
    for (int n = 0; n < nPatterns; ++n) {
        EXPECT_EQ(Find(std::string(" ") + kPatterns[n], n, n), -1) << n;
    }
}

TEST_F(OutputPattern, MatchesNoShorterLine)
{
    for (int n = 0; n < nPatterns; ++n) {
        const std::string strText = kPatterns[n];
        for (size_t cch = 0; cch < strText.size(); ++cch) {
            EXPECT_EQ(Find(strText.substr(0, cch), n, n), -1) << n;
        }
    }
}

TEST_F(OutputPattern, MindsTheCaseOfEveryLetter)
{
    for (int n = 0; n < nPatterns; ++n) {
        std::string strText = kPatterns[n];
        for (char& ch : strText) {
            const char chBefore = ch;
            if (std::isalpha(static_cast<unsigned char>(ch)) != 0) {
                ch = static_cast<char>(ch ^ 0x20);
                EXPECT_EQ(Find(strText, n, n), -1) << strText;
                ch = chBefore;
            }
        }
    }
}

TEST_F(OutputPattern, ThatIsEmptyMatchesOnlyAnEmptyLine)
{
    for (const int n : {12, 16, 20}) {
        EXPECT_EQ(Find("", n, n), n);
        EXPECT_EQ(Find("\r", n, n), -1);
        EXPECT_EQ(Find(" ", n, n), -1);
        EXPECT_EQ(Find(std::string_view("\0", 1), n, n), -1);
    }
}

TEST_F(OutputPattern, FirstThatMatchesIsFound)
{
    EXPECT_EQ(Find("", 0, 20), 12);
    EXPECT_EQ(Find("", 13, 20), 16);
    EXPECT_EQ(Find("", 17, 20), 20);
    EXPECT_EQ(Find("cannot connect to daemon at tcp:5037", 0, 20), 3);
    EXPECT_EQ(Find("cannot connect to daemon at tcp:5037", 4, 20), 13);
    EXPECT_EQ(Find("already connected to 1.2.3.4:5", 1, 4), 2);
}

TEST_F(OutputPattern, IsSoughtFromFirstToLastInclusive)
{
    EXPECT_EQ(Find("Success", 5, 11), 5);
    EXPECT_EQ(Find("Success", 6, 11), -1);
    EXPECT_EQ(Find("adb.exe: no devices/emulators found", 5, 11), 11);
    EXPECT_EQ(Find("adb.exe: no devices/emulators found", 5, 10), -1);
}

TEST_F(OutputPattern, IsNotFoundInAnEmptyRange)
{
    EXPECT_EQ(Find("", 20, 12), -1);
    EXPECT_EQ(Find("Success", 5, 4), -1);
}

TEST_F(OutputPattern, LeavesTheIndexAloneWithoutAMatch)
{
    int nIndex = 77;
    EXPECT_FALSE(FindOutputPattern("nothing known", 0, 20, nIndex));
    EXPECT_EQ(nIndex, 77);
    EXPECT_FALSE(FindOutputPattern("Success", 5, 4, nIndex));
    EXPECT_EQ(nIndex, 77);
}

class KillServerOutput : public Test
{
};

TEST_F(KillServerOutput, OfNothingIsSuccess)
{
    EXPECT_EQ(ClassifyKillServerOutput(""), ADB_SUCCESS);
}

TEST_F(KillServerOutput, ThatFindsNoServerSaysSo)
{
    EXPECT_EQ(ClassifyKillServerOutput("cannot connect to daemon at tcp:5037: cannot connect to 127.0.0.1:5037: "
                                       "Connection refused. (10061)\r\n"),
              KILL_SEVER_NOT_STARTED);
    EXPECT_EQ(ClassifyKillServerOutput("cannot connect to daemon at tcp:"), KILL_SEVER_NOT_STARTED);
}

TEST_F(KillServerOutput, IsJudgedByItsFirstLineAlone)
{
    EXPECT_EQ(ClassifyKillServerOutput("cannot connect to daemon at tcp:5037\nanything"), KILL_SEVER_NOT_STARTED);
    EXPECT_EQ(ClassifyKillServerOutput("warning\ncannot connect to daemon at tcp:5037\n"), ADB_PARSE_ERROR);
    EXPECT_EQ(ClassifyKillServerOutput("\ncannot connect to daemon at tcp:5037\n"), ADB_PARSE_ERROR);
}

TEST_F(KillServerOutput, OfAnythingElseIsNotUnderstood)
{
    for (const char* pszOutput : {"\n", "\r\n", "cannot connect to 127.0.0.1:5037", " cannot connect to daemon at tcp:",
                                  "* daemon started successfully\n", "connected to 1.2.3.4:5", "Success"}) {
        EXPECT_EQ(ClassifyKillServerOutput(pszOutput), ADB_PARSE_ERROR) << pszOutput;
    }
}

class ConnectOutput : public Test
{
};

TEST_F(ConnectOutput, SaysHowItWent)
{
    EXPECT_EQ(ClassifyConnectOutput("connected to 127.0.0.5:43210\r\n"), ADB_SUCCESS);
    EXPECT_EQ(ClassifyConnectOutput("already connected to 127.0.0.5:43210\r\n"), CONNECT_ALREADY_CONNECTED);
    EXPECT_EQ(ClassifyConnectOutput("cannot connect to 127.0.0.1:5999: Connection refused. (10061)\r\n"),
              CONNECT_CANNOT_CONNECT);
    EXPECT_EQ(ClassifyConnectOutput("failed to authenticate to 192.168.1.100:43210\r\n"),
              CONNECT_FAILED_TO_AUTHENTICATE);
}

TEST_F(ConnectOutput, OfAMissingDaemonIsThatOfAMissingDevice)
{
    EXPECT_EQ(ClassifyConnectOutput("cannot connect to daemon at tcp:5037: refused\r\n"), CONNECT_CANNOT_CONNECT);
}

TEST_F(ConnectOutput, OfNothingIsNotUnderstood)
{
    EXPECT_EQ(ClassifyConnectOutput(""), ADB_PARSE_ERROR);
}

class PairOutput : public Test
{
};

TEST_F(PairOutput, SaysHowItWent)
{
    EXPECT_EQ(ClassifyPairOutput("Successfully paired to 127.0.0.5:37777 [guid=adb-...]\r\n"), ADB_SUCCESS);
    EXPECT_EQ(ClassifyPairOutput("Failed: Unable to start pairing client.\r\n"), PAIR_FAILED);
}

TEST_F(PairOutput, OfNothingMeansPairedAlready)
{
    EXPECT_EQ(ClassifyPairOutput(""), PAIR_ALREADY_PAIRED);
}

TEST_F(PairOutput, OfAWrongCodeIsNotUnderstood)
{
    EXPECT_EQ(ClassifyPairOutput("Failed: Wrong password or connection was dropped.\r\n"), ADB_PARSE_ERROR);
}

class InstallOutput : public Test
{
};

TEST_F(InstallOutput, SaysHowItWent)
{
    EXPECT_EQ(ClassifyInstallOutput("Success\r\n"), ADB_SUCCESS);
    EXPECT_EQ(ClassifyInstallOutput("Performing Streamed Install\r\nSuccess\r\n"), ADB_SUCCESS);
    EXPECT_EQ(ClassifyInstallOutput("Performing Streamed Install\r\n"
                                    "adb: failed to stat none.apk: No such file or directory\r\n"),
              INSTALL_FAILED_STAT);
    EXPECT_EQ(ClassifyInstallOutput("adb.exe: more than one device/emulator\r\n"), INSTALL_MORE_THAN_ONE_DEVICE);
    EXPECT_EQ(ClassifyInstallOutput("adb.exe: device offline\r\n"), INSTALL_DEVICE_OFFLINE);
    EXPECT_EQ(ClassifyInstallOutput("adb.exe: no devices/emulators found\r\n"), INSTALL_NO_DEVICES_FOUND);
}

TEST_F(InstallOutput, OfADeviceThatIsNotConnectedIsNotUnderstood)
{
    EXPECT_EQ(ClassifyInstallOutput("adb.exe: device '127.0.0.1:5556' not found\r\n"), ADB_PARSE_ERROR);
}

TEST_F(InstallOutput, ThatEndsBeforeTheResultIsNotUnderstood)
{
    EXPECT_EQ(ClassifyInstallOutput("Performing Streamed Install\r\n"), ADB_PARSE_ERROR);
    EXPECT_EQ(ClassifyInstallOutput(""), ADB_PARSE_ERROR);
}

TEST_F(InstallOutput, OfAFailureNamesIt)
{
    EXPECT_EQ(ClassifyInstallOutput("Performing Streamed Install\r\nadb: failed to install C:\\a b.apk: Failure "
                                    "[INSTALL_FAILED_ALREADY_EXISTS: Attempt to re-install]\r\n"),
              INSTALL_FAILED_ALREADY_EXISTS);
    EXPECT_EQ(ClassifyInstallOutput("adb: failed to install C:\\a.apk: Failure [INSTALL_FAILED_OLDER_SDK]\r\n"),
              INSTALL_FAILED);
    EXPECT_EQ(ClassifyInstallOutput("adb: failed to install"), INSTALL_FAILED);
}

TEST_F(InstallOutput, OfAFailureWithAnUnknownNameIsToldToTheUser)
{
    EXPECT_EQ(ClassifyInstallOutput("adb: failed to install a.apk: Failure [INSTALL_FAILED_NEVER_HEARD_OF: x]\r\n"
                                    "Success\r\n"),
              INSTALL_FAILED_KALVO_UNKNOWN_ERROR);
    ExpectBox(pszUnknownFailure, pszUnknownFailureCaption);
}

// A command with lines of its own, all but kill-server.
struct Command
{
    Classifier classify;
    const char* pszGoodLine;
    int nFirstOwn;
    int nLastOwn;
};

void PrintTo(const Command& command, std::ostream* pStream)
{
    *pStream << command.pszGoodLine;
}

class CommandOutput : public Test, public testing::WithParamInterface<Command>
{
protected:
    static ADB_EXIT_CODE Classify(const std::string& strOutput)
    {
        return GetParam().classify(strOutput);
    }

    static std::string Good()
    {
        return GetParam().pszGoodLine;
    }
};

TEST_P(CommandOutput, PassesOverTheStartOfTheServer)
{
    EXPECT_EQ(Classify("* daemon not running; starting now at tcp:5037\r\n* daemon started successfully\r\n" + Good() +
                       "\r\n"),
              ADB_SUCCESS);
    EXPECT_EQ(Classify("* daemon started successfully\n* daemon started successfully\n" + Good()), ADB_SUCCESS);
    EXPECT_EQ(Classify("adb server version (41) doesn't match this client (40); killing...\r\n" + Good()), ADB_SUCCESS);
}

TEST_P(CommandOutput, OfTheStartOfTheServerAloneIsNotUnderstood)
{
    EXPECT_EQ(Classify("* daemon not running; starting now at tcp:5037\r\n* daemon started successfully\r\n"),
              ADB_PARSE_ERROR);
}

TEST_P(CommandOutput, MayEndWithoutLineFeed)
{
    EXPECT_EQ(Classify(Good()), ADB_SUCCESS);
    EXPECT_EQ(Classify("* daemon started successfully\n" + Good()), ADB_SUCCESS);
}

TEST_P(CommandOutput, IsJudgedByTheFirstLineThatDecides)
{
    EXPECT_EQ(Classify(Good() + "\nwhatever\n"), ADB_SUCCESS);
    EXPECT_EQ(Classify(Good() + "\n\n"), ADB_SUCCESS);
}

TEST_P(CommandOutput, ThatBeginsWithAnUnknownLineIsNotUnderstood)
{
    EXPECT_EQ(Classify("warning: something\n" + Good() + "\n"), ADB_PARSE_ERROR);
    EXPECT_EQ(Classify("* daemon started successfully\nwarning\n" + Good() + "\n"), ADB_PARSE_ERROR);
}

TEST_P(CommandOutput, WithABlankLineBeforeIsNotUnderstood)
{
    EXPECT_EQ(Classify("\n" + Good() + "\n"), ADB_PARSE_ERROR);
    EXPECT_EQ(Classify("\r\n" + Good() + "\n"), ADB_PARSE_ERROR);
    EXPECT_EQ(Classify("* daemon started successfully\n\n" + Good() + "\n"), ADB_PARSE_ERROR);
    EXPECT_EQ(Classify("\n"), ADB_PARSE_ERROR);
}

TEST_P(CommandOutput, WithLeadingBlanksIsNotUnderstood)
{
    EXPECT_EQ(Classify(" " + Good()), ADB_PARSE_ERROR);
    EXPECT_EQ(Classify("\t" + Good()), ADB_PARSE_ERROR);
}

TEST_P(CommandOutput, SeparatedByCarriageReturnsAloneIsOneLine)
{
    EXPECT_EQ(Classify("* daemon started successfully\r" + Good()), ADB_PARSE_ERROR);
}

// Unless they begin as one of its own, as "Successfully paired to " begins with "Success".
TEST_P(CommandOutput, HasNoLinesOfOtherCommands)
{
    for (int n = 0; n < 17; ++n) {
        const std::string strLine = kPatterns[n];
        const auto begins = [&strLine](const char* pszOwn) { return *pszOwn != '\0' && strLine.starts_with(pszOwn); };
        if (!strLine.empty() &&
            std::none_of(kPatterns + GetParam().nFirstOwn, kPatterns + GetParam().nLastOwn + 1, begins)) {
            EXPECT_EQ(Classify(strLine), ADB_PARSE_ERROR) << strLine;
        }
    }
}

TEST_P(CommandOutput, MayHoldNuls)
{
    EXPECT_EQ(Classify(Good() + std::string("\0x\n", 3)), ADB_SUCCESS);
    EXPECT_EQ(Classify(std::string("\0", 1) + Good()), ADB_PARSE_ERROR);
}

INSTANTIATE_TEST_SUITE_P(Commands, CommandOutput,
                         testing::Values(Command{ClassifyConnectOutput, "connected to 192.168.1.100:43210", 1, 4},
                                         Command{ClassifyPairOutput, "Successfully paired to 192.168.1.100:37777", 14,
                                                 16},
                                         Command{ClassifyInstallOutput, "Success", 5, 11}));

class FailedToInstall : public Test
{
protected:
    static std::string Line(const std::string& strName)
    {
        return "adb: failed to install C:\\Solvane.apk: Failure [" + strName + ": for a reason]";
    }
};

TEST_F(FailedToInstall, EveryKnownNameHasItsOutcome)
{
    for (int n = 0; n < 40; ++n) {
        EXPECT_EQ(static_cast<int>(GetFailedToInstallExitCode(Line(kFailureNames[n]))), 302 + n) << kFailureNames[n];
    }
}

TEST_F(FailedToInstall, NamesOfOtherOutcomesAreUnknown)
{
    for (const char* pszName :
         {"INSTALL_FAILED", "INSTALL_FAILED_KALVO_UNKNOWN_ERROR", "INSTALL_FAILED_STAT", "INSTALL_MORE_THAN_ONE_DEVICE",
          "INSTALL_DEVICE_OFFLINE", "INSTALL_NO_DEVICES_FOUND", "INSTALL_FAILED_MISSING_SPLIT", "ADB_SUCCESS", "X", "0",
          "_", "INSTALL_FAILED_ABORTED_", "INSTALL_FAILED_ABORTE"}) {
        EXPECT_EQ(GetFailedToInstallExitCode(Line(pszName)), INSTALL_FAILED_KALVO_UNKNOWN_ERROR) << pszName;
        ExpectBox(pszUnknownFailure, pszUnknownFailureCaption);
    }
}

TEST_F(FailedToInstall, ANameEndsWithAColon)
{
    EXPECT_EQ(GetFailedToInstallExitCode("x: Failure [INSTALL_FAILED_ABORTED]"), INSTALL_FAILED);
    EXPECT_EQ(GetFailedToInstallExitCode("x: Failure [INSTALL_FAILED_ABORTED :]"), INSTALL_FAILED);
    EXPECT_EQ(GetFailedToInstallExitCode("x: Failure [INSTALL_FAILED_ABORTED"), INSTALL_FAILED);
    EXPECT_EQ(GetFailedToInstallExitCode("x: Failure [INSTALL_FAILED_ABORTED:"), INSTALL_FAILED_ABORTED);
}

TEST_F(FailedToInstall, ANameHasCapitalsDigitsAndUnderscoresOnly)
{
    for (const char* pszName :
         {"install_failed_aborted", "INSTALL-FAILED", "INSTALL FAILED", "INSTALL_FAILED_aBORTED", "", "INSTALL.FAILED",
          "INSTALL@FAILED", "INSTALL[FAILED", "INSTALL/FAILED", "INSTALL`FAILED"}) {
        EXPECT_EQ(GetFailedToInstallExitCode(Line(pszName)), INSTALL_FAILED) << pszName;
    }
    for (const char* pszName : {"A", "Z", "0", "9", "_", "AZ09_"}) {
        EXPECT_EQ(GetFailedToInstallExitCode(Line(pszName)), INSTALL_FAILED_KALVO_UNKNOWN_ERROR) << pszName;
        TakeBox();
    }
}

TEST_F(FailedToInstall, TheWordFailureIsSoughtAnywhereAsItStands)
{
    EXPECT_EQ(GetFailedToInstallExitCode(": Failure [INSTALL_FAILED_DEXOPT:"), INSTALL_FAILED_DEXOPT);
    for (const char* pszLine : {"Failure [INSTALL_FAILED_DEXOPT: x]", ":Failure [INSTALL_FAILED_DEXOPT: x]",
                                ": failure [INSTALL_FAILED_DEXOPT: x]", ": Failure[INSTALL_FAILED_DEXOPT: x]",
                                ": Failure  [INSTALL_FAILED_DEXOPT: x]", ": Failure (INSTALL_FAILED_DEXOPT: x)",
                                ": Failure [ INSTALL_FAILED_DEXOPT: x]", ": Failure: [INSTALL_FAILED_DEXOPT: x]", ""}) {
        EXPECT_EQ(GetFailedToInstallExitCode(pszLine), INSTALL_FAILED) << pszLine;
    }
}

TEST_F(FailedToInstall, TheFirstNameCounts)
{
    EXPECT_EQ(GetFailedToInstallExitCode(Line("INSTALL_FAILED_DEXOPT") + Line("INSTALL_FAILED_ABORTED")),
              INSTALL_FAILED_DEXOPT);
    EXPECT_EQ(GetFailedToInstallExitCode(": Failure [lower: x]: Failure [INSTALL_FAILED_ABORTED: y]"),
              INSTALL_FAILED_ABORTED);
}

// Adb passes on what the watch prints, so a line may be of any length. Recursion, or a search that
// begins anew at every character, would be seen here.
TEST_F(FailedToInstall, AnEndlessLineTakesNeitherStackNorTime)
{
    constexpr size_t cb = 64U << 20;
    const Seconds begin = ProcessorTime();
    EXPECT_EQ(GetFailedToInstallExitCode(std::string(cb, 'A')), INSTALL_FAILED);
    EXPECT_EQ(GetFailedToInstallExitCode(": Failure [" + std::string(cb, 'A')), INSTALL_FAILED);
    EXPECT_EQ(ClassifyInstallOutput("adb: failed to install " + std::string(cb, ':') +
                                    " Failure [INSTALL_FAILED_ABORTED: x]"),
              INSTALL_FAILED_ABORTED);
    EXPECT_EQ(ClassifyConnectOutput(std::string(cb, 'c')), ADB_PARSE_ERROR);
    EXPECT_LT(ProcessorTime() - begin, Seconds(10));
}

} // namespace
