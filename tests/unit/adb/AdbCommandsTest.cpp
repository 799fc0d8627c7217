// The four commands: what adb is asked, and what is made of what it answers.

#include "adb/AdbCommands.h"

#include "tests/kit/AnsweringAdb.h"
#include "tests/kit/Test.h"

using namespace kit;

namespace {

struct Command
{
    PCSTR pszName;
    ADB_EXIT_CODE (*pfnIssue)(std::string* pstrOutput);
    std::wstring strArguments;
    std::vector<std::pair<std::string, ADB_EXIT_CODE>> answers;
};

// As long as a path can be, and with blanks.
const std::wstring strPackage = L"C:\\My apps\\" + std::wstring(244, L'p') + L".apk";

const Command kCommands[] = {
    {"KillServer",
     [](std::string* pstrOutput) { return KillServer(pstrOutput); },
     L" kill-server",
     {{"", ADB_SUCCESS},
      {"cannot connect to daemon at tcp:5037: cannot connect to 127.0.0.1:5037: Connection refused. (10061)\r\n",
       KILL_SEVER_NOT_STARTED},
      {"connected to 1.2.3.4:5\r\n", ADB_PARSE_ERROR}}},
    {"Pair",
     [](std::string* pstrOutput) { return Pair(L"192.168.1.100:37777", L"012345", pstrOutput); },
     L" pair 192.168.1.100:37777 012345",
     {{"Successfully paired to 192.168.1.100:37777 [guid=adb-x]\r\n", ADB_SUCCESS},
      {"", PAIR_ALREADY_PAIRED},
      {"Failed: Unable to start pairing client.\r\n", PAIR_FAILED},
      {"Success\r\n", ADB_PARSE_ERROR}}},
    {"Connect",
     [](std::string* pstrOutput) { return Connect(L"192.168.1.100:43210", pstrOutput); },
     L" connect 192.168.1.100:43210",
     {{"connected to 192.168.1.100:43210\r\n", ADB_SUCCESS},
      {"already connected to a\r\n", CONNECT_ALREADY_CONNECTED},
      {"cannot connect to a\r\n", CONNECT_CANNOT_CONNECT},
      {"failed to authenticate to a\r\n", CONNECT_FAILED_TO_AUTHENTICATE},
      {"", ADB_PARSE_ERROR},
      {"Success\r\n", ADB_PARSE_ERROR}}},
    {"ConnectOverIpv6",
     [](std::string* pstrOutput) { return Connect(L"[fe80::1]:5", pstrOutput); },
     L" connect [fe80::1]:5",
     {{"connected to [fe80::1]:5\r\n", ADB_SUCCESS}}},
    {"Install",
     [](std::string* pstrOutput) { return Install(L"192.168.1.100:43210", strPackage.c_str(), pstrOutput); },
     L" -s 192.168.1.100:43210 install \"" + strPackage + L"\"",
     {{"Performing Streamed Install\r\nSuccess\r\n", ADB_SUCCESS},
      {"adb: failed to stat a: No such file or directory\r\n", INSTALL_FAILED_STAT},
      {"", ADB_PARSE_ERROR},
      {"connected to a\r\n", ADB_PARSE_ERROR}}},
};

class AdbCommand : public Test, public testing::WithParamInterface<Command>
{
protected:
    AnsweringAdb m_adb;
    std::string m_strOutput = "from before";
};

TEST_P(AdbCommand, AsksOnceAfterOnePauseAndJudgesTheAnswer)
{
    for (const auto& [strAnswer, nOutcome] : GetParam().answers) {
        SCOPED_TRACE(strAnswer);
        Journal().clear();
        m_adb.Prints(strAnswer);
        EXPECT_EQ(GetParam().pfnIssue(&m_strOutput), nOutcome);
        EXPECT_EQ(m_strOutput, strAnswer);
        EXPECT_EQ(Journal(), (Lines{"sleep 2000", "adb" + Narrow(GetParam().strArguments)}));
    }
}

// What adb printed would be judged otherwise.
TEST_P(AdbCommand, WhoseRunFailedIsNotJudged)
{
    const std::string strGood = GetParam().answers[0].first;
    m_adb.PrintsAndHidesItsExitCode(strGood).Prints(strGood);
    EXPECT_EQ(GetParam().pfnIssue(&m_strOutput), ADB_GETEXITCODE_FAILED);
    EXPECT_EQ(m_strOutput, strGood);
    const REPLACED(CloseHandle) close(Returns(FALSE));
    EXPECT_EQ(GetParam().pfnIssue(&m_strOutput), ADB_CLOSE_FAILED);
}

INSTANTIATE_TEST_SUITE_P(Adb, AdbCommand, testing::ValuesIn(kCommands), kByName);

} // namespace
