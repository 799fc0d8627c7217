// How a fuzzer says that something is wrong: it ends with a sentence, and the fuzzing engine keeps the input.
#pragma once

#include <cstdio>
#include <cstdlib>

// Ends the run unless what the sentence says is so.
inline void Demand(bool bHolds, const char* pszSentence)
{
    if (!bHolds) {
        fprintf(stderr, "This does not hold: %s\n", pszSentence);
        abort();
    }
}

// Defines a function of the platform, given as it is declared, that the fuzzed code has no reason to call.
#define UNEXPECTED(...)                                                                                                \
    __VA_ARGS__                                                                                                        \
    {                                                                                                                  \
        fprintf(stderr, "%s was called\n", __func__);                                                                  \
        abort();                                                                                                       \
    }
