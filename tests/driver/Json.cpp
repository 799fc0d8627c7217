#include "driver/Json.h"

#include <windows.h>

#include <format>

std::string ToUtf8(std::wstring_view text)
{
    const int nLength = static_cast<int>(text.size());
    std::string utf8(static_cast<size_t>(nLength) * 3, '\0');
    utf8.resize(static_cast<size_t>(WideCharToMultiByte(CP_UTF8, 0, text.data(), nLength, utf8.data(),
                                                        static_cast<int>(utf8.size()), nullptr, nullptr)));
    return utf8;
}

std::string Quoted(std::wstring_view text)
{
    std::string quoted = "\"";
    for (const char c : ToUtf8(text)) {
        if (c == '"' || c == '\\') {
            quoted += '\\';
            quoted += c;
        } else if (static_cast<unsigned char>(c) < 0x20) {
            quoted += std::format("\\u{:04x}", static_cast<unsigned>(c));
        } else {
            quoted += c;
        }
    }
    return quoted + '"';
}
