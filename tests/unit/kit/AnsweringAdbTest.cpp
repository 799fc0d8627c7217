// The stand-in for adb keeps its promises too.

#include "tests/kit/AnsweringAdb.h"

#include "adb/AdbCommands.h"
#include "tests/kit/TemporaryFolder.h"
#include "tests/kit/Test.h"

#include <gtest/gtest-spi.h>

using namespace kit;

namespace {

class AnsweringAdbTest : public Test
{
protected:
    std::string m_strOutput;
};

TEST_F(AnsweringAdbTest, AnswersRunAfterRun)
{
    AnsweringAdb adb;
    const std::string strLong(5000, 'x');
    std::vector<size_t> runs;
    adb.Prints("").Prints(strLong).PrintsAndHidesItsExitCode("y").Prints("");
    adb.WhenItRuns([&](size_t nRun) { runs.push_back(nRun); });
    EXPECT_EQ(KillServer(&m_strOutput), ADB_SUCCESS);
    EXPECT_EQ(Connect(L"a", &m_strOutput), ADB_PARSE_ERROR);
    EXPECT_EQ(m_strOutput, strLong);
    EXPECT_EQ(KillServer(&m_strOutput), ADB_GETEXITCODE_FAILED);
    EXPECT_EQ(m_strOutput, "y");
    EXPECT_EQ(KillServer(&m_strOutput), ADB_SUCCESS);
    EXPECT_EQ(runs, (std::vector<size_t>{0, 1, 2, 3}));
    EXPECT_EQ(adb.Commands(),
              (std::vector<std::wstring>{L" kill-server", L" connect a", L" kill-server", L" kill-server"}));
    EXPECT_EQ(JournalOf({"adb kill-server", "adb connect a"}),
              (Lines{"adb kill-server", "adb connect a", "adb kill-server", "adb kill-server"}));
}

TEST_F(AnsweringAdbTest, FailsOverARunThatNobodyExpected)
{
    AnsweringAdb adb;
    EXPECT_NONFATAL_FAILURE(KillServer(&m_strOutput), "nobody expected the run adb kill-server");
}

TEST_F(AnsweringAdbTest, FailsOverAnswersLeftOver)
{
    EXPECT_NONFATAL_FAILURE({ AnsweringAdb().Prints(""); }, "adb was run 0 times; 1 answers were left over");
}

TEST_F(AnsweringAdbTest, LeavesOtherHandlesAlone)
{
    const AnsweringAdb adb;
    const TemporaryFolder folder;
    const std::filesystem::path path = folder.Path() / "file";
    WriteTextFile(path, "text");
    const HANDLE hFile = CreateFileW(path.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    char szText[5] = {};
    DWORD cbRead = 0;
    EXPECT_TRUE(ReadFile(hFile, szText, 4, &cbRead, nullptr));
    EXPECT_STREQ(szText, "text");
    EXPECT_TRUE(CloseHandle(hFile));
    EXPECT_EQ(ReadTextFile(path), "text");
}

TEST_F(AnsweringAdbTest, ATemporaryFolderIsEmptyAndGoes)
{
    std::filesystem::path path;
    {
        const TemporaryFolder folder;
        path = folder.Path();
        EXPECT_TRUE(is_empty(path));
        WriteTextFile(path / "file", "text");
    }
    EXPECT_FALSE(exists(path));
}

} // namespace
