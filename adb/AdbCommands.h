// The four adb commands that the program issues. Each takes two seconds and the run of adb, leaves
// what adb printed in the output string, for a caller that gives one, and never retries. Each ends the
// process, after a report, when adb cannot be started. When the run itself fails, ADB_GETEXITCODE_FAILED
// or ADB_CLOSE_FAILED comes back and the output is not judged.
#pragma once

#include "adb/AdbExitCode.h"

#include <string>

// Stops the adb server. KILL_SEVER_NOT_STARTED when there was none.
ADB_EXIT_CODE KillServer(std::string* pstrOutput = nullptr);

// Pairs with the watch: its address with the pairing port ("192.168.1.100:37777") and the six-digit
// code, inserted as they stand.
ADB_EXIT_CODE Pair(PCWSTR pszAddress, PCWSTR pszPairingCode, std::string* pstrOutput = nullptr);

// Connects the adb server to the watch: its address with the debugging port. ADB_SUCCESS and
// CONNECT_ALREADY_CONNECTED both leave it connected.
ADB_EXIT_CODE Connect(PCWSTR pszAddress, std::string* pstrOutput = nullptr);

// Installs the package file with this full path on the watch connected under this address. May show
// a box about a failure that is not known.
ADB_EXIT_CODE Install(PCWSTR pszAddress, PCWSTR pszPackagePath, std::string* pstrOutput = nullptr);
