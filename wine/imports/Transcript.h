// What the program and the commands that it starts say to each other, for whoever reads a failed test.
#pragma once

#include <windows.h>

// The name of the environment variable that holds the path of the transcript. Without it nothing is written.
constexpr wchar_t kTranscriptVariable[] = L"KALVO_TRANSCRIPT";

// From now on each command line that the program starts is appended to the transcript (UTF-8), as a line of its own
// behind "> ", and behind it the bytes that come from the command, as they are.
void InstallTranscript(HMODULE hModule);
