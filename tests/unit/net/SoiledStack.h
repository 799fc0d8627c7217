// Leaves a pattern where the functions called next keep their variables, so that it shows when one
// counts on zeros that it never wrote.
#pragma once

#include <cstddef>

constexpr unsigned char kSoil = 0xCC;

[[gnu::noinline]] inline void SoilStack()
{
    volatile unsigned char soil[0x4000];
    for (size_t n = 0; n < sizeof(soil); ++n) {
        soil[n] = kSoil;
    }
}
