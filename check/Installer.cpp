#include "check/Installer.h"

#include "check/Command.h"
#include "check/Stopping.h"
#include "check/Text.h"

#include <tlhelp32.h>

#include <algorithm>
#include <format>
#include <vector>

namespace {

constexpr DWORD kLongestEnd = 10000;

// The processes that run a program of that file name.
std::vector<PROCESSENTRY32W> ProcessesOf(PCWSTR pszName)
{
    std::vector<PROCESSENTRY32W> found;
    const CHandle hSnapshot(CreateToolhelp32Snapshot(TH32CS_SNAPPROCESS, 0));
    PROCESSENTRY32W entry = {};
    entry.dwSize = sizeof entry;
    for (BOOL bMore = Process32FirstW(hSnapshot.get(), &entry); bMore;
         bMore = Process32NextW(hSnapshot.get(), &entry)) {
        if (IsSame(entry.szExeFile, pszName)) {
            found.push_back(entry);
        }
    }
    return found;
}

// Zero where there is none.
DWORD ChildOf(DWORD dwParent, PCWSTR pszName)
{
    const std::vector<PROCESSENTRY32W> processes = ProcessesOf(pszName);
    const auto found = std::ranges::find(processes, dwParent, &PROCESSENTRY32W::th32ParentProcessID);
    return found != processes.end() ? found->th32ProcessID : 0;
}

std::wstring ImageOf(HANDLE hProcess)
{
    WCHAR szPath[MAX_PATH] = {};
    DWORD cch = MAX_PATH;
    QueryFullProcessImageNameW(hProcess, 0, szPath, &cch);
    return szPath;
}

// Processes of adb.exe in the installer's folder.
std::vector<CHandle> OwnAdbs()
{
    std::vector<CHandle> found;
    for (const PROCESSENTRY32W& entry : ProcessesOf(L"adb.exe")) {
        CHandle hProcess(OpenProcess(PROCESS_TERMINATE | PROCESS_QUERY_LIMITED_INFORMATION | SYNCHRONIZE, FALSE,
                                     entry.th32ProcessID));
        if (hProcess && IsSame(ImageOf(hProcess.get()), AdbPath().native())) {
            found.push_back(std::move(hProcess));
        }
    }
    return found;
}

// Whether adb's server stops itself, and all of adb with it.
bool EndsWhenAsked()
{
    try {
        RunCommand(InQuotes(AdbPath()) + L" kill-server", kLongestEnd);
        return WaitFor(2000, [] { return !IsOwnAdbRunning(); });
    } catch (const CLost&) {
        return false;
    }
}

} // namespace

bool IsRunning(PCWSTR pszName)
{
    return !ProcessesOf(pszName).empty();
}

bool IsOwnAdbRunning()
{
    return !OwnAdbs().empty();
}

void StopAdb()
{
    if (!IsOwnAdbRunning() || EndsWhenAsked()) {
        return;
    }
    for (const CHandle& hProcess : OwnAdbs()) {
        TerminateProcess(hProcess.get(), 1);
        WaitForSingleObject(hProcess.get(), kLongestEnd);
    }
}

void RemoveTools()
{
    const CUnstoppable tidying;
    StopAdb();
    std::error_code error;
    for (const std::wstring& szName : NamesIn(ToolsFolder())) {
        if (szName.starts_with(L"platform-tools")) {
            remove_all(ToolsFolder() / szName, error);
        }
    }
}

CInstaller::CInstaller(const std::wstring& szThrough, const CPath& program)
{
    std::wstring szLine = (szThrough.empty() ? L"" : InQuotes(szThrough) + L" ") + InQuotes(program);
    STARTUPINFOW startup = {};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION process = {};
    // What it is started through may be a console's program; its window is none of the installer's.
    if (!CreateProcessW(nullptr, szLine.data(), nullptr, nullptr, FALSE, CREATE_NO_WINDOW, nullptr,
                        program.parent_path().c_str(), &startup, &process)) {
        throw CLost{L"cannot start " + program.filename().wstring()};
    }
    m_hStarted.reset(process.hProcess);
    const CHandle hThread(process.hThread);
    m_dwProcess = process.dwProcessId;
    if (!szThrough.empty()) {
        // What is not found yet nobody could end.
        const CUnstoppable looking;
        const std::wstring szName = program.filename();
        m_dwProcess = 0;
        WaitFor(kLongestEnd, [&] {
            m_dwProcess = ChildOf(process.dwProcessId, szName.c_str());
            return m_dwProcess != 0 || HasEnded();
        });
    }
    AllowSetForegroundWindow(m_dwProcess);
    m_hProcess.reset(OpenProcess(PROCESS_TERMINATE, FALSE, m_dwProcess));
}

// NOLINTNEXTLINE(bugprone-exception-escape): no wait throws in the scope of a CUnstoppable
CInstaller::~CInstaller()
{
    const CUnstoppable tidying;
    Kill();
    StopAdb();
}

bool CInstaller::HasEnded() const
{
    return WaitForSingleObject(m_hStarted.get(), 0) == WAIT_OBJECT_0;
}

std::wstring CInstaller::WaitForEnd(DWORD dwMilliseconds) const
{
    DWORD dwCode = 0;
    if (!WaitFor(dwMilliseconds, [&] { return HasEnded(); }) || !GetExitCodeProcess(m_hStarted.get(), &dwCode)) {
        return L"it goes on running";
    }
    return std::format(L"exit code {}", static_cast<int>(dwCode));
}

void CInstaller::Kill() const
{
    if (m_hProcess && !HasEnded()) {
        TerminateProcess(m_hProcess.get(), 1);
        WaitForSingleObject(m_hStarted.get(), kLongestEnd);
    }
}
