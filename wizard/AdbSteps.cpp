#include "wizard/AdbSteps.h"

ADB_EXIT_CODE RunAttempts(const std::function<ADB_EXIT_CODE(int nAttempt)>& Attempt,
                          bool (*pfnIsWorthAnother)(ADB_EXIT_CODE nOutcome))
{
    for (int nAttempt = 1;; ++nAttempt) {
        const ADB_EXIT_CODE nOutcome = Attempt(nAttempt);
        if (nAttempt == kAdbAttempts || !pfnIsWorthAnother(nOutcome)) {
            return nOutcome;
        }
    }
}

void ReportServerNotStopped(HWND hwndPage, PCWSTR pszMethod)
{
    MessageBoxW(hwndPage, L"Unable to stop the adb service. Please report this error to KALVO\n", pszMethod, MB_OK);
}
