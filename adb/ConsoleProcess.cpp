#include "adb/ConsoleProcess.h"

#include "app/ground/ErrorReport.h"
#include "tools/PlatformTools.h"

namespace {

// Before every run, on purpose. In milliseconds.
constexpr DWORD kPauseBeforeAdb = 2000;

} // namespace

CConsoleProcess::CConsoleProcess()
{
    m_sa.nLength = sizeof(m_sa);
    m_sa.bInheritHandle = TRUE;
    m_si.cb = sizeof(m_si);
    m_si.dwFlags = STARTF_USESTDHANDLES;
    m_si.hStdInput = INVALID_HANDLE_VALUE;
    m_si.hStdOutput = INVALID_HANDLE_VALUE;
    m_si.hStdError = INVALID_HANDLE_VALUE;
}

void CConsoleProcess::CreateProcess(PCWSTR pszApplicationName, PWSTR pszCommandLine)
{
    if (!CreatePipe(&m_hStandardOutputRead, &m_hStandardOutputWrite, &m_sa, 0)) {
        ReportLastErrorAndExit(L"CreatePipe(&m_hStandardOutputRead, &m_hStandardOutputWrite, &m_sa, 0)");
    }
    // Only the write end passes to the child, else the pipe would never break.
    if (!SetHandleInformation(m_hStandardOutputRead, HANDLE_FLAG_INHERIT, 0)) {
        ReportLastErrorAndExit(L"SetHandleInformation(m_hStandardOutputRead, HANDLE_FLAG_INHERIT, 0)");
    }
    m_si.hStdInput = m_hStandardInput;
    m_si.hStdOutput = m_hStandardOutputWrite;
    m_si.hStdError = m_hStandardOutputWrite;
    if (!::CreateProcessW(pszApplicationName, pszCommandLine, nullptr, nullptr, TRUE, m_dwCreationFlags, nullptr,
                          nullptr, &m_si, &m_pi)) {
        ReportLastErrorAndExit(L"CreateProcess(lpApplicationName, lpCommandLine, ...)");
    }
    // The child holds its own copy now. The input is null: closing it does nothing but fail. Under a debugger the
    // system raises an exception for such a handle.
    CloseHandle(m_hStandardOutputWrite);
    CloseHandle(m_hStandardInput);
}

void CConsoleProcess::ReadStandardOutput(std::string& strOutput)
{
    strOutput.clear();
    for (;;) {
        char buffer[1024];
        DWORD cbRead = 0;
        if (!ReadFile(m_hStandardOutputRead, buffer, sizeof(buffer), &cbRead, nullptr) &&
            GetLastError() == ERROR_BROKEN_PIPE) {
            return;
        }
        strOutput.append(buffer, cbRead);
    }
}

bool CConsoleProcess::GetExitCode(DWORD& dwExitCode)
{
    return GetExitCodeProcess(m_pi.hProcess, &dwExitCode) != FALSE;
}

bool CConsoleProcess::Close()
{
    const bool bThreadClosed = CloseHandle(m_pi.hThread) != FALSE;
    const bool bProcessClosed = CloseHandle(m_pi.hProcess) != FALSE;
    return bThreadClosed && bProcessClosed;
}

ADB_EXIT_CODE RunAdbCommand(std::string& strOutput, PWSTR pszCommandLine)
{
    Sleep(kPauseBeforeAdb);

    CConsoleProcess process;
    process.CreateProcess(CPlatformTools::GetInstance().m_szAdbExePath, pszCommandLine);
    process.ReadStandardOutput(strOutput);

    DWORD dwExitCode = 0;
    if (!process.GetExitCode(dwExitCode)) {
        // The handles of the process stay open on purpose, until this process ends.
        return ADB_GETEXITCODE_FAILED;
    }
    return process.Close() ? ADB_SUCCESS : ADB_CLOSE_FAILED;
}
