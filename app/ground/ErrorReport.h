// Tells the user about a failed system call and, for most callers, ends the process on the spot.
//
// A method text names the failing step as class, method and system call, such as
// L"CPlatformTools::DeleteFolder() > SHFileOperation()". The system's description of a code is
// shown in the language of the user. Every box is modal to its owner and has one OK button. A
// failure inside these functions is not reported.
#pragma once

#include "app/ground/Platform.h"

// Shows "METHOD failed with error CODE: DESCRIPTION" for the thread's last error, captioned
// "Error", without owner; the code in decimal, the description with the line break that the system
// ends it with. Returns that code.
DWORD ReportLastError(PCWSTR pszMethod);

// As ReportLastError, then ends the process with the code.
[[noreturn]] void ReportLastErrorAndExit(PCWSTR pszMethod);

// Shows the context (the failing method) and the detail below each other, captioned "Error",
// without owner, then ends the process with exit code 1.
[[noreturn]] void ReportFatalError(PCWSTR pszContext, PCWSTR pszDetail);

// Shows the system's description of an HRESULT or error code, captioned with the method text;
// a code without description is shown as a number, captioned "COM Error". The description loses the
// white space at its end and then one full stop. Without owner. Ends the process with the code.
[[noreturn]] void ReportComErrorAndExit(HRESULT hrCode, PCWSTR pszMethod);

// Shows "METHOD failed with error 0xCODE: DESCRIPTION", captioned "Win32 Error"; the code in eight
// hexadecimal digits, the description with the line break that the system ends it with. pszMethod may be
// null ("Unknown Method" stands in), hwndOwner may be null. Ends the process with the code when
// bEndProcess is set, else returns.
void ReportWin32Error(PCWSTR pszMethod, bool bEndProcess, HWND hwndOwner, DWORD dwCode);
