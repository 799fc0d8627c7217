#include "adb/AdbOutput.h"

#include <ctre.hpp>

#include <algorithm>
#include <iterator>

namespace {

// What a known line means to the classifier that reads it, beside the outcomes themselves.
constexpr ADB_EXIT_CODE kNextLine = static_cast<ADB_EXIT_CODE>(-1);
constexpr ADB_EXIT_CODE kFailureName = static_cast<ADB_EXIT_CODE>(-2);

struct OUTPUT_PATTERN
{
    std::string_view text;
    ADB_EXIT_CODE nMeaning;
};

// The classifiers refer to these rows by index ranges.
constexpr OUTPUT_PATTERN kOutputPatterns[] = {
    /*  0 */ {"_Default_", ADB_PARSE_ERROR},
    /*  1 */ {"connected to ", ADB_SUCCESS},
    /*  2 */ {"already connected to ", CONNECT_ALREADY_CONNECTED},
    /*  3 */ {"cannot connect to ", CONNECT_CANNOT_CONNECT},
    /*  4 */ {"failed to authenticate to ", CONNECT_FAILED_TO_AUTHENTICATE},
    /*  5 */ {"Success", ADB_SUCCESS},
    /*  6 */ {"Performing Streamed Install", kNextLine},
    /*  7 */ {"adb: failed to install", kFailureName},
    /*  8 */ {"adb: failed to stat", INSTALL_FAILED_STAT},
    /*  9 */ {"adb.exe: more than one device/emulator", INSTALL_MORE_THAN_ONE_DEVICE},
    /* 10 */ {"adb.exe: device offline", INSTALL_DEVICE_OFFLINE},
    /* 11 */ {"adb.exe: no devices/emulators found", INSTALL_NO_DEVICES_FOUND},
    /* 12 */ {"", ADB_PARSE_ERROR},
    /* 13 */ {"cannot connect to daemon at tcp:", KILL_SEVER_NOT_STARTED},
    /* 14 */ {"Successfully paired to ", ADB_SUCCESS},
    /* 15 */ {"Failed: Unable to start pairing client.", PAIR_FAILED},
    /* 16 */ {"", ADB_PARSE_ERROR},
    /* 17 */ {"* daemon started successfully", kNextLine},
    /* 18 */ {"adb server version (", kNextLine},
    /* 19 */ {"* daemon not running; starting now at tcp:", kNextLine},
    /* 20 */ {"", ADB_PARSE_ERROR},
};
static_assert(std::size(kOutputPatterns) == 21);

struct PATTERN_RANGE
{
    int nFirst;
    int nLast;
};
constexpr PATTERN_RANGE kConnectPatterns = {1, 4};
constexpr PATTERN_RANGE kInstallPatterns = {5, 11};
constexpr PATTERN_RANGE kKillServerPatterns = {12, 13};
constexpr PATTERN_RANGE kPairPatterns = {14, 16};
constexpr PATTERN_RANGE kDaemonPatterns = {17, 20};

struct FAILURE_NAME
{
    std::string_view name;
    ADB_EXIT_CODE nCode;
};
constexpr FAILURE_NAME kFailureNames[] = {
#define FAILURE_NAME_ROW(value, name, message) {#name, name},
    ADB_PACKAGE_MANAGER_OUTCOMES(FAILURE_NAME_ROW)
#undef FAILURE_NAME_ROW
};
static_assert(std::size(kFailureNames) == 40);

// Takes the next line off the text. False when no text is left; a line feed at the very end does
// not begin another line.
bool TakeLine(std::string_view& rest, std::string_view& line)
{
    if (rest.empty()) {
        return false;
    }
    const size_t nEnd = rest.find('\n');
    line = rest.substr(0, nEnd);
    rest.remove_prefix(nEnd == std::string_view::npos ? rest.size() : nEnd + 1);
    return true;
}

// The meaning of a line among the lines about the start of adb's server and the command's own.
ADB_EXIT_CODE JudgeLine(std::string_view line, PATTERN_RANGE own)
{
    int nIndex = 0;
    if (!FindOutputPattern(line, kDaemonPatterns.nFirst, kDaemonPatterns.nLast, nIndex) &&
        !FindOutputPattern(line, own.nFirst, own.nLast, nIndex)) {
        return ADB_PARSE_ERROR;
    }
    const ADB_EXIT_CODE nMeaning = kOutputPatterns[nIndex].nMeaning;
    return nMeaning == kFailureName ? GetFailedToInstallExitCode(line) : nMeaning;
}

ADB_EXIT_CODE ClassifyLines(std::string_view output, PATTERN_RANGE own)
{
    std::string_view line;
    while (TakeLine(output, line)) {
        const ADB_EXIT_CODE nMeaning = JudgeLine(line, own);
        if (nMeaning != kNextLine) {
            return nMeaning;
        }
    }
    return ADB_PARSE_ERROR;
}

} // namespace

bool FindOutputPattern(std::string_view line, int nFirst, int nLast, int& nIndex)
{
    for (int n = nFirst; n <= nLast; ++n) {
        const std::string_view text = kOutputPatterns[n].text;
        if (text.empty() ? line.empty() : line.starts_with(text)) {
            nIndex = n;
            return true;
        }
    }
    return false;
}

ADB_EXIT_CODE ClassifyKillServerOutput(std::string_view output)
{
    std::string_view line;
    if (!TakeLine(output, line)) {
        return ADB_SUCCESS;
    }
    int nIndex = 0;
    if (!FindOutputPattern(line, kKillServerPatterns.nFirst, kKillServerPatterns.nLast, nIndex)) {
        return ADB_PARSE_ERROR;
    }
    return kOutputPatterns[nIndex].nMeaning;
}

ADB_EXIT_CODE ClassifyConnectOutput(std::string_view output)
{
    return ClassifyLines(output, kConnectPatterns);
}

ADB_EXIT_CODE ClassifyPairOutput(std::string_view output)
{
    return output.empty() ? PAIR_ALREADY_PAIRED : ClassifyLines(output, kPairPatterns);
}

ADB_EXIT_CODE ClassifyInstallOutput(std::string_view output)
{
    return ClassifyLines(output, kInstallPatterns);
}

ADB_EXIT_CODE GetFailedToInstallExitCode(std::string_view line)
{
    const auto failure = ctre::search<R"(: Failure \[([A-Z0-9_]+):)">(line);
    if (!failure) {
        return INSTALL_FAILED;
    }
    const FAILURE_NAME* pKnown = std::ranges::find(kFailureNames, failure.get<1>().to_view(), &FAILURE_NAME::name);
    if (pKnown != std::end(kFailureNames)) {
        return pKnown->nCode;
    }
    MessageBoxW(nullptr, L"Unknown ADB_EXIT_CODE, please report to KALVO", L"GetFailedToInstallExitCode()", MB_OK);
    return INSTALL_FAILED_KALVO_UNKNOWN_ERROR;
}
