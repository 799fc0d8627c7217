#include "wizard/Port.h"

bool IsUserPort(UINT nPort)
{
    return nPort >= 1024 && nPort <= 65535;
}

void ReportInvalidPort(HWND hwndPage)
{
    MessageBoxW(hwndPage, L"Please enter a port value in the range of 1024 through 65535.", L"Invalid Port Value",
                MB_OK);
}
