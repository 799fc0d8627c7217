#pragma once

#include <string>
#include <string_view>

std::string ToUtf8(std::wstring_view szText);
