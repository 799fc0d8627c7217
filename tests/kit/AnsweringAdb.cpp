#include "tests/kit/AnsweringAdb.h"

#include "tests/kit/Test.h"

#include <cstring>

namespace kit {

namespace {

// No handles of the system: those are small multiples of four.
const HANDLE hPipeRead = reinterpret_cast<HANDLE>(0xADB0001);
const HANDLE hPipeWrite = reinterpret_cast<HANDLE>(0xADB0003);
const HANDLE hProcess = reinterpret_cast<HANDLE>(0xADB0005);
const HANDLE hThread = reinterpret_cast<HANDLE>(0xADB0007);

bool IsOurs(HANDLE h)
{
    return h == hPipeRead || h == hPipeWrite || h == hProcess || h == hThread;
}

} // namespace

AnsweringAdb::AnsweringAdb()
    : m_createPipe(Quietly([](HANDLE* phRead, HANDLE* phWrite, auto&&...) -> BOOL {
          *phRead = hPipeRead;
          *phWrite = hPipeWrite;
          return TRUE;
      })),
      m_setHandleInformation(Quietly([this](HANDLE h, DWORD dwMask, DWORD dwFlags) -> BOOL {
          return IsOurs(h) || m_setHandleInformation.Next(h, dwMask, dwFlags);
      })),
      m_createProcess(Quietly([this](PCWSTR, PWSTR pszCommandLine, void*, void*, BOOL, DWORD, void*, PCWSTR, void*,
                                     PROCESS_INFORMATION* pInfo) { return OnCreateProcess(pszCommandLine, pInfo); })),
      m_readFile(Quietly([this](HANDLE h, void* pBuffer, DWORD cbBuffer, DWORD* pcbRead, OVERLAPPED* pOverlapped) {
          return IsOurs(h) ? OnReadFile(pBuffer, cbBuffer, pcbRead)
                           : m_readFile.Next(h, pBuffer, cbBuffer, pcbRead, pOverlapped);
      })),
      m_getExitCode(Quietly([this](HANDLE, DWORD* pdwExitCode) -> BOOL {
          *pdwExitCode = 0;
          return m_run.bExitCode;
      })),
      m_closeHandle(Quietly([this](HANDLE h) -> BOOL { return IsOurs(h) || m_closeHandle.Next(h); }))
{
}

AnsweringAdb::~AnsweringAdb()
{
    if (!m_answers.empty()) {
        ADD_FAILURE() << "adb was run " << m_commands.size() << " times; " << m_answers.size()
                      << " answers were left over";
    }
}

AnsweringAdb& AnsweringAdb::Prints(std::string strOutput)
{
    m_answers.push_back({std::move(strOutput), true});
    return *this;
}

AnsweringAdb& AnsweringAdb::PrintsAndHidesItsExitCode(std::string strOutput)
{
    m_answers.push_back({std::move(strOutput), false});
    return *this;
}

void AnsweringAdb::WhenItRuns(std::function<void(size_t)> action)
{
    m_onRun = std::move(action);
}

BOOL AnsweringAdb::OnCreateProcess(PCWSTR pszCommandLine, PROCESS_INFORMATION* pInfo)
{
    m_commands.emplace_back(pszCommandLine);
    Note("adb" + Narrow(pszCommandLine));
    if (m_answers.empty()) {
        ADD_FAILURE() << "nobody expected the run adb" << Narrow(pszCommandLine);
        m_run = {};
    } else {
        m_run = std::move(m_answers.front());
        m_answers.pop_front();
    }
    if (m_onRun) {
        m_onRun(m_commands.size() - 1);
    }
    *pInfo = {hProcess, hThread, 1, 1};
    return TRUE;
}

BOOL AnsweringAdb::OnReadFile(void* pBuffer, DWORD cbBuffer, DWORD* pcbRead)
{
    *pcbRead = std::min(cbBuffer, static_cast<DWORD>(m_run.strOutput.size()));
    if (*pcbRead == 0) {
        unreplaced::SetLastError(ERROR_BROKEN_PIPE);
        return FALSE;
    }
    std::memcpy(pBuffer, m_run.strOutput.data(), *pcbRead);
    m_run.strOutput.erase(0, *pcbRead);
    return TRUE;
}

} // namespace kit
