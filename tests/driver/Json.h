// Texts as JSON has them.
#pragma once

#include "imports/Utf8.h"

#include <string>
#include <string_view>

// The text in quotes, in UTF-8.
std::string Quoted(std::wstring_view text);
