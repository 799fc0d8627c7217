// What each thing that adb prints is taken for.

#include "adb/AdbOutput.h"

#include "tests/kit/Test.h"
#include "tests/unit/adb/Outcomes.h"

#include <algorithm>
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

using Classifier = ADB_EXIT_CODE (*)(std::string_view);

// What adb printed, and what it is taken for.
struct Judged
{
    std::string strOutput;
    ADB_EXIT_CODE nOutcome;
};

void ExpectJudged(Classifier classify, const std::vector<Judged>& rows)
{
    for (const Judged& row : rows) {
        EXPECT_EQ(classify(row.strOutput), row.nOutcome) << row.strOutput;
    }
}

// The index that a line is found at among a range, or -1.
int Find(std::string_view line, int nFirst, int nLast)
{
    int nIndex = -1;
    return FindOutputPattern(line, nFirst, nLast, nIndex) ? nIndex : -1;
}

using OutputPattern = Test;

TEST_F(OutputPattern, MatchesALineThatBeginsWithItLetterByLetter)
{
    for (int n = 0; n < nPatterns; ++n) {
        const std::string strText = kPatterns[n];
        SCOPED_TRACE(strText);
        EXPECT_EQ(Find(strText, n, n), n);
        EXPECT_EQ(Find(strText + "and more", n, n), strText.empty() ? -1 : n);
        EXPECT_EQ(Find(" " + strText, n, n), -1);
        for (size_t nAt = 0; nAt < strText.size(); ++nAt) {
            EXPECT_EQ(Find(strText.substr(0, nAt), n, n), -1);
            std::string strOther = strText;
            strOther[nAt] = static_cast<char>(strOther[nAt] ^ 0x20);
            EXPECT_EQ(Find(strOther, n, n), -1) << strOther;
        }
    }
}

TEST_F(OutputPattern, ThatIsEmptyMatchesOnlyAnEmptyLine)
{
    for (const int n : {12, 16, 20}) {
        SCOPED_TRACE(n);
        EXPECT_EQ(Find("", n, n), n);
        EXPECT_EQ(Find("\r", n, n), -1);
        EXPECT_EQ(Find(" ", n, n), -1);
        EXPECT_EQ(Find(std::string_view("\0", 1), n, n), -1);
    }
}

TEST_F(OutputPattern, IsTheFirstThatMatchesFromFirstToLast)
{
    EXPECT_EQ(Find("", 0, 20), 12);
    EXPECT_EQ(Find("", 13, 20), 16);
    EXPECT_EQ(Find("", 17, 20), 20);
    EXPECT_EQ(Find("cannot connect to daemon at tcp:5037", 0, 20), 3);
    EXPECT_EQ(Find("cannot connect to daemon at tcp:5037", 4, 20), 13);
    EXPECT_EQ(Find("already connected to 1.2.3.4:5", 1, 4), 2);
    EXPECT_EQ(Find("Success", 5, 11), 5);
    EXPECT_EQ(Find("Success", 6, 11), -1);
    EXPECT_EQ(Find("adb.exe: no devices/emulators found", 5, 11), 11);
    EXPECT_EQ(Find("adb.exe: no devices/emulators found", 5, 10), -1);
    EXPECT_EQ(Find("", 20, 12), -1);
}

TEST_F(OutputPattern, LeavesTheIndexAloneWithoutAMatch)
{
    int nIndex = 77;
    EXPECT_FALSE(FindOutputPattern("nothing known", 0, 20, nIndex));
    EXPECT_FALSE(FindOutputPattern("Success", 5, 4, nIndex));
    EXPECT_EQ(nIndex, 77);
}

using AdbOutput = Test;

TEST_F(AdbOutput, OfKillServerIsJudgedByItsFirstLineAlone)
{
    ExpectJudged(ClassifyKillServerOutput,
                 {{"", ADB_SUCCESS},
                  {"cannot connect to daemon at tcp:5037: cannot connect to 127.0.0.1:5037: Connection refused. "
                   "(10061)\r\n",
                   KILL_SEVER_NOT_STARTED},
                  {"cannot connect to daemon at tcp:", KILL_SEVER_NOT_STARTED},
                  {"cannot connect to daemon at tcp:5037\nanything", KILL_SEVER_NOT_STARTED},
                  {"warning\ncannot connect to daemon at tcp:5037\n", ADB_PARSE_ERROR},
                  {"\ncannot connect to daemon at tcp:5037\n", ADB_PARSE_ERROR},
                  {"\n", ADB_PARSE_ERROR},
                  {"\r\n", ADB_PARSE_ERROR},
                  {"cannot connect to 127.0.0.1:5037", ADB_PARSE_ERROR},
                  {" cannot connect to daemon at tcp:", ADB_PARSE_ERROR},
                  {"* daemon started successfully\n", ADB_PARSE_ERROR},
                  {"connected to 1.2.3.4:5", ADB_PARSE_ERROR},
                  {"Success", ADB_PARSE_ERROR}});
}

// A missing daemon is a missing device.
TEST_F(AdbOutput, OfConnectSaysHowItWent)
{
    ExpectJudged(ClassifyConnectOutput,
                 {{"connected to 127.0.0.5:43210\r\n", ADB_SUCCESS},
                  {"already connected to 127.0.0.5:43210\r\n", CONNECT_ALREADY_CONNECTED},
                  {"cannot connect to 127.0.0.1:5999: Connection refused. (10061)\r\n", CONNECT_CANNOT_CONNECT},
                  {"failed to authenticate to 192.168.1.100:43210\r\n", CONNECT_FAILED_TO_AUTHENTICATE},
                  {"cannot connect to daemon at tcp:5037: refused\r\n", CONNECT_CANNOT_CONNECT},
                  {"", ADB_PARSE_ERROR}});
}

TEST_F(AdbOutput, OfPairSaysHowItWentAndWithoutAWordThatItIsPaired)
{
    ExpectJudged(ClassifyPairOutput, {{"Successfully paired to 127.0.0.5:37777 [guid=adb-...]\r\n", ADB_SUCCESS},
                                      {"Failed: Unable to start pairing client.\r\n", PAIR_FAILED},
                                      {"Failed: Wrong password or connection was dropped.\r\n", ADB_PARSE_ERROR},
                                      {"", PAIR_ALREADY_PAIRED}});
}

TEST_F(AdbOutput, OfInstallSaysHowItWentAndNamesTheFailure)
{
    ExpectJudged(ClassifyInstallOutput,
                 {{"Success\r\n", ADB_SUCCESS},
                  {"Performing Streamed Install\r\nSuccess\r\n", ADB_SUCCESS},
                  {"Performing Streamed Install\r\nadb: failed to stat none.apk: No such file or directory\r\n",
                   INSTALL_FAILED_STAT},
                  {"adb.exe: more than one device/emulator\r\n", INSTALL_MORE_THAN_ONE_DEVICE},
                  {"adb.exe: device offline\r\n", INSTALL_DEVICE_OFFLINE},
                  {"adb.exe: no devices/emulators found\r\n", INSTALL_NO_DEVICES_FOUND},
                  {"adb.exe: device '127.0.0.1:5556' not found\r\n", ADB_PARSE_ERROR},
                  {"Performing Streamed Install\r\n", ADB_PARSE_ERROR},
                  {"", ADB_PARSE_ERROR},
                  {"Performing Streamed Install\r\nadb: failed to install C:\\a b.apk: Failure "
                   "[INSTALL_FAILED_ALREADY_EXISTS: Attempt to re-install]\r\n",
                   INSTALL_FAILED_ALREADY_EXISTS},
                  {"adb: failed to install C:\\a.apk: Failure [INSTALL_FAILED_OLDER_SDK]\r\n", INSTALL_FAILED},
                  {"adb: failed to install", INSTALL_FAILED}});
}

// A command with lines of its own, all but kill-server.
struct Command
{
    PCSTR pszName;
    Classifier classify;
    std::string strGood;
    int nFirstOwn;
    int nLastOwn;
};

const Command kCommands[] = {
    {"Connect", ClassifyConnectOutput, "connected to 192.168.1.100:43210", 1, 4},
    {"Pair", ClassifyPairOutput, "Successfully paired to 192.168.1.100:37777", 14, 16},
    {"Install", ClassifyInstallOutput, "Success", 5, 11},
};

class CommandOutput : public Test, public testing::WithParamInterface<Command>
{
};

TEST_P(CommandOutput, IsJudgedByTheFirstLineAfterTheStartOfTheServer)
{
    const std::string strGood = GetParam().strGood;
    ExpectJudged(
        GetParam().classify,
        {{strGood, ADB_SUCCESS},
         {strGood + "\nwhatever\n", ADB_SUCCESS},
         {strGood + "\n\n", ADB_SUCCESS},
         {strGood + std::string("\0x\n", 3), ADB_SUCCESS},
         {"* daemon started successfully\n" + strGood, ADB_SUCCESS},
         {"* daemon started successfully\n* daemon started successfully\n" + strGood, ADB_SUCCESS},
         {"* daemon not running; starting now at tcp:5037\r\n* daemon started successfully\r\n" + strGood + "\r\n",
          ADB_SUCCESS},
         {"adb server version (41) doesn't match this client (40); killing...\r\n" + strGood, ADB_SUCCESS},
         {"* daemon not running; starting now at tcp:5037\r\n* daemon started successfully\r\n", ADB_PARSE_ERROR}});
}

TEST_P(CommandOutput, ThatBeginsWithAnUnknownLineIsNotUnderstood)
{
    // Blank ones, blanks before the line, and a line that a carriage return does not end among them.
    const std::vector<std::string> befores = {"warning: something\n",
                                              "* daemon started successfully\nwarning\n",
                                              "\n",
                                              "\r\n",
                                              "* daemon started successfully\n\n",
                                              " ",
                                              "\t",
                                              "* daemon started successfully\r",
                                              {"\0", 1}};
    for (const std::string& strBefore : befores) {
        EXPECT_EQ(GetParam().classify(strBefore + GetParam().strGood + "\n"), ADB_PARSE_ERROR) << strBefore;
    }
    EXPECT_EQ(GetParam().classify("\n"), ADB_PARSE_ERROR);
}

// Unless they begin as one of its own, as "Successfully paired to " begins with "Success".
TEST_P(CommandOutput, HasNoLinesOfOtherCommands)
{
    for (int n = 0; n < 17; ++n) {
        const std::string strLine = kPatterns[n];
        const auto begins = [&strLine](const char* pszOwn) { return *pszOwn != '\0' && strLine.starts_with(pszOwn); };
        if (!strLine.empty() &&
            std::none_of(kPatterns + GetParam().nFirstOwn, kPatterns + GetParam().nLastOwn + 1, begins)) {
            EXPECT_EQ(GetParam().classify(strLine), ADB_PARSE_ERROR) << strLine;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Adb, CommandOutput, testing::ValuesIn(kCommands), kByName);

class FailedToInstall : public Test
{
protected:
    static std::string Line(const std::string& strName)
    {
        return "adb: failed to install C:\\Solvane.apk: Failure [" + strName + ": for a reason]";
    }

    void ExpectUnknownBox()
    {
        ExpectBox(L"Unknown ADB_EXIT_CODE, please report to KALVO", L"GetFailedToInstallExitCode()");
    }
};

TEST_F(FailedToInstall, EveryKnownNameHasItsOutcome)
{
    for (const Outcome& outcome : kOutcomes) {
        if (outcome.nNumber >= 302 && outcome.nNumber <= 341) {
            EXPECT_EQ(GetFailedToInstallExitCode(Line(Narrow(outcome.pszName))), outcome.nCode) << outcome.nNumber;
        }
    }
}

TEST_F(FailedToInstall, NamesOfOtherOutcomesAreUnknownAndToldToTheUser)
{
    for (const char* pszName :
         {"INSTALL_FAILED", "INSTALL_FAILED_KALVO_UNKNOWN_ERROR", "INSTALL_FAILED_STAT", "INSTALL_MORE_THAN_ONE_DEVICE",
          "INSTALL_DEVICE_OFFLINE", "INSTALL_NO_DEVICES_FOUND", "INSTALL_FAILED_MISSING_SPLIT", "ADB_SUCCESS", "X", "A",
          "Z", "0", "9", "_", "AZ09_", "INSTALL_FAILED_ABORTED_", "INSTALL_FAILED_ABORTE"}) {
        EXPECT_EQ(GetFailedToInstallExitCode(Line(pszName)), INSTALL_FAILED_KALVO_UNKNOWN_ERROR) << pszName;
        ExpectUnknownBox();
    }
    EXPECT_EQ(ClassifyInstallOutput(Line("INSTALL_FAILED_NEVER_HEARD_OF") + "\r\nSuccess\r\n"),
              INSTALL_FAILED_KALVO_UNKNOWN_ERROR);
    ExpectUnknownBox();
}

TEST_F(FailedToInstall, ANameHasCapitalsDigitsAndUnderscoresOnly)
{
    for (const char* pszName :
         {"install_failed_aborted", "INSTALL-FAILED", "INSTALL FAILED", "INSTALL_FAILED_aBORTED", "", "INSTALL.FAILED",
          "INSTALL@FAILED", "INSTALL[FAILED", "INSTALL/FAILED", "INSTALL`FAILED"}) {
        EXPECT_EQ(GetFailedToInstallExitCode(Line(pszName)), INSTALL_FAILED) << pszName;
    }
}

TEST_F(FailedToInstall, TheFirstNameBetweenFailureAndAColonCounts)
{
    ExpectJudged(GetFailedToInstallExitCode,
                 {{"x: Failure [INSTALL_FAILED_ABORTED:", INSTALL_FAILED_ABORTED},
                  {": Failure [INSTALL_FAILED_DEXOPT:", INSTALL_FAILED_DEXOPT},
                  {Line("INSTALL_FAILED_DEXOPT") + Line("INSTALL_FAILED_ABORTED"), INSTALL_FAILED_DEXOPT},
                  {": Failure [lower: x]: Failure [INSTALL_FAILED_ABORTED: y]", INSTALL_FAILED_ABORTED},
                  {"x: Failure [INSTALL_FAILED_ABORTED]", INSTALL_FAILED},
                  {"x: Failure [INSTALL_FAILED_ABORTED :]", INSTALL_FAILED},
                  {"x: Failure [INSTALL_FAILED_ABORTED", INSTALL_FAILED},
                  {"Failure [INSTALL_FAILED_DEXOPT: x]", INSTALL_FAILED},
                  {":Failure [INSTALL_FAILED_DEXOPT: x]", INSTALL_FAILED},
                  {": failure [INSTALL_FAILED_DEXOPT: x]", INSTALL_FAILED},
                  {": Failure[INSTALL_FAILED_DEXOPT: x]", INSTALL_FAILED},
                  {": Failure  [INSTALL_FAILED_DEXOPT: x]", INSTALL_FAILED},
                  {": Failure (INSTALL_FAILED_DEXOPT: x)", INSTALL_FAILED},
                  {": Failure [ INSTALL_FAILED_DEXOPT: x]", INSTALL_FAILED},
                  {": Failure: [INSTALL_FAILED_DEXOPT: x]", INSTALL_FAILED},
                  {"", INSTALL_FAILED}});
}

} // namespace
