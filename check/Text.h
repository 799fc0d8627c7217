// Lists in one line.
#pragma once

#include <windows.h>

#include <functional>
#include <string>

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
