// A program that is started, watched and ended by the clock.
#pragma once

#include "wine/launcher/Handle.h"

#include <string>

// Runs from its construction on, without a console and with nothing to read; what it prints is not kept. Throws
// std::runtime_error when it cannot be started.
class CProgram
{
public:
    explicit CProgram(std::wstring strCommandLine);

    // Whether it ends within so many milliseconds.
    bool EndsWithin(DWORD dwMilliseconds) const;

    // Ends it, with what its launcher ties to itself.
    void End() const;

private:
    CHandle m_hProcess;
};

// The process that owns a window. What it is asked is answered after its end too, but for its memory.
CHandle OpenOwner(HWND hwnd);

// How much it has had in use at most, in KiB; 0 after its end.
size_t MemoryPeak(const CHandle& hProcess);

// From its creation to its end, in milliseconds. Throws std::runtime_error when it has not ended.
double Lifetime(const CHandle& hProcess);
