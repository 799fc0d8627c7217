// The import table of a loaded program: where its calls of the system's functions lead.
#pragma once

#include <windows.h>

// Lets every call of that function that hModule makes by name lead to pReplacement. Returns where it led
// before; null when the module does not import it, which then is left as it is.
void* ReplaceImport(HMODULE hModule, PCSTR pszFunction, void* pReplacement);

// The same, typed.
template<typename Function>
Function* ReplaceImport(HMODULE hModule, PCSTR pszFunction, Function* pfnReplacement)
{
    return reinterpret_cast<Function*>(ReplaceImport(hModule, pszFunction, reinterpret_cast<void*>(pfnReplacement)));
}
