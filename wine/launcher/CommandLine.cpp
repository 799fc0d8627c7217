#include "launcher/CommandLine.h"

#include <string_view>

namespace {

// Backslashes are themselves, except before a quote, where each stands for half of one.
std::wstring Quote(std::wstring_view szArgument)
{
    if (!szArgument.empty() && szArgument.find_first_of(L" \t\n\v\"") == std::wstring_view::npos) {
        return std::wstring(szArgument);
    }
    std::wstring szQuoted = L"\"";
    size_t nBackslashes = 0;
    for (const wchar_t ch : szArgument) {
        if (ch == L'"') {
            szQuoted.append(nBackslashes + 1, L'\\');
        }
        nBackslashes = ch == L'\\' ? nBackslashes + 1 : 0;
        szQuoted += ch;
    }
    szQuoted.append(nBackslashes, L'\\');
    return szQuoted + L'"';
}

} // namespace

std::wstring JoinArguments(std::span<wchar_t* const> arguments)
{
    std::wstring szLine;
    for (const wchar_t* const pszArgument : arguments) {
        if (!szLine.empty()) {
            szLine += L' ';
        }
        szLine += Quote(pszArgument);
    }
    return szLine;
}
