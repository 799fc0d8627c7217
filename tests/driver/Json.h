// Texts as JSON has them.
#pragma once

#include <string>
#include <string_view>

std::string ToUtf8(std::wstring_view text);

// The text in quotes, in UTF-8.
std::string Quoted(std::wstring_view text);
