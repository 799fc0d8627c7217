// Texts, compared, split and joined.
#pragma once

#include <windows.h>

#include <functional>
#include <iterator>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

// Without regard to case, as the system compares the names of files, classes and accounts.
inline bool IsSame(std::wstring_view one, std::wstring_view other)
{
    return CompareStringOrdinal(one.data(), static_cast<int>(one.size()), other.data(), static_cast<int>(other.size()),
                                TRUE) == CSTR_EQUAL;
}

inline std::vector<std::wstring> WordsIn(const std::wstring& szText)
{
    std::wistringstream stream(szText);
    return {std::istream_iterator<std::wstring, wchar_t>(stream), {}};
}

// "a, b, c"; `words` says what an item is in words.
template<typename ITEMS, typename WORDS = std::identity>
std::wstring Joined(ITEMS&& items, PCWSTR pszBetween = L", ", PCWSTR pszNone = L"nothing", WORDS words = {})
{
    std::wstring szLine;
    for (const auto& item : items) {
        szLine += (szLine.empty() ? L"" : pszBetween) + std::wstring(std::invoke(words, item));
    }
    return szLine.empty() ? pszNone : szLine;
}
