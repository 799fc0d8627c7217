#include "launcher/RemoteLibrary.h"

#include "launcher/Handle.h"

#include <bit>

namespace {

// kernel32 is at the same address in every process, so its function can be the thread's.
LPTHREAD_START_ROUTINE LoadLibraryAddress()
{
    return std::bit_cast<LPTHREAD_START_ROUTINE>(GetProcAddress(GetModuleHandleW(L"kernel32.dll"), "LoadLibraryW"));
}

} // namespace

DWORD LoadRemoteLibrary(HANDLE hProcess, const std::wstring& szPath)
{
    const size_t cb = (szPath.size() + 1) * sizeof(WCHAR);
    const auto free = [hProcess](void* p) { VirtualFreeEx(hProcess, p, 0, MEM_RELEASE); };
    const std::unique_ptr<void, decltype(free)> pPath(
        VirtualAllocEx(hProcess, nullptr, cb, MEM_COMMIT | MEM_RESERVE, PAGE_READWRITE), free);
    if (!pPath || !WriteProcessMemory(hProcess, pPath.get(), szPath.c_str(), cb, nullptr)) {
        return GetLastError();
    }
    const CHandle hThread(CreateRemoteThread(hProcess, nullptr, 0, LoadLibraryAddress(), pPath.get(), 0, nullptr));
    if (!hThread) {
        return GetLastError();
    }
    WaitForSingleObject(hThread.get(), INFINITE);
    // The lower half of the library's address.
    DWORD dwResult = 0;
    GetExitCodeThread(hThread.get(), &dwResult);
    return dwResult == 0 ? DWORD{ERROR_DLL_INIT_FAILED} : DWORD{ERROR_SUCCESS};
}
