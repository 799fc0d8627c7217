// A program to be started by the launcher: does what its first argument says and tells in its exit code
// how that went.
#include <windows.h>
#include <winsock2.h>
#include <ws2ipdef.h>

#include <iphlpapi.h>
#include <netioapi.h>

#include <objbase.h>

#include <cwchar>
#include <string>
#include <string_view>

namespace {

// The last error of the first step that failed; 0 when none did.
int Write(PCWSTR pszFile)
{
    const HANDLE hFile = CreateFileW(pszFile, GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (hFile == INVALID_HANDLE_VALUE) {
        return static_cast<int>(GetLastError());
    }
    DWORD dwWritten = 0;
    const bool bWritten =
        WriteFile(hFile, "1", 1, &dwWritten, nullptr) && WriteFile(hFile, "2", 1, &dwWritten, nullptr);
    const int nError = bWritten ? 0 : static_cast<int>(GetLastError());
    CloseHandle(hFile);
    return nError;
}

// The number of bytes that one look at the file brings.
int Read(PCWSTR pszFile)
{
    char buffer[64];
    DWORD dwRead = 0;
    const HANDLE hFile = CreateFileW(pszFile, GENERIC_READ, 0, nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    ReadFile(hFile, buffer, sizeof(buffer), &dwRead, nullptr);
    CloseHandle(hFile);
    return static_cast<int>(dwRead);
}

// Waits until the tests say that the launcher has ended, for ten seconds at most, and answers.
int Linger(PCWSTR pszFile)
{
    const int nError = Write(pszFile);
    const HANDLE hEnded = OpenEventW(SYNCHRONIZE, FALSE, L"launcher has ended");
    const HANDLE hAnswer = OpenEventW(EVENT_MODIFY_STATE, FALSE, L"still there");
    if (WaitForSingleObject(hEnded, 10000) == WAIT_OBJECT_0) {
        SetEvent(hAnswer);
    }
    CloseHandle(hAnswer);
    CloseHandle(hEnded);
    return nError;
}

// Starts this program anew, with the text as its arguments. The last error; 0 when it started.
int Start(PCWSTR pszText)
{
    WCHAR szProgram[MAX_PATH];
    GetModuleFileNameW(nullptr, szProgram, ARRAYSIZE(szProgram));
    std::wstring szLine = std::wstring(L"probe ") + pszText;
    STARTUPINFOW startup = {};
    startup.cb = sizeof(startup);
    PROCESS_INFORMATION process = {};
    if (!CreateProcessW(szProgram, szLine.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup, &process)) {
        return static_cast<int>(GetLastError());
    }
    WaitForSingleObject(process.hProcess, INFINITE);
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
    return 0;
}

int FindRoute()
{
    SOCKADDR_INET destination = {};
    destination.Ipv4.sin_family = AF_INET;
    destination.Ipv4.sin_addr.s_addr = inet_addr("8.8.8.8");
    DWORD dwInterface = 0;
    GetBestInterface(destination.Ipv4.sin_addr.s_addr, &dwInterface);
    MIB_IPFORWARD_ROW2 route = {};
    SOCKADDR_INET source = {};
    return static_cast<int>(GetBestRoute2(nullptr, dwInterface, nullptr, &destination, 0, &route, &source));
}

// Writes to where nothing is.
int Crash()
{
    const volatile UINT_PTR nNothing = 0x10; // unknown to the compiler, which would refuse it
    *reinterpret_cast<volatile int*>(nNothing) = 1;
    return 0;
}

// What ends a run, in an order of its own.
int TearDown()
{
    WSADATA data = {};
    WSAStartup(MAKEWORD(2, 2), &data);
    CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
    const HANDLE hMutex = CreateMutexW(nullptr, TRUE, nullptr);
    const HANDLE hOther = CreateEventW(nullptr, FALSE, FALSE, nullptr);
    SetForegroundWindow(GetDesktopWindow());
    CoUninitialize();
    CloseHandle(hOther);
    WSACleanup();
    ReleaseMutex(hMutex);
    CloseHandle(hMutex);
    ExitProcess(1812);
}

} // namespace

int wmain(int nArguments, wchar_t** ppszArguments)
{
    const std::wstring_view szDo = nArguments > 1 ? ppszArguments[1] : L"";
    const PCWSTR pszWith = nArguments > 2 ? ppszArguments[2] : L"";
    if (szDo == L"exit") {
        return static_cast<int>(wcstol(pszWith, nullptr, 0));
    }
    if (szDo == L"write") {
        return Write(pszWith);
    }
    if (szDo == L"linger") {
        return Linger(pszWith);
    }
    if (szDo == L"read") {
        return Read(pszWith);
    }
    if (szDo == L"start") {
        return Start(pszWith);
    }
    if (szDo == L"route") {
        return FindRoute();
    }
    if (szDo == L"start-com") {
        return CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
    }
    if (szDo == L"crash") {
        return Crash();
    }
    if (szDo == L"tear-down") {
        return TearDown();
    }
    return -1;
}
