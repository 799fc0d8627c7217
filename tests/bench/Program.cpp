#include "tests/bench/Program.h"

#include <psapi.h>

#include <algorithm>
#include <stdexcept>

namespace {

UniqueHandle OpenNothing()
{
    SECURITY_ATTRIBUTES inherited = {sizeof(inherited), nullptr, TRUE};
    return UniqueHandle(CreateFileW(L"NUL", GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                    &inherited, OPEN_EXISTING, 0, nullptr));
}

UniqueHandle OpenOwner(HWND hwnd)
{
    DWORD dwProcess = 0;
    GetWindowThreadProcessId(hwnd, &dwProcess);
    return UniqueHandle(OpenProcess(PROCESS_QUERY_INFORMATION | PROCESS_VM_READ | SYNCHRONIZE, FALSE, dwProcess));
}

constexpr double kTicksInMillisecond = 10'000;

ULONGLONG Ticks(const FILETIME& time)
{
    return (ULONGLONG{time.dwHighDateTime} << 32) | time.dwLowDateTime;
}

} // namespace

CProgram::CProgram(std::wstring strCommandLine)
{
    const UniqueHandle hNothing = OpenNothing();
    STARTUPINFOW startup = {};
    startup.cb = sizeof(startup);
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdInput = startup.hStdOutput = startup.hStdError = hNothing.get();
    PROCESS_INFORMATION process = {};
    if (!CreateProcessW(nullptr, strCommandLine.data(), nullptr, nullptr, TRUE, CREATE_NO_WINDOW, nullptr, nullptr,
                        &startup, &process)) {
        throw std::runtime_error("a program cannot be started");
    }
    CloseHandle(process.hThread);
    m_hProcess.reset(process.hProcess);
}

bool CProgram::EndsWithin(DWORD dwMilliseconds) const
{
    return WaitForSingleObject(m_hProcess.get(), dwMilliseconds) == WAIT_OBJECT_0;
}

void CProgram::End() const
{
    TerminateProcess(m_hProcess.get(), 1);
    EndsWithin(INFINITE);
}

CShowingProcess::CShowingProcess(HWND hwnd) : m_hProcess(OpenOwner(hwnd))
{
    Look();
}

void CShowingProcess::Look()
{
    PROCESS_MEMORY_COUNTERS counters = {};
    if (GetProcessMemoryInfo(m_hProcess.get(), &counters, sizeof(counters))) {
        m_nMemoryPeak = std::max(m_nMemoryPeak, counters.PeakWorkingSetSize / 1024);
    }
}

double CShowingProcess::Lifetime() const
{
    FILETIME created = {};
    FILETIME ended = {};
    FILETIME unused = {};
    if (WaitForSingleObject(m_hProcess.get(), 0) != WAIT_OBJECT_0 ||
        !GetProcessTimes(m_hProcess.get(), &created, &ended, &unused, &unused)) {
        throw std::runtime_error("a program's lifetime is not known");
    }
    return static_cast<double>(Ticks(ended) - Ticks(created)) / kTicksInMillisecond;
}
