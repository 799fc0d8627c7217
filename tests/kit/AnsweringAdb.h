// Stands in for adb: every run that the product makes gets the next scripted answer, without a
// process, a pipe or a pause.
//
//     AnsweringAdb adb;
//     adb.Prints("connected to 192.168.1.100:43210\r\n");
//     EXPECT_EQ(Connect(L"192.168.1.100:43210", &strOutput), ADB_SUCCESS);
//     EXPECT_EQ(adb.Commands(), std::vector<std::wstring>{L" connect 192.168.1.100:43210"});
#pragma once

#include "tests/kit/Replaced.h"

#include <deque>
#include <functional>
#include <string>
#include <vector>

namespace kit {

// Needs the fixture kit::Test, which keeps sleeps short. A run without an answer fails the test and
// prints nothing; answers that no run asked for fail it too. Each run leaves "adb kill-server", or
// what its command was, in the journal.
class AnsweringAdb
{
public:
    AnsweringAdb();
    ~AnsweringAdb();
    AnsweringAdb(const AnsweringAdb&) = delete;
    AnsweringAdb& operator=(const AnsweringAdb&) = delete;

    // The next run prints this.
    AnsweringAdb& Prints(std::string strOutput);

    // The next run prints this, but its exit code cannot be had: the runner's outcome 4.
    AnsweringAdb& PrintsAndHidesItsExitCode(std::string strOutput);

    // Is called when a run begins, with its number from 0: the time to look at what is on the page.
    void WhenItRuns(std::function<void(size_t)> action);

    // The argument texts of the runs so far.
    const std::vector<std::wstring>& Commands() const
    {
        return m_commands;
    }

private:
    struct Run
    {
        std::string strOutput;
        bool bExitCode = true;
    };

    BOOL OnCreateProcess(PCWSTR pszCommandLine, PROCESS_INFORMATION* pInfo);
    BOOL OnReadFile(void* pBuffer, DWORD cbBuffer, DWORD* pcbRead);

    std::deque<Run> m_answers;
    Run m_run;
    std::function<void(size_t)> m_onRun;
    std::vector<std::wstring> m_commands;

    REPLACED(CreatePipe) m_createPipe;
    REPLACED(SetHandleInformation) m_setHandleInformation;
    REPLACED(CreateProcessW) m_createProcess;
    REPLACED(ReadFile) m_readFile;
    REPLACED(GetExitCodeProcess) m_getExitCode;
    REPLACED(CloseHandle) m_closeHandle;
};

} // namespace kit
