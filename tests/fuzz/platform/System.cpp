// What the stand-in header promises and every fuzzer answers in the same way.
#include "tests/fuzz/Demand.h"

#include <windows.h>

#include <algorithm>
#include <bit>
#include <cstring>
#include <string>

namespace {

constexpr char32_t kReplacement = 0xFFFD;

// The next character of UTF-8 text, which is not empty. A byte that begins none stands for a replacement character;
// where Windows takes several such bytes together, here each gives one.
char32_t TakeCharacter(std::string_view& rest)
{
    static constexpr char32_t kLeast[] = {0, 0, 0x80, 0x800, 0x10000};
    const auto nLead = static_cast<unsigned char>(rest[0]);
    const auto nBytes = static_cast<size_t>(std::countl_one(nLead));
    rest.remove_prefix(1);
    if (nBytes == 0) {
        return nLead;
    }
    const std::string_view more = rest.substr(0, nBytes - 1);
    char32_t ch = nLead & (0x7FU >> nBytes);
    for (const char chMore : more) {
        ch = (ch << 6) | (static_cast<unsigned char>(chMore) & 0x3FU);
    }
    const bool bWhole = nBytes >= 2 && nBytes <= 4 && more.size() == nBytes - 1 &&
                        std::ranges::all_of(more, [](char chMore) { return (chMore & 0xC0) == 0x80; });
    if (!bWhole || ch < kLeast[nBytes] || ch > 0x10FFFF || (ch >= 0xD800 && ch <= 0xDFFF)) {
        return kReplacement;
    }
    rest.remove_prefix(more.size());
    return ch;
}

std::wstring Utf16(std::string_view rest)
{
    std::wstring units;
    while (!rest.empty()) {
        const char32_t ch = TakeCharacter(rest);
        if (ch < 0x10000) {
            units += static_cast<wchar_t>(ch);
        } else {
            units += static_cast<wchar_t>(0xD800 + ((ch - 0x10000) >> 10));
            units += static_cast<wchar_t>(0xDC00 + ((ch - 0x10000) & 0x3FF));
        }
    }
    return units;
}

} // namespace

HANDLE GetProcessHeap()
{
    return nullptr;
}

void* HeapAlloc(HANDLE /*hHeap*/, DWORD /*dwFlags*/, SIZE_T cb)
{
    return malloc(cb);
}

BOOL HeapFree(HANDLE /*hHeap*/, DWORD /*dwFlags*/, void* p)
{
    free(p);
    return TRUE;
}

int MultiByteToWideChar(UINT nCodePage, DWORD dwFlags, const char* pch, int cb, PWSTR pchWide, int cchWide)
{
    Demand(nCodePage == CP_UTF8 && dwFlags == 0, "text is converted from UTF-8 alone");
    const std::wstring units = Utf16({pch, cb < 0 ? strlen(pch) + 1 : static_cast<size_t>(cb)});
    if (cchWide != 0) {
        Demand(units.size() <= static_cast<size_t>(cchWide), "the converted text has room");
        wmemcpy(pchWide, units.data(), units.size());
    }
    return static_cast<int>(units.size());
}

// The string class needs the following to format and to load texts; nothing that is fuzzed does either.
UNEXPECTED(HMODULE GetModuleHandleW(PCWSTR))
UNEXPECTED(int LoadStringW(HINSTANCE, UINT, PWSTR, int))
UNEXPECTED(int _vscwprintf(PCWSTR, va_list))
UNEXPECTED(int _vsnwprintf(PWSTR, size_t, PCWSTR, va_list))
