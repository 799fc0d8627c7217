// What the stand-in for adb fails a test for, and whom it leaves alone.

#include "tests/kit/AnsweringAdb.h"

#include "adb/AdbCommands.h"
#include "tests/kit/TemporaryFolder.h"
#include "tests/kit/Test.h"

#include <gtest/gtest-spi.h>

using namespace kit;

namespace {

using AnsweringAdbTest = Test;

TEST_F(AnsweringAdbTest, FailsOverRunsWithoutAnswersAndAnswersWithoutRuns)
{
    AnsweringAdb adb;
    EXPECT_NONFATAL_FAILURE(KillServer(), "nobody expected the run adb kill-server");
    EXPECT_NONFATAL_FAILURE({ AnsweringAdb().Prints(""); }, "adb was run 0 times; 1 answers were left over");
}

TEST_F(AnsweringAdbTest, LeavesOtherHandlesAlone)
{
    std::filesystem::path path;
    {
        const TemporaryFolder folder;
        path = folder.Path() / "file";
        const AnsweringAdb adb;
        WriteTextFile(path, "text");
        const HANDLE hFile = CreateFileW(path.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr);
        char szText[5] = {};
        DWORD cbRead = 0;
        EXPECT_TRUE(ReadFile(hFile, szText, 4, &cbRead, nullptr));
        EXPECT_STREQ(szText, "text");
        EXPECT_TRUE(CloseHandle(hFile));
    }
    EXPECT_FALSE(exists(path.parent_path())); // the folder goes with what is in it
}

} // namespace
