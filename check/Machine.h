// The computer that the check runs on, and whether it can run there.
#pragma once

#include <windows.h>

#include <string>
#include <utility>
#include <vector>

// Names and values for the report, none of which tells whose computer it is.
std::vector<std::pair<std::wstring, std::wstring>> DescribeMachine();

// Whether the user has chosen one of the themes with a high contrast.
bool IsHighContrast();

// There while a check runs.
constexpr PCWSTR kCheckMutex = L"KALVO_WINDOWS_CHECK_MUTEX";

// Why the check must not run now; empty when it may.
std::wstring ReasonToRefuse();

// Where the server of adb listens, whoever started it.
constexpr int kAdbServerPort = 5037;
