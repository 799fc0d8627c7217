// The system functions that the kit itself lives on. They are taken from the system library and not
// from the program's import table, so that a test may replace any of them.
#pragma once

#include <windows.h>

namespace kit::unreplaced {

#define KIT_UNREPLACED(function)                                                                                       \
    inline const auto function = reinterpret_cast<decltype(&::function)>(                                              \
        reinterpret_cast<void*>(::GetProcAddress(::GetModuleHandleW(L"kernel32.dll"), #function)))

KIT_UNREPLACED(CloseHandle);
KIT_UNREPLACED(CreateThread);
KIT_UNREPLACED(ExitThread);
KIT_UNREPLACED(GetCurrentThreadId);
KIT_UNREPLACED(GetLastError);
KIT_UNREPLACED(GetProcAddress);
KIT_UNREPLACED(LocalAlloc);
KIT_UNREPLACED(ResumeThread);
KIT_UNREPLACED(SetLastError);
KIT_UNREPLACED(TerminateProcess);
KIT_UNREPLACED(VirtualProtect);
KIT_UNREPLACED(WaitForSingleObject);
KIT_UNREPLACED(WideCharToMultiByte);

#undef KIT_UNREPLACED

} // namespace kit::unreplaced
