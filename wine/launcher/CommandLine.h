// Command lines as Windows programs take them apart.
#pragma once

#include <span>
#include <string>

// One line from which a program gets exactly these arguments, its own name first.
std::wstring JoinArguments(std::span<wchar_t* const> arguments);
