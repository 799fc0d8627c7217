// Stand-ins that can fail for the system's functions that the program calls.
#pragma once

#include "imports/FaultList.h"

#include <windows.h>

#include <string>

// The name of the environment variable that holds the list of faults.
constexpr WCHAR kFaultsVariable[] = L"KALVO_FAULTS";

// Reads the list of faults from the environment. False when it does not follow the grammar, or names a
// function that no stand-in can make fail; szWrong then tells which part of it.
bool CheckFaults(std::wstring& szWrong);

// Puts a stand-in into the import table of hModule for every function that the environment names. To be
// called when all other replacements but the journal are in place: a call that does not fail goes on
// to what was there. False as CheckFaults, and for a function that the module does not call: a fault that can
// never strike would let a test pass that has tested nothing.
bool InstallFaults(HMODULE hModule);
