// Programs without a window, and what they print.
#pragma once

#include <windows.h>

#include <string>
#include <vector>

struct PRINTED
{
    std::string text;     // standard output and standard error, as they come
    DWORD dwExitCode;     // STILL_ACTIVE when it was ended after the time
    DWORD dwMilliseconds; // until nobody held the pipe any more
};

// Runs a command line hidden and waits until nobody holds its output any more, which is what the installer waits for
// too. CLost when it cannot be started. Ended after that time, and when the user cancels.
PRINTED RunCommand(const std::wstring& szCommandLine, DWORD dwMilliseconds);

// Lines without their ends.
std::vector<std::string> LinesOf(const std::string& text);
