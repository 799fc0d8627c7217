#include "check/Redirect.h"

#include "check/Stopping.h"
#include "kit/Request.h"

#include <windows.h>

#include <dbghelp.h>

#include <cstring>

namespace {

// What an entry of a program's directory leads to. The program is there as its file is.
template<typename DATA>
DATA* Find(std::string& program, USHORT nEntry)
{
    ULONG cb = 0;
    auto* const pData = static_cast<DATA*>(ImageDirectoryEntryToDataEx(program.data(), FALSE, nEntry, &cb, nullptr));
    if (pData == nullptr) {
        throw CLost{L"the file to check is no program like the installer"};
    }
    return pData;
}

char* LoadFlags(std::string& program)
{
    // After the size, ten fields and the version of the service pack.
    constexpr size_t kFlags = 78;
    return Find<char>(program, IMAGE_DIRECTORY_ENTRY_LOAD_CONFIG) + kFlags;
}

} // namespace

void CopyRedirected(const CPath& program, const CPath& copy, const std::string& function, const std::string& other)
{
    std::string bytes = ReadBytes(program);
    // The table of imports has each name between zeros.
    const size_t n = bytes.find(function + '\0');
    if (n == std::string::npos || other.size() > function.size()) {
        throw CLost{L"the program does not call " + FromUtf8(function)};
    }
    std::string replaced = other;
    replaced.resize(function.size(), '\0');
    bytes.replace(n, function.size(), replaced);
    WriteBytes(copy, bytes);
}

unsigned DependentLoadFlags(const CPath& program)
{
    std::string bytes = ReadBytes(program);
    WORD nFlags = 0;
    std::memcpy(&nFlags, LoadFlags(bytes), sizeof nFlags);
    return nFlags;
}

void ClearDependentLoadFlags(const CPath& program)
{
    std::string bytes = ReadBytes(program);
    std::memset(LoadFlags(bytes), 0, sizeof(WORD));
    WriteBytes(program, bytes);
}

std::vector<std::wstring> LinkedLibraries(const CPath& program)
{
    std::string bytes = ReadBytes(program);
    IMAGE_NT_HEADERS* const pHeaders = ImageNtHeader(bytes.data());
    std::vector<std::wstring> names;
    for (const auto* pLibrary = Find<IMAGE_IMPORT_DESCRIPTOR>(bytes, IMAGE_DIRECTORY_ENTRY_IMPORT); pLibrary->Name != 0;
         ++pLibrary) {
        const void* const pName = ImageRvaToVa(pHeaders, bytes.data(), pLibrary->Name, nullptr);
        names.push_back(FromUtf8(static_cast<const char*>(pName)));
    }
    return names;
}
