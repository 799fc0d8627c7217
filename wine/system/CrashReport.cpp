#include "system/CrashReport.h"

#include <bit>
#include <format>
#include <string>

namespace {

constexpr int kMostCalls = 32;

// To standard error; a program with windows has none but the one that Wine itself writes to.
void Tell(const std::string& line)
{
    DWORD dwWritten = 0;
    if (!WriteFile(GetStdHandle(STD_ERROR_HANDLE), line.data(), static_cast<DWORD>(line.size()), &dwWritten, nullptr)) {
        using OUTPUT = int __cdecl(const char*);
        auto* const pfnOutput =
            std::bit_cast<OUTPUT*>(GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "__wine_dbg_output"));
        pfnOutput(line.c_str());
    }
}

std::string Place(DWORD64 nAddress)
{
    HMODULE hModule = nullptr;
    char szFile[MAX_PATH] = "";
    if (!GetModuleHandleExA(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                            reinterpret_cast<PCSTR>(nAddress), &hModule)) {
        return std::format("{:#x}", nAddress);
    }
    GetModuleFileNameA(hModule, szFile, ARRAYSIZE(szFile));
    const std::string file = szFile;
    return std::format("{}+{:#x}", file.substr(file.find_last_of('\\') + 1),
                       nAddress - reinterpret_cast<DWORD64>(hModule));
}

// The context becomes that of the caller. False where there is none, or none that can be found.
bool GoToCaller(CONTEXT& context)
{
    DWORD64 nImage = 0;
    if (const PRUNTIME_FUNCTION pFunction = RtlLookupFunctionEntry(context.Rip, &nImage, nullptr)) {
        void* pHandlerData = nullptr;
        DWORD64 nFrame = 0;
        RtlVirtualUnwind(UNW_FLAG_NHANDLER, nImage, context.Rip, pFunction, &context, &pHandlerData, &nFrame, nullptr);
        return context.Rip != 0;
    }
    // A function without unwind data calls nobody: the return address is on the top of the stack. When it was
    // jumped to in error, so it is, too.
    SIZE_T nRead = 0;
    const bool bRead = ReadProcessMemory(GetCurrentProcess(), reinterpret_cast<LPCVOID>(context.Rsp), &context.Rip,
                                         sizeof(context.Rip), &nRead) != FALSE;
    context.Rsp += sizeof(context.Rip);
    return bRead && context.Rip != 0;
}

LONG WINAPI TellCrash(PEXCEPTION_POINTERS pException)
{
    // Wine asks the filter twice.
    SetUnhandledExceptionFilter(nullptr);
    Tell(std::format("crash: exception 0x{:08X} at {}\n", pException->ExceptionRecord->ExceptionCode,
                     Place(reinterpret_cast<DWORD64>(pException->ExceptionRecord->ExceptionAddress))));
    CONTEXT context = *pException->ContextRecord;
    for (int n = 0; n < kMostCalls && GoToCaller(context); ++n) {
        Tell(std::format("crash: called from {}\n", Place(context.Rip)));
    }
    return EXCEPTION_CONTINUE_SEARCH;
}

} // namespace

void ReportCrashes()
{
    // The compiler's start-up code sets a filter of its own, which calls this one.
    SetUnhandledExceptionFilter(TellCrash);
}
