// How a probe tells its caller of its attempts.
#pragma once

#include <functional>

// Called when an attempt begins, with its number, from 1, and the number of attempts there are at most.
using PROGRESS = std::function<void(int nAttempt, int nAttempts)>;
