#include "check/Redirect.h"

#include "check/Stopping.h"

#include <windows.h>

#include <cstring>

namespace {

// A program as a file, read with nothing but the layout of its headers.
class CImage
{
public:
    explicit CImage(const CPath& program) : m_bytes(ReadBytes(program))
    {
        if (m_bytes.size() < sizeof(IMAGE_DOS_HEADER) || !m_bytes.starts_with("MZ")) {
            throw CLost{program.filename().wstring() + L" is no program"};
        }
    }

    const IMAGE_NT_HEADERS64& Headers() const
    {
        const auto* const pDos = reinterpret_cast<const IMAGE_DOS_HEADER*>(m_bytes.data());
        return *reinterpret_cast<const IMAGE_NT_HEADERS64*>(m_bytes.data() + pDos->e_lfanew);
    }

    // Of an address in the loaded program; zero for one that stands in no section.
    size_t Offset(DWORD dwAddress) const
    {
        const IMAGE_SECTION_HEADER* pSection = IMAGE_FIRST_SECTION(&Headers());
        for (WORD n = 0; n < Headers().FileHeader.NumberOfSections; ++n, ++pSection) {
            if (pSection->VirtualAddress <= dwAddress &&
                dwAddress < pSection->VirtualAddress + pSection->SizeOfRawData) {
                return pSection->PointerToRawData + dwAddress - pSection->VirtualAddress;
            }
        }
        return 0;
    }

    DWORD Directory(int nIndex) const
    {
        return Headers().OptionalHeader.DataDirectory[nIndex].VirtualAddress;
    }

    std::string m_bytes;
};

size_t FlagsOffset(const CImage& image)
{
    const DWORD dwConfig = image.Directory(IMAGE_DIRECTORY_ENTRY_LOAD_CONFIG);
    if (dwConfig == 0) {
        throw CLost{L"the program has no load configuration"};
    }
    // After the size, ten fields and the version of the service pack.
    constexpr size_t kFlags = 78;
    return image.Offset(dwConfig) + kFlags;
}

} // namespace

void CopyRedirected(const CPath& program, const CPath& copy, const std::string& function, const std::string& other)
{
    CImage image(program);
    // The table of imports has each name between zeros.
    const std::string name = function + '\0';
    const size_t n = image.m_bytes.find(name);
    if (n == std::string::npos || other.size() > function.size()) {
        throw CLost{L"the program does not call " + std::wstring(function.begin(), function.end())};
    }
    std::string replaced = other;
    replaced.resize(function.size(), '\0');
    image.m_bytes.replace(n, function.size(), replaced);
    WriteBytes(copy, image.m_bytes);
}

unsigned DependentLoadFlags(const CPath& program)
{
    const CImage image(program);
    WORD nFlags = 0;
    std::memcpy(&nFlags, image.m_bytes.data() + FlagsOffset(image), sizeof nFlags);
    return nFlags;
}

void ClearDependentLoadFlags(const CPath& program)
{
    CImage image(program);
    image.m_bytes.replace(FlagsOffset(image), sizeof(WORD), std::string(sizeof(WORD), '\0'));
    WriteBytes(program, image.m_bytes);
}

std::vector<std::wstring> LinkedLibraries(const CPath& program)
{
    const CImage image(program);
    std::vector<std::wstring> names;
    size_t n = image.Offset(image.Directory(IMAGE_DIRECTORY_ENTRY_IMPORT));
    for (;; n += sizeof(IMAGE_IMPORT_DESCRIPTOR)) {
        IMAGE_IMPORT_DESCRIPTOR descriptor = {};
        std::memcpy(&descriptor, image.m_bytes.data() + n, sizeof descriptor);
        if (descriptor.Name == 0) {
            return names;
        }
        const std::string name = image.m_bytes.c_str() + image.Offset(descriptor.Name);
        names.emplace_back(name.begin(), name.end());
    }
}
