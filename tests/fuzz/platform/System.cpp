// What the stand-in headers promise and every fuzzer answers in the same way.
#include "tests/fuzz/Demand.h"

#include <windows.h>

#include <cstdarg>
#include <cstdlib>
#include <string>

namespace {

constexpr char32_t kReplacement = 0xFFFD;

// The next character of UTF-8 text, which is not empty. Where no character is, the longest piece that could have
// begun one is taken and stands for a replacement character, as Windows reads it.
char32_t TakeCharacter(std::string_view& rest)
{
    const auto byte = [&](size_t n) { return n < rest.size() ? static_cast<unsigned char>(rest[n]) : 0U; };
    const unsigned nLead = byte(0);
    size_t nBytes = 1;
    char32_t ch = nLead;
    unsigned nLow = 0x80; // the range of the second byte keeps out long forms, surrogates and what lies too high
    unsigned nHigh = 0xBF;
    if (nLead >= 0xC2 && nLead <= 0xDF) {
        nBytes = 2;
        ch = nLead & 0x1F;
    } else if (nLead >= 0xE0 && nLead <= 0xEF) {
        nBytes = 3;
        ch = nLead & 0x0F;
        nLow = nLead == 0xE0 ? 0xA0 : 0x80;
        nHigh = nLead == 0xED ? 0x9F : 0xBF;
    } else if (nLead >= 0xF0 && nLead <= 0xF4) {
        nBytes = 4;
        ch = nLead & 0x07;
        nLow = nLead == 0xF0 ? 0x90 : 0x80;
        nHigh = nLead == 0xF4 ? 0x8F : 0xBF;
    } else if (nLead >= 0x80) {
        ch = kReplacement;
    }
    size_t nTaken = 1;
    while (nTaken < nBytes && byte(nTaken) >= nLow && byte(nTaken) <= nHigh) {
        ch = (ch << 6) | (byte(nTaken) & 0x3F);
        nLow = 0x80;
        nHigh = 0xBF;
        ++nTaken;
    }
    rest.remove_prefix(nTaken);
    return nTaken == nBytes ? ch : kReplacement;
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

extern "C" {

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
    const std::wstring units = Utf16(cb < 0 ? std::string_view(pch, strlen(pch) + 1) : std::string_view(pch, cb));
    if (cchWide == 0) {
        return static_cast<int>(units.size());
    }
    if (units.size() > static_cast<size_t>(cchWide)) {
        return 0;
    }
    wmemcpy(pchWide, units.data(), units.size());
    return static_cast<int>(units.size());
}

// The string class needs the following to format and to load texts; nothing that is fuzzed does either.

HMODULE GetModuleHandleW(PCWSTR /*pszModule*/)
{
    Unexpected("GetModuleHandleW");
}

int LoadStringW(HINSTANCE /*hInstance*/, UINT /*nID*/, PWSTR /*pszText*/, int /*cchText*/)
{
    Unexpected("LoadStringW");
}

int _vscwprintf(PCWSTR /*pszFormat*/, va_list /*args*/)
{
    Unexpected("_vscwprintf");
}

int _vsnwprintf(PWSTR /*pszText*/, size_t /*cchText*/, PCWSTR /*pszFormat*/, va_list /*args*/)
{
    Unexpected("_vsnwprintf");
}

} // extern "C"
