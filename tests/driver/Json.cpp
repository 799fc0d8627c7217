#include "driver/Json.h"

#include <format>

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
