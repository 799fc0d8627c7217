// What adb's printed text means: each command is judged by its output alone, adb's exit status is not
// looked at. The output is taken as adb wrote it: lines end at line feeds, a carriage
// return before one belongs to the line, matching is byte by byte.
#pragma once

#include "adb/AdbExitCode.h"

#include <string_view>

// Tests a line against the known output lines first to last. A line matches when it begins with the
// known text; an empty known text matches only an empty line. Sets nIndex to the first that
// matches; without a match, and when nFirst > nLast, returns false and leaves nIndex. The rows are
// counted from 0 to 20.
bool FindOutputPattern(std::string_view line, int nFirst, int nLast, int& nIndex);

// Each of these judges the whole output of one run of its command.

// By the first line alone; no output is ADB_SUCCESS, a line that it does not know ADB_PARSE_ERROR.
ADB_EXIT_CODE ClassifyKillServerOutput(std::string_view output);

// Line by line: those about the start of adb's server are passed over, the first that means something
// decides. ADB_PARSE_ERROR for a line that is not known, and when no line decides.
ADB_EXIT_CODE ClassifyConnectOutput(std::string_view output);
ADB_EXIT_CODE ClassifyPairOutput(std::string_view output);

// May show a box, as GetFailedToInstallExitCode does.
ADB_EXIT_CODE ClassifyInstallOutput(std::string_view output);

// The package manager's failure that a line of install output names, INSTALL_FAILED when it names
// none. A name that is not known is told to the user in a box without owner and gives
// INSTALL_FAILED_KALVO_UNKNOWN_ERROR.
ADB_EXIT_CODE GetFailedToInstallExitCode(std::string_view line);
