// The installer, run as users run it.
#pragma once

#include "check/Folders.h"
#include "check/Sight.h"
#include "check/Surroundings.h"
#include "launcher/Handle.h"

#include <windows.h>

#include <optional>
#include <vector>

class CInstaller
{
public:
    // Starts it; throws CLost when it does not start.
    CInstaller(const SURROUNDINGS& surroundings, const CPath& program);
    // Ends it if it still runs, and adb with it.
    ~CInstaller();
    CInstaller(const CInstaller&) = delete;
    CInstaller& operator=(const CInstaller&) = delete;

    DWORD Process() const
    {
        return m_dwProcess;
    }
    SIGHT Look() const
    {
        return LookAt(m_dwProcess);
    }
    bool HasEnded() const;
    // Nothing when it goes on running for all that time.
    std::optional<DWORD> WaitForEnd(DWORD dwMilliseconds = 30000) const;
    // Ends it as the task manager does.
    void Kill();

private:
    DWORD m_dwProcess = 0;
    CHandle m_hStarted; // what was started: the installer, or what it is started through
    CHandle m_hProcess;
};

// The processes that run a program of that file name.
std::vector<DWORD> ProcessesOf(PCWSTR pszName);

// Stops adb's server and ends what still runs of the adb that the installer deployed.
void StopAdb();

// Whether a process runs adb.exe from the installer's folder.
bool IsOwnAdbRunning();
