// Starts a program with the stand-ins in it: standins.dll, which lies beside this launcher, is loaded before
// the program's first instruction. Ends when the program does, with its exit code.
#include "imports/FailingCalls.h"
#include "imports/Journal.h"
#include "launcher/Handle.h"
#include "launcher/RemoteLibrary.h"

#include <shlwapi.h>

#include <cstdio>
#include <format>
#include <string>

namespace {

// The launcher's own failures, as with other programs that start one.
constexpr int kLauncherFailed = 125;

int Say(const std::wstring& szSentence)
{
    fwprintf(stderr, L"%ls\n", szSentence.c_str());
    return kLauncherFailed;
}

int SayFailed(const std::wstring& szWhat, DWORD dwError)
{
    return Say(std::format(L"launcher: {} (error {})", szWhat, dwError));
}

std::wstring LibraryPath()
{
    WCHAR szPath[MAX_PATH];
    GetModuleFileNameW(nullptr, szPath, ARRAYSIZE(szPath));
    const std::wstring szLauncher = szPath;
    return szLauncher.substr(0, szLauncher.find_last_of(L'\\') + 1) + L"standins.dll";
}

// What may be wrong when the library refuses; it has no way to say so itself.
std::wstring Advice(DWORD dwError)
{
    return dwError == ERROR_DLL_INIT_FAILED && !EnvironmentText(kFaultsVariable).empty()
               ? std::format(L"; does it call every function that {} names?", kFaultsVariable)
               : std::wstring();
}

// Lets the program end with the launcher, however that ends; not the processes that the program starts. Where
// it cannot be done, nothing depends on it.
CHandle TieTo(HANDLE hProcess)
{
    CHandle hJob(CreateJobObjectW(nullptr, nullptr));
    JOBOBJECT_EXTENDED_LIMIT_INFORMATION limits = {};
    limits.BasicLimitInformation.LimitFlags = JOB_OBJECT_LIMIT_KILL_ON_JOB_CLOSE | JOB_OBJECT_LIMIT_SILENT_BREAKAWAY_OK;
    SetInformationJobObject(hJob.get(), JobObjectExtendedLimitInformation, &limits, sizeof(limits));
    AssignProcessToJobObject(hJob.get(), hProcess);
    return hJob;
}

int WaitForEnd(HANDLE hProcess)
{
    DWORD dwExitCode = kLauncherFailed;
    WaitForSingleObject(hProcess, INFINITE);
    GetExitCodeProcess(hProcess, &dwExitCode);
    WriteJournal(std::format(L"ended code={}", dwExitCode));
    return static_cast<int>(dwExitCode);
}

int Run(PCWSTR pszProgram, std::wstring szCommandLine)
{
    STARTUPINFOW startup = {};
    startup.cb = sizeof(startup);
    PROCESS_INFORMATION process = {};
    if (!CreateProcessW(nullptr, szCommandLine.data(), nullptr, nullptr, FALSE, CREATE_SUSPENDED, nullptr, nullptr,
                        &startup, &process)) {
        return SayFailed(std::wstring(L"cannot start ") + pszProgram, GetLastError());
    }
    const CHandle hProcess(process.hProcess);
    const CHandle hThread(process.hThread);
    const DWORD dwError = LoadRemoteLibrary(hProcess.get(), LibraryPath());
    if (dwError != ERROR_SUCCESS) {
        TerminateProcess(hProcess.get(), kLauncherFailed);
        return SayFailed(std::format(L"cannot load {} into {}{}", LibraryPath(), pszProgram, Advice(dwError)), dwError);
    }
    const CHandle hJob = TieTo(hProcess.get());
    ResumeThread(hThread.get());
    return WaitForEnd(hProcess.get());
}

} // namespace

int wmain(int nArguments, wchar_t** ppszArguments)
{
    if (nArguments < 2) {
        return Say(L"usage: launcher PROGRAM [ARGUMENT...]");
    }
    std::wstring szWrong;
    if (!CheckFaults(szWrong)) {
        return Say(std::format(L"launcher: {} makes no sense at \"{}\"", kFaultsVariable, szWrong));
    }
    return Run(ppszArguments[1], PathGetArgsW(GetCommandLineW()));
}
