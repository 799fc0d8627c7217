#include "tests/kit/ImportTable.h"

#include "tests/kit/Unreplaced.h"

#include <windows.h>

#include <cstring>

namespace kit {

namespace {

BYTE* Image()
{
    return reinterpret_cast<BYTE*>(GetModuleHandleW(nullptr));
}

template<typename T>
T* At(DWORD nRva)
{
    return reinterpret_cast<T*>(Image() + nRva);
}

// An import by ordinal has no name: it is known by where it leads.
bool IsImportOf(const IMAGE_THUNK_DATA& name, const char* pszFunction, const void* pExport, const void* pTarget)
{
    if (IMAGE_SNAP_BY_ORDINAL(name.u1.Ordinal)) {
        return pExport != nullptr && pExport == pTarget;
    }
    const auto* pByName = At<IMAGE_IMPORT_BY_NAME>(static_cast<DWORD>(name.u1.AddressOfData));
    return std::strcmp(reinterpret_cast<const char*>(pByName->Name), pszFunction) == 0;
}

void Write(void** ppSlot, void* pFunction)
{
    DWORD dwProtection = 0;
    unreplaced::VirtualProtect(ppSlot, sizeof(*ppSlot), PAGE_READWRITE, &dwProtection);
    *ppSlot = pFunction;
    unreplaced::VirtualProtect(ppSlot, sizeof(*ppSlot), dwProtection, &dwProtection);
}

} // namespace

std::vector<ImportSlot> RedirectImport(const char* pszFunction, void* pReplacement)
{
    const auto* pDos = At<IMAGE_DOS_HEADER>(0);
    const auto* pHeaders = At<IMAGE_NT_HEADERS>(static_cast<DWORD>(pDos->e_lfanew));
    const DWORD nImports = pHeaders->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT].VirtualAddress;

    std::vector<ImportSlot> slots;
    for (const auto* pLibrary = At<IMAGE_IMPORT_DESCRIPTOR>(nImports); pLibrary->Name != 0; ++pLibrary) {
        const HMODULE hLibrary = GetModuleHandleA(At<char>(pLibrary->Name));
        const auto* pExport = reinterpret_cast<const void*>(unreplaced::GetProcAddress(hLibrary, pszFunction));
        const auto* pName = At<IMAGE_THUNK_DATA>(pLibrary->OriginalFirstThunk);
        auto** ppSlot = At<void*>(pLibrary->FirstThunk);
        for (; pName->u1.AddressOfData != 0; ++pName, ++ppSlot) {
            if (IsImportOf(*pName, pszFunction, pExport, *ppSlot)) {
                slots.push_back({ppSlot, *ppSlot});
                Write(ppSlot, pReplacement);
            }
        }
    }
    return slots;
}

void RestoreImport(const std::vector<ImportSlot>& slots)
{
    for (const ImportSlot& slot : slots) {
        Write(slot.ppFunction, slot.pOriginal);
    }
}

} // namespace kit
