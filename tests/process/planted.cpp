// A library that somebody has put beside the installer under the name of one of the system's. When it
// is loaded it leaves a file beside itself, named as the library with ".loaded" behind.
#include <windows.h>

#include <cwchar>

extern "C" BOOL WINAPI DllMain(HINSTANCE hLibrary, DWORD dwReason, LPVOID)
{
    if (dwReason == DLL_PROCESS_ATTACH) {
        WCHAR szTrace[MAX_PATH] = {};
        constexpr WCHAR szSuffix[] = L".loaded";
        GetModuleFileNameW(hLibrary, szTrace, MAX_PATH - ARRAYSIZE(szSuffix));
        wcscat(szTrace, szSuffix);
        CloseHandle(CreateFileW(szTrace, GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
    }
    return TRUE;
}
