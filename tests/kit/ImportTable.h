// The import table of the running test program: where every call that it makes into a system
// library goes through, and so the place to put something else in a function's stead.
#pragma once

#include <string_view>
#include <vector>

namespace kit {

// One patched place and what stood there.
struct ImportSlot
{
    void** ppFunction;
    void* pOriginal;
};

// Points every import of the function, from whatever library, by name or by ordinal, at
// pReplacement. Empty when the program does not import it, which means that nothing can call it.
std::vector<ImportSlot> RedirectImport(const char* pszFunction, void* pReplacement);

// Undoes one RedirectImport. Redirections of one function are undone in reverse order.
void RestoreImport(const std::vector<ImportSlot>& slots);

} // namespace kit
