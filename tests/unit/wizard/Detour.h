// Sends every call of a function of the product itself somewhere else, for the length of a scope: for
// what no function of the system can bring about, such as an outcome of adb that nothing yields.
#pragma once

#include <windows.h>

#include <cstring>

class Detour
{
public:
    // Both functions have the same type.
    template<typename Function>
    Detour(Function* pfn, Function* pfnInstead) : m_pCode(reinterpret_cast<BYTE*>(pfn))
    {
        std::memcpy(m_original, m_pCode, sizeof(m_original));
        // mov rax, pfnInstead; jmp rax
        BYTE jump[sizeof(m_original)] = {0x48, 0xB8, 0, 0, 0, 0, 0, 0, 0, 0, 0xFF, 0xE0};
        std::memcpy(jump + 2, &pfnInstead, sizeof(pfnInstead));
        Write(jump);
    }

    ~Detour()
    {
        Write(m_original);
    }

    Detour(const Detour&) = delete;
    Detour& operator=(const Detour&) = delete;

private:
    void Write(const BYTE (&code)[12])
    {
        DWORD dwProtection = 0;
        VirtualProtect(m_pCode, sizeof(code), PAGE_EXECUTE_READWRITE, &dwProtection);
        std::memcpy(m_pCode, code, sizeof(code));
        VirtualProtect(m_pCode, sizeof(code), dwProtection, &dwProtection);
        FlushInstructionCache(GetCurrentProcess(), m_pCode, sizeof(code));
    }

    BYTE* m_pCode;
    BYTE m_original[12];
};
