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

// The most memory that a process has had in use, in KiB. Asked while the process runs.
class CMemoryPeak
{
public:
    // Of the process that owns the window.
    explicit CMemoryPeak(HWND hwnd);

    void Look();

    size_t Kibibytes() const
    {
        return m_nKibibytes;
    }

private:
    UniqueHandle m_hProcess;
    size_t m_nKibibytes = 0;
};
