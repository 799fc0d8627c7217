// An IP address as a text, whole or in part.
#pragma once

#include <array>
#include <string>
#include <string_view>

// The four fields of "192.168.1.1". Missing fields are empty, as are those without a digit. A number above
// 255 becomes 255, which is what the control for addresses makes of one that is typed.
std::array<std::wstring, 4> SplitAddress(std::wstring_view szAddress);
