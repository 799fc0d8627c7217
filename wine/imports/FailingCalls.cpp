#include "imports/FailingCalls.h"

#include "frame/PropertySheet.h"
#include "imports/ImportTable.h"
#include "imports/Journal.h"

#include <winsock2.h>
#include <ws2tcpip.h>

#include <iphlpapi.h>
#include <netioapi.h>

#include <icmpapi.h>

#include <objbase.h>
#include <pathcch.h>
#include <shellapi.h>
#include <shlobj.h>

#include <algorithm>
#include <string_view>
#include <type_traits>

namespace {

// Lives as long as the process: any of its threads may be in one of these calls at its end.
CFaults* g_pFaults;

// A text that the call can be told by. Memory that the function is to fill may hold anything before.
void AddText(std::vector<std::wstring>& texts, PCWSTR psz)
{
    if (!IS_INTRESOURCE(psz)) {
        texts.emplace_back(psz);
    }
}

void AddText(std::vector<std::wstring>& texts, UINT nResource)
{
    texts.push_back(std::to_wstring(nResource));
}

void AddText(std::vector<std::wstring>& texts, HANDLE hFile)
{
    WCHAR szPath[MAX_PATH];
    const DWORD nLength =
        GetFileType(hFile) == FILE_TYPE_DISK ? GetFinalPathNameByHandleW(hFile, szPath, ARRAYSIZE(szPath), 0) : 0;
    if (nLength > 0 && nLength < ARRAYSIZE(szPath)) {
        texts.emplace_back(szPath);
    }
}

template<typename Argument>
void AddText(std::vector<std::wstring>& /*texts*/, const Argument& /*argument*/)
{
}

// How a function tells its caller of a failure.
enum class TELLS
{
    Code,     // the result is the code of the error
    Zero,     // FALSE or null, and the last error
    MinusOne, // INVALID_HANDLE_VALUE or SOCKET_ERROR, and the last error
};

template<typename Result>
Result ToResult(long long n)
{
    if constexpr (std::is_pointer_v<Result>) {
        return reinterpret_cast<Result>(static_cast<INT_PTR>(n));
    } else {
        return static_cast<Result>(n);
    }
}

template<typename Result>
Result Fail(const FAULT& fault, TELLS tells)
{
    if (fault.dwError) {
        SetLastError(*fault.dwError);
    }
    if (fault.nResult) {
        return ToResult<Result>(*fault.nResult);
    }
    if (tells == TELLS::Code) {
        return ToResult<Result>(fault.dwError.value_or(0));
    }
    return ToResult<Result>(tells == TELLS::Zero ? 0 : -1);
}

// A name that a template can be instantiated with.
template<size_t nSize>
struct NAME
{
    constexpr NAME(const char (&szName)[nSize]) // NOLINT: meant to convert
    {
        std::copy_n(szName, nSize, sz);
    }

    char sz[nSize];
};

// One function: the stand-in, and what it stands in for.
template<NAME kName, TELLS kTells, typename Function>
struct FAILING_CALL;

template<NAME kName, TELLS kTells, typename Result, typename... Args>
struct FAILING_CALL<kName, kTells, Result WINAPI(Args...)>
{
    static inline Result(WINAPI* s_pfnReal)(Args...) = nullptr;

    static Result WINAPI Call(Args... args)
    {
        const DWORD dwError = GetLastError();
        std::vector<std::wstring> texts;
        (AddText(texts, args), ...);
        const FAULT* const pFault = FaultOfCall(*g_pFaults, kName.sz, texts);
        SetLastError(dwError);
        if (pFault == nullptr) {
            return s_pfnReal(args...);
        }
        WriteJournal(L"fault " + std::wstring(pFault->szFunction.begin(), pFault->szFunction.end()));
        if (pFault->bHangs) {
            Sleep(INFINITE);
        }
        return Fail<Result>(*pFault, kTells);
    }

    // Once, however many faults the function has.
    static bool Install(HMODULE hModule)
    {
        if (s_pfnReal == nullptr) {
            s_pfnReal = ReplaceImport(hModule, kName.sz, Call);
        }
        return s_pfnReal != nullptr;
    }
};

struct ROW
{
    std::string_view szFunction;
    bool (*pfnInstall)(HMODULE hModule);
};

template<NAME kName, TELLS kTells, typename Function>
constexpr ROW Row()
{
    return {kName.sz, FAILING_CALL<kName, kTells, Function>::Install};
}

#define CALL(function, tells) Row<#function, TELLS::tells, decltype(function)>()

constexpr ROW kRows[] = {
    // memory for texts
    CALL(HeapAlloc, Zero),
    // start-up and its end
    CALL(LoadStringW, Zero),
    CALL(CreateMutexW, Zero),
    CALL(VerifyVersionInfoW, Zero),
    CALL(CoInitializeEx, Code),
    CALL(WSAStartup, Code),
    CALL(QueryFullProcessImageNameW, Zero),
    CALL(SHGetKnownFolderPath, Code),
    CALL(PathCchAppend, Code),
    CALL(PropertySheetW, MinusOne),
    // deployment of the tools
    CALL(PathCchCombine, Code),
    CALL(SHCreateDirectoryExW, Code),
    CALL(FindResourceW, Zero),
    CALL(LoadResource, Zero),
    CALL(LockResource, Zero),
    CALL(CreateFileW, MinusOne),
    CALL(WriteFile, Zero),
    CALL(ReadFile, Zero),
    CALL(CloseHandle, Zero),
    CALL(WideCharToMultiByte, Zero),
    CALL(_wfopen_s, Code),
    CALL(SHFileOperationW, Code),
    CALL(FindFirstFileW, MinusOne),
    CALL(DeleteFileW, Zero),
    // network
    CALL(GetBestInterfaceEx, Code),
    CALL(GetBestRoute2, Code),
    CALL(IcmpSendEcho2, Zero),
    CALL(socket, MinusOne),
    CALL(ioctlsocket, MinusOne),
    CALL(connect, MinusOne),
    CALL(WSAPoll, MinusOne),
    CALL(shutdown, MinusOne),
    CALL(closesocket, MinusOne),
    // pages
    CALL(SetWindowSubclass, Zero),
    CALL(GetDlgItemInt, Zero),
    CALL(GetDlgItemTextW, Zero),
    // the tool's process
    CALL(CreatePipe, Zero),
    CALL(SetHandleInformation, Zero),
    CALL(CreateProcessW, Zero),
    CALL(GetExitCodeProcess, Zero),
};

const ROW* FindRow(std::string_view szFunction)
{
    const auto* const pRow = std::ranges::find(kRows, szFunction, &ROW::szFunction);
    return pRow == std::end(kRows) ? nullptr : pRow;
}

std::optional<CFaults> ReadFaults(std::wstring& szWrong)
{
    std::optional<CFaults> faults = ParseFaults(EnvironmentText(kFaultsVariable), szWrong);
    for (const FAULT& fault : faults.value_or(CFaults())) {
        if (FindRow(fault.szFunction) == nullptr) {
            szWrong.assign(fault.szFunction.begin(), fault.szFunction.end());
            return std::nullopt;
        }
    }
    return faults;
}

} // namespace

bool CheckFaults(std::wstring& szWrong)
{
    return ReadFaults(szWrong).has_value();
}

bool InstallFaults(HMODULE hModule)
{
    std::wstring szWrong;
    std::optional<CFaults> faults = ReadFaults(szWrong);
    if (!faults) {
        return false;
    }
    g_pFaults = new CFaults(std::move(*faults));
    return std::ranges::all_of(
        *g_pFaults, [hModule](const FAULT& fault) { return FindRow(fault.szFunction)->pfnInstall(hModule); });
}
