// UTF-16 text out of a fuzzer's bytes.
#pragma once

#include <algorithm>
#include <cstdint>
#include <memory>
#include <span>
#include <string>

// Pairs of bytes as units, low byte first, or each byte as the unit of its value; nMost units at most.
inline std::wstring UnitsOf(std::span<const uint8_t> bytes, bool bPairs, size_t nMost)
{
    std::wstring units;
    const size_t nStep = bPairs ? 2 : 1;
    for (size_t n = 0; n + nStep <= bytes.size() && units.size() < nMost; n += nStep) {
        units += static_cast<wchar_t>(bPairs ? bytes[n] | (bytes[n + 1] << 8) : bytes[n]);
    }
    return units;
}

// The units and a NUL in a block of just their size, so that a step beyond it is seen.
inline std::unique_ptr<wchar_t[]> TerminatedCopy(const std::wstring& units)
{
    auto pCopy = std::make_unique<wchar_t[]>(units.size() + 1);
    std::ranges::copy(units, pCopy.get());
    return pCopy;
}
