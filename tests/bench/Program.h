// A program that is started, watched and ended by the clock.
#pragma once

#include <windows.h>

#include <memory>
#include <string>

struct HANDLE_CLOSER
{
    void operator()(HANDLE hObject) const
    {
        CloseHandle(hObject);
    }
};
using UniqueHandle = std::unique_ptr<void, HANDLE_CLOSER>;

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
    UniqueHandle m_hProcess;
};

// A process that shows a window. What it is asked is answered while it runs and, the handle being kept, after its end.
class CShowingProcess
{
public:
    // The one that owns the window.
    explicit CShowingProcess(HWND hwnd);

    // Looks up how much memory it has had in use at most; to be called now and then, since the end forgets it.
    void Look();

    // The most that any look has seen, in KiB.
    size_t MemoryPeak() const
    {
        return m_nMemoryPeak;
    }

    // From its creation to its end, in milliseconds. It must have ended.
    double Lifetime() const;

private:
    UniqueHandle m_hProcess;
    size_t m_nMemoryPeak = 0;
};
