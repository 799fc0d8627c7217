#include "imports/ImportTable.h"

#include <cstring>

namespace {

template<typename Part>
const Part* At(HMODULE hModule, DWORD nOffset)
{
    return reinterpret_cast<const Part*>(reinterpret_cast<const BYTE*>(hModule) + nOffset);
}

const IMAGE_IMPORT_DESCRIPTOR* FirstLibrary(HMODULE hModule)
{
    const auto* const pDos = At<IMAGE_DOS_HEADER>(hModule, 0);
    const auto* const pHeaders = At<IMAGE_NT_HEADERS>(hModule, static_cast<DWORD>(pDos->e_lfanew));
    const IMAGE_DATA_DIRECTORY& imports = pHeaders->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT];
    return imports.Size == 0 ? nullptr : At<IMAGE_IMPORT_DESCRIPTOR>(hModule, imports.VirtualAddress);
}

// The table's entry for that function of one library; null when it is not among them.
void** FindEntry(HMODULE hModule, const IMAGE_IMPORT_DESCRIPTOR& library, PCSTR pszFunction)
{
    const auto* pName = At<IMAGE_THUNK_DATA>(hModule, library.OriginalFirstThunk);
    const auto* pEntry = At<IMAGE_THUNK_DATA>(hModule, library.FirstThunk);
    for (; pName->u1.AddressOfData != 0; ++pName, ++pEntry) {
        if (IMAGE_SNAP_BY_ORDINAL(pName->u1.Ordinal)) {
            continue;
        }
        const auto* const pImport = At<IMAGE_IMPORT_BY_NAME>(hModule, static_cast<DWORD>(pName->u1.AddressOfData));
        if (strcmp(reinterpret_cast<PCSTR>(pImport->Name), pszFunction) == 0) {
            return const_cast<void**>(reinterpret_cast<void* const*>(&pEntry->u1.Function));
        }
    }
    return nullptr;
}

void* Replace(void** ppEntry, void* pReplacement)
{
    DWORD dwProtection = 0;
    VirtualProtect(static_cast<void*>(ppEntry), sizeof(*ppEntry), PAGE_READWRITE, &dwProtection);
    void* const pBefore = InterlockedExchangePointer(ppEntry, pReplacement);
    VirtualProtect(static_cast<void*>(ppEntry), sizeof(*ppEntry), dwProtection, &dwProtection);
    return pBefore;
}

} // namespace

void* ReplaceImport(HMODULE hModule, PCSTR pszFunction, void* pReplacement)
{
    const IMAGE_IMPORT_DESCRIPTOR* pLibrary = FirstLibrary(hModule);
    for (; pLibrary != nullptr && pLibrary->Name != 0; ++pLibrary) {
        void** const ppEntry = FindEntry(hModule, *pLibrary, pszFunction);
        if (ppEntry != nullptr) {
            return Replace(ppEntry, pReplacement);
        }
    }
    return nullptr;
}
