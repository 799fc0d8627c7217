#include "tests/kit/Replaced.h"

namespace kit {

namespace {

// Set before any test: by the thread that runs them.
const DWORD s_dwMainThread = unreplaced::GetCurrentThreadId();
DWORD s_dwBodyThread = 0;

} // namespace

bool IsTestThread()
{
    const DWORD dwThread = unreplaced::GetCurrentThreadId();
    return dwThread == s_dwMainThread || dwThread == s_dwBodyThread;
}

void SetBodyThread(DWORD dwThreadId)
{
    s_dwBodyThread = dwThreadId;
}

std::wstring Kept(const wchar_t* psz)
{
    if (psz == nullptr) {
        return L"(null)";
    }
    return IS_INTRESOURCE(psz) ? L"#" + std::to_wstring(reinterpret_cast<ULONG_PTR>(psz)) : psz;
}

} // namespace kit
