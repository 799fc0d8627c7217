// Loading a library into another process.
#pragma once

#include <windows.h>

#include <string>

// Loads the library into a process of the same width, which may not have started yet, and waits until that
// is done. Returns 0, or an error code; ERROR_DLL_INIT_FAILED when the library could not be loaded there
// or refused to be.
DWORD LoadRemoteLibrary(HANDLE hProcess, const std::wstring& szPath);
