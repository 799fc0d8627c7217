// Another program on the user's computer, for what the installer can meet there:
//   hold FILE        opens the file and lets nobody else open or delete it, says "holding", and gives it
//                    back at the end of its standard input
//   watch            says "watching", and at the end of its standard input which top-level windows have been
//                    shown since, a line each: handle, blank, title (UTF-8). Also one that is gone again
//   crash PID        lets a process run where it has no code
//   ask PID          has a process load the library "asked-for.dll" by that name alone, and prints whether it is
//                    loaded: yes or no
//   describe CODE    prints what the system says about an error (UTF-8, line break included)
// Ends with 1, after a word on standard error, when it cannot.
#include "driver/Json.h"
#include "launcher/Handle.h"
#include "launcher/RemoteLibrary.h"

#include <windows.h>

#include <cstdio>
#include <cwchar>
#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace {

int Fail(const char* pszWhat)
{
    std::fprintf(stderr, "bystander: %s (error %lu)\n", pszWhat, GetLastError());
    return 1;
}

// Says a word, and waits for the end of the input.
void StayUntilEnd(const char* pszWord)
{
    std::puts(pszWord);
    std::fflush(stdout);
    while (std::getchar() != EOF) {
    }
}

int Hold(PCWSTR pszFile)
{
    const HANDLE hFile =
        CreateFileW(pszFile, GENERIC_READ, 0, nullptr, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr);
    if (hFile == INVALID_HANDLE_VALUE) {
        return Fail("cannot open the file");
    }
    const CHandle file(hFile);
    StayUntilEnd("holding");
    return 0;
}

// The windows that have been shown, in order, and their titles.
std::vector<std::pair<HWND, std::string>> g_shown;

void CALLBACK OnShow(HWINEVENTHOOK, DWORD, HWND hwnd, LONG nObject, LONG nChild, DWORD, DWORD)
{
    const bool bTop = !IsWindow(hwnd) || GetAncestor(hwnd, GA_PARENT) == GetDesktopWindow();
    if (nObject == OBJID_WINDOW && nChild == CHILDID_SELF && bTop) {
        WCHAR szTitle[256];
        const int nLength = InternalGetWindowText(hwnd, szTitle, ARRAYSIZE(szTitle));
        g_shown.emplace_back(hwnd, ToUtf8({szTitle, static_cast<size_t>(nLength)}));
    }
}

DWORD WINAPI EndWithInput(PVOID pThread)
{
    StayUntilEnd("watching");
    PostThreadMessageW(HandleToULong(pThread), WM_QUIT, 0, 0);
    return 0;
}

int Watch()
{
    if (SetWinEventHook(EVENT_OBJECT_SHOW, EVENT_OBJECT_SHOW, nullptr, OnShow, 0, 0, WINEVENT_OUTOFCONTEXT) ==
        nullptr) {
        return Fail("cannot watch");
    }
    MSG message;
    PeekMessageW(&message, nullptr, 0, 0, PM_NOREMOVE); // makes the queue that the end is posted to
    const CHandle hThread(CreateThread(nullptr, 0, EndWithInput, ULongToHandle(GetCurrentThreadId()), 0, nullptr));
    if (!hThread) {
        return Fail("cannot wait for the end");
    }
    while (GetMessageW(&message, nullptr, 0, 0) > 0) {
        DispatchMessageW(&message);
    }
    for (const auto& [hwnd, strTitle] : g_shown) {
        std::printf("%lu %s\n", HandleToULong(hwnd), strTitle.c_str());
    }
    return 0;
}

int Crash(DWORD dwProcess)
{
    const CHandle hProcess(OpenProcess(PROCESS_ALL_ACCESS, FALSE, dwProcess));
    auto* const pNowhere = reinterpret_cast<LPTHREAD_START_ROUTINE>(0x10);
    const CHandle hThread(CreateRemoteThread(hProcess.get(), nullptr, 0, pNowhere, nullptr, 0, nullptr));
    return hThread ? 0 : Fail("cannot let the process crash");
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
    const DWORD cch = FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr, dwCode, 0,
                                     szText, ARRAYSIZE(szText), nullptr);
    if (cch == 0) {
        return Fail("the system does not know this error");
    }
    const std::string strText = ToUtf8({szText, cch});
    DWORD cbWritten = 0;
    // Past the C library, which would double the carriage return.
    return WriteFile(GetStdHandle(STD_OUTPUT_HANDLE), strText.data(), static_cast<DWORD>(strText.size()), &cbWritten,
                     nullptr)
               ? 0
               : 1;
}

} // namespace

int wmain(int nArguments, wchar_t** ppszArguments)
{
    const std::map<std::wstring_view, int (*)(DWORD)> verbs = {
        {L"crash", Crash}, {L"ask", AskForLibrary}, {L"describe", Describe}};
    const std::wstring_view szVerb = nArguments > 1 ? ppszArguments[1] : L"";
    if (nArguments == 2 && szVerb == L"watch") {
        return Watch();
    }
    if (nArguments == 3 && szVerb == L"hold") {
        return Hold(ppszArguments[2]);
    }
    if (nArguments == 3 && verbs.contains(szVerb)) {
        return verbs.at(szVerb)(wcstoul(ppszArguments[2], nullptr, 0));
    }
    std::fputs("usage: bystander hold FILE | watch | crash PID | ask PID | describe CODE\n", stderr);
    return 1;
}
