// Measures time by the clock on the wall.
#pragma once

#include <chrono>

class CStopWatch
{
public:
    // Since it was made.
    double Milliseconds() const
    {
        return std::chrono::duration<double, std::milli>(Clock::now() - m_start).count();
    }

private:
    using Clock = std::chrono::steady_clock;
    Clock::time_point m_start = Clock::now();
};
