// Runs adb hidden and captures what it prints.
#pragma once

#include "adb/AdbExitCode.h"

#include <string>

// One run of a console program whose standard output and standard error go into one pipe. The steps
// are called once each, in the order in which they stand here.
class CConsoleProcess
{
public:
    CConsoleProcess();
    CConsoleProcess(const CConsoleProcess&) = delete;
    CConsoleProcess& operator=(const CConsoleProcess&) = delete;

    // Starts the program with the argument text, which the system may write into. Ends the process,
    // after a report, when the pipe cannot be made or the program not be started. The platform's macro
    // of this name makes it CreateProcessW, here and for every caller.
    void CreateProcess(PCWSTR pszApplicationName, PWSTR pszCommandLine);

    // Reads until every holder of the pipe's other end has closed it; there is no time-out, and a read
    // that fails for another reason is tried again. What was in strOutput is lost, what was read is in
    // it byte for byte.
    void ReadStandardOutput(std::string& strOutput);

    // The program's exit status. Does not wait for the program to end. False when the system cannot
    // tell.
    bool GetExitCode(DWORD& dwExitCode);

    // Closes the handles of the process and its thread. False when one could not be closed.
    bool Close();

private:
    // The handles are closed one by one as the run goes on; this object closes none that is left.
    HANDLE m_hStandardInput = nullptr; // never opened: adb gets no input
    // Left open on purpose until this process ends: one handle for each run of adb.
    HANDLE m_hStandardOutputRead = nullptr;
    HANDLE m_hStandardOutputWrite = nullptr;
    DWORD m_dwCreationFlags = CREATE_NO_WINDOW;
    SECURITY_ATTRIBUTES m_sa = {};
    STARTUPINFOW m_si = {};
    PROCESS_INFORMATION m_pi = {};
};

// Runs the deployed adb.exe with the argument text (writable, begins with a blank, carries no
// program name) and captures everything that it writes, byte for byte, in strOutput. Takes two
// seconds and the life of adb. Returns ADB_SUCCESS, ADB_GETEXITCODE_FAILED or ADB_CLOSE_FAILED,
// whatever adb's exit status. Ends the process, after a report, when adb cannot be started.
ADB_EXIT_CODE RunAdbCommand(std::string& strOutput, PWSTR pszCommandLine);
