// How a fuzzer says that something is wrong: it ends with a sentence, and the fuzzing engine keeps the input.
#pragma once

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string_view>

// Ends the run unless what the sentence says is so.
inline void Demand(bool bHolds, const char* pszSentence)
{
    if (!bHolds) {
        fprintf(stderr, "This does not hold: %s\n", pszSentence);
        abort();
    }
}

// For a function of the platform that the fuzzed code has no reason to call.
[[noreturn]] inline void Unexpected(const char* pszFunction)
{
    fprintf(stderr, "%s was called\n", pszFunction);
    abort();
}
