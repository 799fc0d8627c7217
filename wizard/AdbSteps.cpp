#include "wizard/AdbSteps.h"

void ReportServerNotStopped(HWND hwndPage, PCWSTR pszMethod)
{
    MessageBoxW(hwndPage, L"Unable to stop the adb service. Please report this error to KALVO\n", pszMethod, MB_OK);
}
