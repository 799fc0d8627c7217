// The four commands: what adb is asked, and what is made of what it answers.

#include "adb/AdbCommands.h"

#include "tests/kit/AnsweringAdb.h"
#include "tests/kit/Test.h"

using namespace kit;

namespace {

using Commands = std::vector<std::wstring>;

class AdbCommands : public Test
{
protected:
    AnsweringAdb m_adb;
    std::string m_strOutput = "from before";
};

TEST_F(AdbCommands, KillServerAsksForItAlone)
{
    m_adb.Prints("");
    EXPECT_EQ(KillServer(&m_strOutput), ADB_SUCCESS);
    EXPECT_EQ(m_adb.Commands(), Commands{L" kill-server"});
    EXPECT_EQ(m_strOutput, "");
}

TEST_F(AdbCommands, KillServerIsJudgedAsSuch)
{
    m_adb.Prints("cannot connect to daemon at tcp:5037: cannot connect to 127.0.0.1:5037: Connection refused. "
                 "(10061)\r\n");
    EXPECT_EQ(KillServer(&m_strOutput), KILL_SEVER_NOT_STARTED);
    m_adb.Prints("connected to 1.2.3.4:5\r\n");
    EXPECT_EQ(KillServer(&m_strOutput), ADB_PARSE_ERROR);
}

TEST_F(AdbCommands, PairNamesTheAddressAndThenTheCode)
{
    m_adb.Prints("Successfully paired to 192.168.1.100:37777 [guid=adb-x]\r\n");
    EXPECT_EQ(Pair(L"192.168.1.100:37777", L"012345", &m_strOutput), ADB_SUCCESS);
    EXPECT_EQ(m_adb.Commands(), Commands{L" pair 192.168.1.100:37777 012345"});
    EXPECT_EQ(m_strOutput, "Successfully paired to 192.168.1.100:37777 [guid=adb-x]\r\n");
}

TEST_F(AdbCommands, PairIsJudgedAsSuch)
{
    m_adb.Prints("").Prints("Failed: Unable to start pairing client.\r\n").Prints("Success\r\n");
    EXPECT_EQ(Pair(L"a", L"b", &m_strOutput), PAIR_ALREADY_PAIRED);
    EXPECT_EQ(Pair(L"a", L"b", &m_strOutput), PAIR_FAILED);
    EXPECT_EQ(Pair(L"a", L"b", &m_strOutput), ADB_PARSE_ERROR);
}

TEST_F(AdbCommands, ConnectNamesTheAddress)
{
    m_adb.Prints("connected to 192.168.1.100:43210\r\n");
    EXPECT_EQ(Connect(L"192.168.1.100:43210", &m_strOutput), ADB_SUCCESS);
    EXPECT_EQ(m_adb.Commands(), Commands{L" connect 192.168.1.100:43210"});
    EXPECT_EQ(m_strOutput, "connected to 192.168.1.100:43210\r\n");
}

TEST_F(AdbCommands, ConnectIsJudgedAsSuch)
{
    m_adb.Prints("already connected to a\r\n")
        .Prints("cannot connect to a\r\n")
        .Prints("failed to authenticate to a\r\n");
    m_adb.Prints("").Prints("Success\r\n");
    EXPECT_EQ(Connect(L"a", &m_strOutput), CONNECT_ALREADY_CONNECTED);
    EXPECT_EQ(Connect(L"a", &m_strOutput), CONNECT_CANNOT_CONNECT);
    EXPECT_EQ(Connect(L"a", &m_strOutput), CONNECT_FAILED_TO_AUTHENTICATE);
    EXPECT_EQ(Connect(L"a", &m_strOutput), ADB_PARSE_ERROR);
    EXPECT_EQ(Connect(L"a", &m_strOutput), ADB_PARSE_ERROR);
}

TEST_F(AdbCommands, ConnectTakesAnAddressOfAnyFamily)
{
    m_adb.Prints("connected to [fe80::1]:5\r\n");
    EXPECT_EQ(Connect(L"[fe80::1]:5", &m_strOutput), ADB_SUCCESS);
    EXPECT_EQ(m_adb.Commands(), Commands{L" connect [fe80::1]:5"});
}

TEST_F(AdbCommands, InstallNamesTheSerialAndTheWholePathInQuotes)
{
    m_adb.Prints("Performing Streamed Install\r\nSuccess\r\n");
    EXPECT_EQ(Install(L"192.168.1.100:43210", L"C:\\My apps\\Solvane watch.apk", &m_strOutput), ADB_SUCCESS);
    EXPECT_EQ(m_adb.Commands(), Commands{L" -s 192.168.1.100:43210 install \"C:\\My apps\\Solvane watch.apk\""});
    EXPECT_EQ(m_strOutput, "Performing Streamed Install\r\nSuccess\r\n");
}

TEST_F(AdbCommands, InstallIsJudgedAsSuch)
{
    m_adb.Prints("adb: failed to stat a: No such file or directory\r\n").Prints("").Prints("connected to a\r\n");
    EXPECT_EQ(Install(L"a", L"b", &m_strOutput), INSTALL_FAILED_STAT);
    EXPECT_EQ(Install(L"a", L"b", &m_strOutput), ADB_PARSE_ERROR);
    EXPECT_EQ(Install(L"a", L"b", &m_strOutput), ADB_PARSE_ERROR);
}

TEST_F(AdbCommands, ALongPathIsPassedWhole)
{
    const std::wstring strPath = L"C:\\" + std::wstring(256, L'p');
    m_adb.Prints("Success");
    EXPECT_EQ(Install(L"192.168.100.100:65535", strPath.c_str(), &m_strOutput), ADB_SUCCESS);
    EXPECT_EQ(m_adb.Commands()[0], L" -s 192.168.100.100:65535 install \"" + strPath + L"\"");
}

TEST_F(AdbCommands, EachTakesOnePauseAndOneRun)
{
    m_adb.Prints("what?").Prints("what?").Prints("what?").Prints("what?");
    KillServer(&m_strOutput);
    Pair(L"a", L"b", &m_strOutput);
    Connect(L"a", &m_strOutput);
    Install(L"a", L"b", &m_strOutput);
    EXPECT_EQ(Journal(), (Lines{"sleep 2000", "adb kill-server", "sleep 2000", "adb pair a b", "sleep 2000",
                                "adb connect a", "sleep 2000", "adb -s a install \"b\""}));
}

// What adb printed would be judged otherwise, one of them with a box.
TEST_F(AdbCommands, AFailedRunIsNotJudged)
{
    m_adb.PrintsAndHidesItsExitCode("").PrintsAndHidesItsExitCode("Successfully paired to a\n");
    m_adb.PrintsAndHidesItsExitCode("connected to a\n");
    m_adb.PrintsAndHidesItsExitCode("adb: failed to install b: Failure [NEVER_HEARD_OF: x]\n");
    EXPECT_EQ(KillServer(&m_strOutput), ADB_GETEXITCODE_FAILED);
    EXPECT_EQ(Pair(L"a", L"b", &m_strOutput), ADB_GETEXITCODE_FAILED);
    EXPECT_EQ(Connect(L"a", &m_strOutput), ADB_GETEXITCODE_FAILED);
    EXPECT_EQ(Install(L"a", L"b", &m_strOutput), ADB_GETEXITCODE_FAILED);
    EXPECT_EQ(m_strOutput, "adb: failed to install b: Failure [NEVER_HEARD_OF: x]\n");
}

TEST_F(AdbCommands, ARunThatCannotBeClosedIsNotJudged)
{
    m_adb.Prints("connected to a\n");
    const REPLACED(CloseHandle) close(Returns(FALSE));
    EXPECT_EQ(Connect(L"a", &m_strOutput), ADB_CLOSE_FAILED);
}

} // namespace
