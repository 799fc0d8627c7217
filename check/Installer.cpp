#include "check/Installer.h"

#include "check/Command.h"
#include "check/Stopping.h"

#include <tlhelp32.h>

#include <algorithm>

namespace {

constexpr DWORD kSoon = 10000;

template<typename TAKE>
void ForEachProcess(TAKE take)
{
    const CHandle hSnapshot(CreateToolhelp32Snapshot(TH32CS_SNAPPROCESS, 0));
    PROCESSENTRY32W entry = {};
    entry.dwSize = sizeof entry;
    for (BOOL bMore = Process32FirstW(hSnapshot.get(), &entry); bMore;
         bMore = Process32NextW(hSnapshot.get(), &entry)) {
        take(entry);
    }
}

bool IsSame(PCWSTR pszOne, PCWSTR pszOther)
{
    return CompareStringOrdinal(pszOne, -1, pszOther, -1, TRUE) == CSTR_EQUAL;
}

DWORD ChildOf(DWORD dwParent, PCWSTR pszName)
{
    DWORD dwFound = 0;
    ForEachProcess([&](const PROCESSENTRY32W& entry) {
        if (entry.th32ParentProcessID == dwParent && IsSame(entry.szExeFile, pszName)) {
            dwFound = entry.th32ProcessID;
        }
    });
    return dwFound;
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
    for (const DWORD dwProcess : ProcessesOf(L"adb.exe")) {
        CHandle hProcess(
            OpenProcess(PROCESS_TERMINATE | PROCESS_QUERY_LIMITED_INFORMATION | SYNCHRONIZE, FALSE, dwProcess));
        if (hProcess && IsSame(ImageOf(hProcess.get()).c_str(), AdbPath().c_str())) {
            found.push_back(std::move(hProcess));
        }
    }
    return found;
}

std::wstring InQuotes(const std::wstring& szText)
{
    return L"\"" + szText + L"\"";
}

} // namespace

std::vector<DWORD> ProcessesOf(PCWSTR pszName)
{
    std::vector<DWORD> found;
    ForEachProcess([&](const PROCESSENTRY32W& entry) {
        if (IsSame(entry.szExeFile, pszName)) {
            found.push_back(entry.th32ProcessID);
        }
    });
    return found;
}

bool IsOwnAdbRunning()
{
    return !OwnAdbs().empty();
}

void StopAdb()
{
    if (!IsOwnAdbRunning()) {
        return;
    }
    try {
        RunCommand(InQuotes(AdbPath()) + L" kill-server", kSoon);
        WaitFor(2000, [] { return !IsOwnAdbRunning(); });
    } catch (const CLost&) {
        // It is ended the hard way.
    }
    for (const CHandle& hProcess : OwnAdbs()) {
        TerminateProcess(hProcess.get(), 1);
        WaitForSingleObject(hProcess.get(), kSoon);
    }
}

CInstaller::CInstaller(const SURROUNDINGS& surroundings, const CPath& program)
{
    std::wstring szLine = InQuotes(program);
    if (!surroundings.szThrough.empty()) {
        szLine = InQuotes(surroundings.szThrough) + L" " + szLine;
    }
    STARTUPINFOW startup = {};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION process = {};
    // What it is started through may be a console's program; its window is none of the installer's.
    if (!CreateProcessW(nullptr, szLine.data(), nullptr, nullptr, FALSE, CREATE_NO_WINDOW, nullptr,
                        program.parent_path().c_str(), &startup, &process)) {
        throw CLost{L"cannot start " + program.filename().wstring()};
    }
    m_hStarted.reset(process.hProcess);
    CloseHandle(process.hThread);
    m_dwProcess = process.dwProcessId;
    if (!surroundings.szThrough.empty()) {
        const std::wstring szName = program.filename();
        m_dwProcess = 0;
        WaitFor(kSoon, [&] {
            m_dwProcess = ChildOf(process.dwProcessId, szName.c_str());
            return m_dwProcess != 0 || HasEnded();
        });
    }
    AllowSetForegroundWindow(m_dwProcess);
    m_hProcess.reset(OpenProcess(PROCESS_TERMINATE | SYNCHRONIZE | PROCESS_QUERY_LIMITED_INFORMATION |
                                     PROCESS_CREATE_THREAD | PROCESS_VM_OPERATION | PROCESS_VM_WRITE | PROCESS_VM_READ,
                                 FALSE, m_dwProcess));
}

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

std::optional<DWORD> CInstaller::WaitForEnd(DWORD dwMilliseconds) const
{
    DWORD dwCode = 0;
    if (!WaitFor(dwMilliseconds, [&] { return HasEnded(); }) || !GetExitCodeProcess(m_hStarted.get(), &dwCode)) {
        return std::nullopt;
    }
    return dwCode;
}

void CInstaller::Kill()
{
    if (m_hProcess && !HasEnded()) {
        TerminateProcess(m_hProcess.get(), 1);
        WaitForSingleObject(m_hStarted.get(), kSoon);
    }
}
