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
#include <cstdio>
#include <type_traits>

namespace {

// Null until InstallFaults.
CFaultList* g_pFaults;

// Whether a function reads the texts that it may write to. Others are only to fill that memory, which may hold
// anything before.
enum class WRITABLE_TEXTS
{
    AreFilled,
    AreRead,
};

// What a call can be told by: the texts among its arguments, the path behind a handle of a file, the number of a
// resource.
template<WRITABLE_TEXTS kWritable>
class CCallTexts
{
public:
    template<typename... Args>
    explicit CCallTexts(Args... args)
    {
        (Add(args), ...);
    }

    const std::vector<std::wstring>& Texts() const
    {
        return m_texts;
    }

private:
    void Add(PCWSTR psz)
    {
        if (IS_INTRESOURCE(psz)) {
            Add(static_cast<UINT>(LOWORD(reinterpret_cast<UINT_PTR>(psz))));
        } else {
            m_texts.emplace_back(psz);
        }
    }

    void Add(PWSTR psz)
    {
        if (kWritable == WRITABLE_TEXTS::AreRead && psz != nullptr) {
            m_texts.emplace_back(psz);
        }
    }

    void Add(UINT nNumber)
    {
        m_texts.push_back(std::to_wstring(nNumber));
    }

    void Add(HANDLE hFile)
    {
        WCHAR szPath[MAX_PATH];
        const DWORD nLength =
            GetFileType(hFile) == FILE_TYPE_DISK ? GetFinalPathNameByHandleW(hFile, szPath, ARRAYSIZE(szPath), 0) : 0;
        if (nLength > 0 && nLength < ARRAYSIZE(szPath)) {
            m_texts.emplace_back(szPath);
        }
    }

    void Add(LPSHFILEOPSTRUCTW pOperation)
    {
        Add(pOperation->pFrom);
    }

    template<typename Argument>
    void Add(const Argument&)
    {
    }

    std::vector<std::wstring> m_texts;
};

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
    switch (fault.kind) {
    case FAULT_KIND::Return:
        return ToResult<Result>(fault.nResult);
    case FAULT_KIND::Null:
        return ToResult<Result>(0);
    default:
        break;
    }
    if (tells == TELLS::Code) {
        return ToResult<Result>(*fault.dwError);
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
template<NAME kName, TELLS kTells, WRITABLE_TEXTS kWritable, typename Function>
struct FAILING_CALL;

template<NAME kName, TELLS kTells, WRITABLE_TEXTS kWritable, typename Result, typename... Args>
struct FAILING_CALL<kName, kTells, kWritable, Result WINAPI(Args...)>
{
    static inline Result(WINAPI* s_pfnReal)(Args...) = nullptr;

    static Result WINAPI Call(Args... args)
    {
        const DWORD dwError = GetLastError();
        const FAULT* const pFault = g_pFaults->OnCall(kName.sz, CCallTexts<kWritable>(args...).Texts());
        SetLastError(dwError);
        if (pFault == nullptr) {
            return s_pfnReal(args...);
        }
        WriteJournal(L"fault " + std::wstring(pFault->szFunction.begin(), pFault->szFunction.end()));
        while (pFault->kind == FAULT_KIND::Hang) {
            Sleep(INFINITE);
        }
        return Fail<Result>(*pFault, kTells);
    }

    static bool Install(HMODULE hModule)
    {
        s_pfnReal = ReplaceImport(hModule, kName.sz, Call);
        return s_pfnReal != nullptr;
    }
};

struct ROW
{
    PCSTR pszFunction;
    bool (*pfnInstall)(HMODULE hModule);
};

template<NAME kName, TELLS kTells, WRITABLE_TEXTS kWritable, typename Function>
constexpr ROW Row()
{
    return {kName.sz, FAILING_CALL<kName, kTells, kWritable, Function>::Install};
}

#define CALL(function, tells) Row<#function, TELLS::tells, WRITABLE_TEXTS::AreFilled, decltype(function)>()
#define READING_CALL(function, tells) Row<#function, TELLS::tells, WRITABLE_TEXTS::AreRead, decltype(function)>()

constexpr ROW kRows[] = {
    // memory for texts
    CALL(HeapAlloc, Zero),
    // start-up and its end
    CALL(LoadStringW, Zero),
    CALL(CreateMutexW, Zero),
    CALL(ReleaseMutex, Zero),
    CALL(VerifyVersionInfoW, Zero),
    CALL(CoInitializeEx, Code),
    CALL(WSAStartup, Code),
    CALL(WSACleanup, MinusOne),
    CALL(QueryFullProcessImageNameW, Zero),
    CALL(SHGetKnownFolderPath, Code),
    READING_CALL(PathCchAppend, Code),
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
    CALL(IcmpCreateFile, MinusOne),
    CALL(IcmpSendEcho2, Zero),
    CALL(InetNtopW, Zero),
    READING_CALL(WSAStringToAddressW, MinusOne),
    CALL(WSAAddressToStringW, MinusOne),
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
    CALL(CoCreateInstance, Code),
    // the tool's process
    CALL(CreatePipe, Zero),
    CALL(SetHandleInformation, Zero),
    READING_CALL(CreateProcessW, Zero),
    CALL(GetExitCodeProcess, Zero),
    // the About box
    CALL(GetFileVersionInfoSizeExW, Zero),
    CALL(GetFileVersionInfoExW, Zero),
    CALL(VerQueryValueW, Zero),
};

const ROW* FindRow(std::string_view szFunction)
{
    const auto* const pRow = std::find_if(std::begin(kRows), std::end(kRows),
                                          [szFunction](const ROW& row) { return row.pszFunction == szFunction; });
    return pRow == std::end(kRows) ? nullptr : pRow;
}

std::wstring FaultsText()
{
    std::wstring szText(GetEnvironmentVariableW(kFaultsVariable, nullptr, 0), L'\0');
    szText.resize(GetEnvironmentVariableW(kFaultsVariable, szText.data(), static_cast<DWORD>(szText.size())));
    return szText;
}

std::optional<CFaultList> ReadFaults(std::wstring& szWrong)
{
    std::optional<CFaultList> list = CFaultList::Parse(FaultsText(), szWrong);
    if (list) {
        for (const FAULT& fault : list->Faults()) {
            if (FindRow(fault.szFunction) == nullptr) {
                szWrong.assign(fault.szFunction.begin(), fault.szFunction.end());
                return std::nullopt;
            }
        }
    }
    return list;
}

} // namespace

bool CheckFaults(std::wstring& szWrong)
{
    return ReadFaults(szWrong).has_value();
}

bool InstallFaults(HMODULE hModule)
{
    std::wstring szWrong;
    std::optional<CFaultList> list = ReadFaults(szWrong);
    if (!list) {
        return false;
    }
    // Lives as long as the process: any of its threads may be in one of these calls at its end.
    g_pFaults = new CFaultList(std::move(*list));
    std::vector<std::string_view> installed;
    for (const FAULT& fault : g_pFaults->Faults()) {
        if (std::find(installed.begin(), installed.end(), fault.szFunction) != installed.end()) {
            continue;
        }
        installed.push_back(fault.szFunction);
        if (!FindRow(fault.szFunction)->pfnInstall(hModule)) {
            return false;
        }
    }
    return true;
}
