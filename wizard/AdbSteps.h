// What the pages that run adb have in common.
#pragma once

#include "adb/AdbExitCode.h"

constexpr int kAdbAttempts = 3;

// Calls Attempt with its number, from 1, until its outcome is one for which pfnIsWorthAnother says no, or until there
// were three. Returns the last outcome.
template<typename ATTEMPT>
ADB_EXIT_CODE RunAttempts(const ATTEMPT& Attempt, bool (*pfnIsWorthAnother)(ADB_EXIT_CODE nOutcome))
{
    for (int nAttempt = 1;; ++nAttempt) {
        const ADB_EXIT_CODE nOutcome = Attempt(nAttempt);
        if (nAttempt == kAdbAttempts || !pfnIsWorthAnother(nOutcome)) {
            return nOutcome;
        }
    }
}

// Tells the user that adb's server was not stopped, in a box owned by the page and captioned with the method that
// tried.
void ReportServerNotStopped(HWND hwndPage, PCWSTR pszMethod);
