// Stands in for adb: every run that the product makes gets the next scripted answer, without a
// process, a pipe or a pause.
//
//     AnsweringAdb adb;
//     adb.Prints("connected to 192.168.1.100:43210\r\n");
//     EXPECT_EQ(Connect(L"192.168.1.100:43210", &strOutput), ADB_SUCCESS);
//     EXPECT_EQ(adb.Commands(), std::vector<std::wstring>{L" connect 192.168.1.100:43210"});
#pragma once

#include "tests/kit/Test.h"

#include <cstring>
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
    AnsweringAdb()
        : m_createPipe(Quietly([](HANDLE* phRead, HANDLE* phWrite, auto&&...) -> BOOL {
              *phRead = Handle(0);
              *phWrite = Handle(1);
              return TRUE;
          })),
          m_setInformation(Quietly([this](HANDLE h, DWORD dwMask, DWORD dwFlags) -> BOOL {
              return IsOurs(h) || m_setInformation.Next(h, dwMask, dwFlags);
          })),
          m_createProcess(Quietly([this](PCWSTR, PWSTR pszCommandLine, void*, void*, BOOL, DWORD, void*, PCWSTR, void*,
                                         PROCESS_INFORMATION* pInfo) { return Start(pszCommandLine, pInfo); })),
          m_readFile(Quietly([this](HANDLE h, void* pBuffer, DWORD cb, DWORD* pcb, OVERLAPPED* pOverlapped) {
              return IsOurs(h) ? Read(pBuffer, cb, pcb) : m_readFile.Next(h, pBuffer, cb, pcb, pOverlapped);
          })),
          m_getExitCode(Quietly([this](HANDLE, DWORD* pdwExitCode) -> BOOL {
              *pdwExitCode = 0;
              return m_run.bExitCode;
          })),
          m_closeHandle(Quietly([this](HANDLE h) -> BOOL { return IsOurs(h) || m_closeHandle.Next(h); }))
    {
    }

    ~AnsweringAdb()
    {
        if (!m_answers.empty()) {
            ADD_FAILURE() << "adb was run " << m_commands.size() << " times; " << m_answers.size()
                          << " answers were left over";
        }
    }

    // The next run prints this.
    AnsweringAdb& Prints(std::string strOutput)
    {
        m_answers.push_back({std::move(strOutput), true});
        return *this;
    }

    // The next run prints this, but its exit code cannot be had: the runner's outcome 4.
    AnsweringAdb& PrintsAndHidesItsExitCode(std::string strOutput)
    {
        m_answers.push_back({std::move(strOutput), false});
        return *this;
    }

    // Is called when a run begins, with its number from 0: the time to look at what is on the page.
    void WhenItRuns(std::function<void(size_t)> action)
    {
        m_onRun = std::move(action);
    }

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

    // The pipe's ends, the process and its thread. The system's own handles are small multiples of four.
    static HANDLE Handle(ULONG_PTR nWhich)
    {
        return reinterpret_cast<HANDLE>(0xADB0001 + 2 * nWhich);
    }

    static bool IsOurs(HANDLE h)
    {
        return h >= Handle(0) && h <= Handle(3);
    }

    BOOL Start(PCWSTR pszCommandLine, PROCESS_INFORMATION* pInfo)
    {
        m_commands.emplace_back(pszCommandLine);
        Note("adb" + Narrow(pszCommandLine));
        m_run = {};
        if (m_answers.empty()) {
            ADD_FAILURE() << "nobody expected the run adb" << Narrow(pszCommandLine);
        } else {
            m_run = std::move(m_answers.front());
            m_answers.pop_front();
        }
        if (m_onRun) {
            m_onRun(m_commands.size() - 1);
        }
        *pInfo = {Handle(2), Handle(3), 1, 1};
        return TRUE;
    }

    BOOL Read(void* pBuffer, DWORD cbBuffer, DWORD* pcbRead)
    {
        *pcbRead = std::min(cbBuffer, static_cast<DWORD>(m_run.strOutput.size()));
        std::memcpy(pBuffer, m_run.strOutput.data(), *pcbRead);
        m_run.strOutput.erase(0, *pcbRead);
        unreplaced::SetLastError(*pcbRead == 0 ? ERROR_BROKEN_PIPE : ERROR_SUCCESS);
        return *pcbRead != 0;
    }

    std::deque<Run> m_answers;
    Run m_run;
    std::function<void(size_t)> m_onRun;
    std::vector<std::wstring> m_commands;

    REPLACED(CreatePipe) m_createPipe;
    REPLACED(SetHandleInformation) m_setInformation;
    REPLACED(CreateProcessW) m_createProcess;
    REPLACED(ReadFile) m_readFile;
    REPLACED(GetExitCodeProcess) m_getExitCode;
    REPLACED(CloseHandle) m_closeHandle;
};

} // namespace kit
