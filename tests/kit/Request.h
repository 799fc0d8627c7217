// The requests that a helper program reads from a test, a line each on its standard input.
#pragma once

#include <windows.h>

#include <string>
#include <string_view>
#include <vector>

// Bytes that are no UTF-8 become replacement characters.
inline std::wstring FromUtf8(std::string_view utf8)
{
    const int cb = static_cast<int>(utf8.size());
    std::wstring strWide(utf8.size(), L'\0');
    strWide.resize(static_cast<size_t>(
        MultiByteToWideChar(CP_UTF8, 0, utf8.data(), cb, strWide.data(), static_cast<int>(strWide.size()))));
    return strWide;
}

// The words of a request in UTF-8, between tabs; at least one, which may be empty. The CR that Windows' lines end with
// is in none.
inline std::vector<std::wstring> SplitRequest(std::string_view request)
{
    std::vector<std::wstring> words(1);
    for (const wchar_t c : FromUtf8(request)) {
        if (c == L'\t') {
            words.emplace_back();
        } else if (c != L'\r') {
            words.back() += c;
        }
    }
    return words;
}
