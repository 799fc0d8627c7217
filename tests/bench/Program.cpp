#include "tests/bench/Program.h"

#include <psapi.h>

#include <stdexcept>

namespace {

CHandle OpenNothing()
{
    SECURITY_ATTRIBUTES inherited = {sizeof(inherited), nullptr, TRUE};
    return CHandle(CreateFileW(L"NUL", GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, &inherited,
                               OPEN_EXISTING, 0, nullptr));
}

double Milliseconds(const FILETIME& time)
{
    return static_cast<double>((ULONGLONG{time.dwHighDateTime} << 32) | time.dwLowDateTime) / 10'000;
}

} // namespace

CProgram::CProgram(std::wstring strCommandLine)
{
    const CHandle hNothing = OpenNothing();
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

CHandle OpenOwner(HWND hwnd)
{
    DWORD dwProcess = 0;
    GetWindowThreadProcessId(hwnd, &dwProcess);
    return CHandle(OpenProcess(PROCESS_QUERY_INFORMATION | PROCESS_VM_READ | SYNCHRONIZE, FALSE, dwProcess));
}

size_t MemoryPeak(const CHandle& hProcess)
{
    PROCESS_MEMORY_COUNTERS counters = {};
    return GetProcessMemoryInfo(hProcess.get(), &counters, sizeof(counters)) ? counters.PeakWorkingSetSize / 1024 : 0;
}

double Lifetime(const CHandle& hProcess)
{
    FILETIME created = {};
    FILETIME ended = {};
    FILETIME unused = {};
    if (WaitForSingleObject(hProcess.get(), 0) != WAIT_OBJECT_0 ||
        !GetProcessTimes(hProcess.get(), &created, &ended, &unused, &unused)) {
        throw std::runtime_error("a program's lifetime is not known");
    }
    return Milliseconds(ended) - Milliseconds(created);
}
