// How long something takes when nobody else takes the processor.
#pragma once

#include <windows.h>

#include <gtest/gtest.h>

#include <chrono>
#include <cstdint>

namespace kit {

using Seconds = std::chrono::duration<double>;

// What the thread has had of a processor: on a busy machine less than has gone by.
inline Seconds ProcessorTime()
{
    FILETIME created = {};
    FILETIME exited = {};
    FILETIME kernel = {};
    FILETIME user = {};
    EXPECT_TRUE(GetThreadTimes(GetCurrentThread(), &created, &exited, &kernel, &user));
    const auto ticks = [](const FILETIME& time) {
        return static_cast<double>((static_cast<uint64_t>(time.dwHighDateTime) << 32) | time.dwLowDateTime);
    };
    return Seconds((ticks(kernel) + ticks(user)) / 1e7);
}

} // namespace kit
