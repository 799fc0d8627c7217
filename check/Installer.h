// The installer, run as users run it.
#pragma once

#include "check/Folders.h"
#include "check/Sight.h"
#include "launcher/Handle.h"

#include <windows.h>

#include <string>

// What WaitForEnd says of a program that ended well.
constexpr PCWSTR kEndedWell = L"exit code 0";

class CInstaller
{
public:
    // Starts it; throws CLost when it does not start. Through another program, where one is named: that gets its path
    // as the only argument and ends with it and with its exit code.
    CInstaller(const std::wstring& szThrough, const CPath& program);
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
    // Waits for its end: "exit code 0", or that it goes on running after all that time.
    std::wstring WaitForEnd(DWORD dwMilliseconds = 30000) const;
    // Ends it as the task manager does.
    void Kill() const;

private:
    DWORD m_dwProcess = 0;
    CHandle m_hStarted; // what was started: the installer, or what it is started through
    CHandle m_hProcess;
};

// Whether a process runs a program of that file name.
bool IsRunning(PCWSTR pszName);

// Whether a process runs adb.exe from the installer's folder.
bool IsOwnAdbRunning();

// Stops adb's server and ends what still runs of the adb that the installer deployed.
void StopAdb();

// The same, whether or not the user has cancelled, and removes the tools that an installer which was killed leaves.
void RemoveTools();
