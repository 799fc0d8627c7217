#include "imports/JournaledCalls.h"

#include "frame/PropertySheet.h"
#include "imports/ImportTable.h"
#include "imports/Journal.h"

#include <winsock2.h>

#include <objbase.h>

#include <format>

namespace {

decltype(WSACleanup)* g_pfnWSACleanup;
decltype(CoUninitialize)* g_pfnCoUninitialize;
decltype(CreateMutexW)* g_pfnCreateMutexW;
decltype(ReleaseMutex)* g_pfnReleaseMutex;
decltype(CloseHandle)* g_pfnCloseHandle;
decltype(ExitProcess)* g_pfnExitProcess;
decltype(SetForegroundWindow)* g_pfnSetForegroundWindow;
decltype(MessageBoxW)* g_pfnMessageBoxW;
decltype(PropertySheetW)* g_pfnPropertySheetW;

HANDLE g_hMutex;

int WINAPI JournaledWSACleanup()
{
    WriteJournal(L"WSACleanup");
    return g_pfnWSACleanup();
}

void WINAPI JournaledCoUninitialize()
{
    WriteJournal(L"CoUninitialize");
    g_pfnCoUninitialize();
}

HANDLE WINAPI NotedCreateMutexW(LPSECURITY_ATTRIBUTES pAttributes, BOOL bInitialOwner, LPCWSTR pszName)
{
    g_hMutex = g_pfnCreateMutexW(pAttributes, bInitialOwner, pszName);
    return g_hMutex;
}

BOOL WINAPI JournaledReleaseMutex(HANDLE hMutex)
{
    WriteJournal(L"ReleaseMutex");
    return g_pfnReleaseMutex(hMutex);
}

BOOL WINAPI JournaledCloseHandle(HANDLE hObject)
{
    if (hObject != nullptr && hObject == g_hMutex) {
        WriteJournal(L"CloseHandle mutex");
        g_hMutex = nullptr; // the next handle may get the same number
    }
    return g_pfnCloseHandle(hObject);
}

DECLSPEC_NORETURN void WINAPI JournaledExitProcess(UINT nExitCode)
{
    WriteJournal(std::format(L"ExitProcess code={}", nExitCode));
    g_pfnExitProcess(nExitCode);
    __builtin_unreachable();
}

BOOL WINAPI JournaledSetForegroundWindow(HWND hwnd)
{
    WCHAR szTitle[256] = {};
    InternalGetWindowText(hwnd, szTitle, ARRAYSIZE(szTitle));
    WriteJournal(L"SetForegroundWindow title=" + QuotedOnOneLine(szTitle));
    return g_pfnSetForegroundWindow(hwnd);
}

int WINAPI JournaledMessageBoxW(HWND hwndOwner, LPCWSTR pszText, LPCWSTR pszCaption, UINT nType)
{
    WriteJournal(std::format(L"MessageBoxW owner={} flags={:#010x} caption={} text={}",
                             hwndOwner == nullptr ? L"none" : L"some", nType,
                             QuotedOnOneLine(pszCaption != nullptr ? pszCaption : L""),
                             QuotedOnOneLine(pszText != nullptr ? pszText : L"")));
    return g_pfnMessageBoxW(hwndOwner, pszText, pszCaption, nType);
}

INT_PTR WINAPI JournaledPropertySheetW(LPCPROPSHEETHEADERW pHeader)
{
    const INT_PTR nResult = g_pfnPropertySheetW(pHeader);
    WriteJournal(std::format(L"PropertySheetW result={}", nResult));
    return nResult;
}

// The pointer to the real function is set before the replacement can be called: the program has not started yet.
template<typename Function>
void Install(HMODULE hModule, PCSTR pszFunction, Function* pfnReplacement, Function*& pfnReal)
{
    pfnReal = ReplaceImport(hModule, pszFunction, pfnReplacement);
}

} // namespace

void InstallJournal(HMODULE hModule)
{
    if (!HasJournal()) {
        return;
    }
    Install(hModule, "WSACleanup", JournaledWSACleanup, g_pfnWSACleanup);
    Install(hModule, "CoUninitialize", JournaledCoUninitialize, g_pfnCoUninitialize);
    Install(hModule, "CreateMutexW", NotedCreateMutexW, g_pfnCreateMutexW);
    Install(hModule, "ReleaseMutex", JournaledReleaseMutex, g_pfnReleaseMutex);
    Install(hModule, "CloseHandle", JournaledCloseHandle, g_pfnCloseHandle);
    Install(hModule, "ExitProcess", JournaledExitProcess, g_pfnExitProcess);
    Install(hModule, "SetForegroundWindow", JournaledSetForegroundWindow, g_pfnSetForegroundWindow);
    Install(hModule, "MessageBoxW", JournaledMessageBoxW, g_pfnMessageBoxW);
    Install(hModule, "PropertySheetW", JournaledPropertySheetW, g_pfnPropertySheetW);
}
