// Starts a program with the stand-ins in it: standins.dll, which lies beside this launcher, is loaded before
// the program's first instruction. Ends when the program does, with its exit code.
#include "imports/FailingCalls.h"
#include "imports/Journal.h"
#include "launcher/CommandLine.h"
#include "launcher/Handle.h"
#include "launcher/RemoteLibrary.h"

#include <cstdio>
#include <cwchar>
#include <format>
#include <string>

namespace {

// The launcher's own failures, as with other programs that start one.
constexpr int kLauncherFailed = 125;

constexpr PCWSTR kUsage = L"usage: launcher [--no-wait] [--] PROGRAM [ARGUMENT...]";

struct OPTIONS
{
    bool bWait = true;
    int nProgram = 1; // its place among the arguments
};

int Say(const std::wstring& szSentence)
{
    fwprintf(stderr, L"%ls\n", szSentence.c_str());
    return kLauncherFailed;
}

int SayFailed(const std::wstring& szWhat, DWORD dwError)
{
    return Say(L"launcher: " + szWhat + L" (error " + std::to_wstring(dwError) + L")");
}

// False when the arguments make no sense.
bool ReadOptions(int nArguments, wchar_t** ppszArguments, OPTIONS& options)
{
    for (; options.nProgram < nArguments; ++options.nProgram) {
        const std::wstring_view szArgument = ppszArguments[options.nProgram];
        if (szArgument == L"--") {
            ++options.nProgram;
            break;
        }
        if (!szArgument.starts_with(L"--")) {
            break;
        }
        if (szArgument != L"--no-wait") {
            return false;
        }
        options.bWait = false;
    }
    return options.nProgram < nArguments;
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
    return dwError == ERROR_DLL_INIT_FAILED && GetEnvironmentVariableW(kFaultsVariable, nullptr, 0) > 1
               ? std::wstring(L"; does it call every function that ") + kFaultsVariable + L" names?"
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
    if (HasJournal()) {
        WriteJournal(std::format(L"ended code={}", dwExitCode));
    }
    return static_cast<int>(dwExitCode);
}

int Run(std::wstring szCommandLine, PCWSTR pszProgram, bool bWait)
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
        return SayFailed(L"cannot load " + LibraryPath() + L" into " + pszProgram + Advice(dwError), dwError);
    }
    const CHandle hJob = bWait ? TieTo(hProcess.get()) : nullptr;
    ResumeThread(hThread.get());
    return bWait ? WaitForEnd(hProcess.get()) : 0;
}

} // namespace

int wmain(int nArguments, wchar_t** ppszArguments)
{
    OPTIONS options;
    if (!ReadOptions(nArguments, ppszArguments, options)) {
        return Say(kUsage);
    }
    std::wstring szWrong;
    if (!CheckFaults(szWrong)) {
        return Say(std::wstring(L"launcher: ") + kFaultsVariable + L" makes no sense at \"" + szWrong + L"\"");
    }
    wchar_t** const ppszProgram = ppszArguments + options.nProgram;
    const std::span<wchar_t* const> arguments(ppszProgram, ppszArguments + nArguments);
    return Run(JoinArguments(arguments), *ppszProgram, options.bWait);
}
