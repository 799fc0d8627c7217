// What a debugger would say of a crash, for homes that have none.
#pragma once

#include <windows.h>

// From now on an exception that nobody handles is told on standard error before it ends the process as ever:
//   crash: exception 0xC0000005 at KalvoApkInstaller.exe+0x1234
//   crash: called from KalvoApkInstaller.exe+0x5678
// innermost call first, at most 32 of them.
void ReportCrashes();
