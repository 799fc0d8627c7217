#include "launcher/RemoteLibrary.h"

#include "launcher/Handle.h"

namespace {

// Memory in another process, freed at the end.
class CRemoteMemory
{
public:
    CRemoteMemory(HANDLE hProcess, size_t cb)
        : m_hProcess(hProcess), m_p(VirtualAllocEx(hProcess, nullptr, cb, MEM_COMMIT | MEM_RESERVE, PAGE_READWRITE))
    {
    }
    ~CRemoteMemory()
    {
        if (m_p != nullptr) {
            VirtualFreeEx(m_hProcess, m_p, 0, MEM_RELEASE);
        }
    }
    CRemoteMemory(const CRemoteMemory&) = delete;
    CRemoteMemory& operator=(const CRemoteMemory&) = delete;

    void* Address() const
    {
        return m_p;
    }

private:
    HANDLE m_hProcess;
    void* m_p;
};

// kernel32 is at the same address in every process, so its function can be the thread's.
LPTHREAD_START_ROUTINE LoadLibraryAddress()
{
    const FARPROC pfn = GetProcAddress(GetModuleHandleW(L"kernel32.dll"), "LoadLibraryW");
    return reinterpret_cast<LPTHREAD_START_ROUTINE>(reinterpret_cast<void*>(pfn));
}

} // namespace

DWORD LoadRemoteLibrary(HANDLE hProcess, const std::wstring& szPath)
{
    const size_t cb = (szPath.size() + 1) * sizeof(WCHAR);
    const CRemoteMemory memory(hProcess, cb);
    if (memory.Address() == nullptr || !WriteProcessMemory(hProcess, memory.Address(), szPath.c_str(), cb, nullptr)) {
        return GetLastError();
    }
    const CHandle hThread(CreateRemoteThread(hProcess, nullptr, 0, LoadLibraryAddress(), memory.Address(), 0, nullptr));
    if (!hThread) {
        return GetLastError();
    }
    WaitForSingleObject(hThread.get(), INFINITE);
    // The lower half of the library's address.
    DWORD dwResult = 0;
    GetExitCodeThread(hThread.get(), &dwResult);
    return dwResult == 0 ? DWORD{ERROR_DLL_INIT_FAILED} : DWORD{ERROR_SUCCESS};
}
