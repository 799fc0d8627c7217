// How the watch passes bytes around.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

using ByteVector = std::vector<std::uint8_t>;
using ByteView = std::span<const std::uint8_t>;

inline ByteView BytesOf(std::string_view text)
{
    return {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()};
}

inline std::string_view TextOf(ByteView bytes)
{
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}
