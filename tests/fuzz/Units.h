// Wide text out of a fuzzer's bytes.
#pragma once

#include <algorithm>
#include <cstdint>
#include <memory>
#include <span>

// Pairs of bytes as UTF-16 units, low byte first, or each byte as the unit of its value; nMost units at most. They and
// a NUL stand in a block of just their size, so that a step beyond it is seen.
inline std::unique_ptr<wchar_t[]> TextOf(std::span<const uint8_t> bytes, bool bPairs, size_t nMost)
{
    const size_t nUnits = std::min(bytes.size() / (bPairs ? 2 : 1), nMost);
    auto pszText = std::make_unique<wchar_t[]>(nUnits + 1);
    for (size_t n = 0; n < nUnits; ++n) {
        pszText[n] = static_cast<wchar_t>(bPairs ? bytes[2 * n] | (bytes[2 * n + 1] << 8) : bytes[n]);
    }
    return pszText;
}
