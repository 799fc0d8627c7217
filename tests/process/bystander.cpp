// Another program on the user's computer, for what the installer can meet there:
//   hold FILE        opens the file and lets nobody else open or delete it, says "holding", and gives it
//                    back at the end of its standard input
//   handles PID      prints how many handles a process has open
//   ask PID          has a process load the library "asked-for.dll" by that name alone, and prints whether it is
//                    loaded: yes or no
//   describe CODE    prints what the system says about an error (UTF-8, line break included)
// Ends with 1, after a word on standard error, when it cannot.
#include "launcher/Handle.h"
#include "launcher/RemoteLibrary.h"

#include <windows.h>

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <cwchar>
#include <string_view>
#include <vector>

namespace {

int Fail(const char* pszWhat)
{
    std::fprintf(stderr, "bystander: %s (error %lu)\n", pszWhat, GetLastError());
    return 1;
}

int Hold(PCWSTR pszFile)
{
    const HANDLE hFile =
        CreateFileW(pszFile, GENERIC_READ, 0, nullptr, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr);
    if (hFile == INVALID_HANDLE_VALUE) {
        return Fail("cannot open the file");
    }
    std::puts("holding");
    std::fflush(stdout);
    while (std::getchar() != EOF) {
    }
    CloseHandle(hFile);
    return 0;
}

// What the system tells of every handle of every process; the SDK does not declare it.
struct HANDLE_ENTRY
{
    PVOID pObject;
    ULONG_PTR nProcess;
    ULONG_PTR nHandle;
    ULONG nAccess;
    USHORT nTrace;
    USHORT nType;
    ULONG nAttributes;
    ULONG nReserved;
};

struct HANDLE_LIST
{
    ULONG_PTR nEntries;
    ULONG_PTR nReserved;
    HANDLE_ENTRY entries[1];
};

constexpr ULONG kExtendedHandleInformation = 64;

using QUERY_SYSTEM = LONG WINAPI(ULONG nClass, PVOID pInformation, ULONG cbInformation, PULONG pcbNeeded);

// Room for all handles of a computer that does little.
constexpr ULONG kListBytes = 4 << 20;

int CountHandles(ULONG_PTR nProcess)
{
    // GetProcessHandleCount is not made everywhere.
    const HMODULE hNtDll = GetModuleHandleW(L"ntdll.dll");
    auto* const pfnQuery =
        reinterpret_cast<QUERY_SYSTEM*>(reinterpret_cast<void*>(GetProcAddress(hNtDll, "NtQuerySystemInformation")));
    std::vector<std::byte> buffer(kListBytes);
    if (pfnQuery(kExtendedHandleInformation, buffer.data(), kListBytes, nullptr) != 0) {
        return Fail("cannot list the handles");
    }
    const auto* const pList = reinterpret_cast<const HANDLE_LIST*>(buffer.data());
    const auto belongs = [nProcess](const HANDLE_ENTRY& entry) { return entry.nProcess == nProcess; };
    std::printf("%lld\n",
                static_cast<long long>(std::count_if(pList->entries, pList->entries + pList->nEntries, belongs)));
    return 0;
}

int AskForLibrary(DWORD dwProcess)
{
    const CHandle hProcess(OpenProcess(PROCESS_ALL_ACCESS, FALSE, dwProcess));
    if (!hProcess) {
        return Fail("cannot open the process");
    }
    const DWORD dwError = LoadRemoteLibrary(hProcess.get(), L"asked-for.dll");
    if (dwError != ERROR_SUCCESS && dwError != ERROR_DLL_INIT_FAILED) {
        SetLastError(dwError);
        return Fail("cannot ask the process");
    }
    std::puts(dwError == ERROR_SUCCESS ? "yes" : "no");
    return 0;
}

int Describe(DWORD dwCode)
{
    WCHAR szText[1024] = {};
    char szUtf8[3 * ARRAYSIZE(szText)] = {};
    if (FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr, dwCode, 0, szText,
                       ARRAYSIZE(szText), nullptr) == 0) {
        return Fail("the system does not know this error");
    }
    const int cb = WideCharToMultiByte(CP_UTF8, 0, szText, -1, szUtf8, sizeof(szUtf8), nullptr, nullptr);
    DWORD cbWritten = 0;
    // Past the C library, which would double the carriage return.
    return WriteFile(GetStdHandle(STD_OUTPUT_HANDLE), szUtf8, static_cast<DWORD>(cb - 1), &cbWritten, nullptr) ? 0 : 1;
}

} // namespace

int wmain(int nArguments, wchar_t** ppszArguments)
{
    const std::wstring_view szVerb = nArguments == 3 ? ppszArguments[1] : L"";
    if (szVerb == L"hold") {
        return Hold(ppszArguments[2]);
    }
    if (szVerb == L"handles") {
        return CountHandles(wcstoul(ppszArguments[2], nullptr, 0));
    }
    if (szVerb == L"ask") {
        return AskForLibrary(wcstoul(ppszArguments[2], nullptr, 0));
    }
    if (szVerb == L"describe") {
        return Describe(wcstoul(ppszArguments[2], nullptr, 0));
    }
    std::fputs("usage: bystander hold FILE | handles PID | ask PID | describe CODE\n", stderr);
    return 1;
}
