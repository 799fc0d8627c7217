#include "adb/AdbOutput.h"

#include <ctre.hpp>

#include <algorithm>
#include <iterator>
#include <optional>
#include <variant>

namespace {

// What a known line means to the classifier that reads it: an outcome, or one of these.
enum OTHER_MEANING
{
    MEANS_NEXT_LINE,
    MEANS_FAILURE_NAME, // the outcome is the failure that the line names
};
using LINE_MEANING = std::variant<ADB_EXIT_CODE, OTHER_MEANING>;

// The known lines: row, text, meaning. Their order is fixed, and with it the number of each. No classifier reads the
// first row: it keeps the numbers of the others. PAIR_EMPTY_LINE is never reached: an empty line is DAEMON_EMPTY_LINE
// first.
#define OUTPUT_ROWS(ROW)                                                                                               \
    ROW(DEFAULT, "_Default_", ADB_PARSE_ERROR)                                                                         \
    ROW(CONNECTED, "connected to ", ADB_SUCCESS)                                                                       \
    ROW(ALREADY_CONNECTED, "already connected to ", CONNECT_ALREADY_CONNECTED)                                         \
    ROW(CANNOT_CONNECT, "cannot connect to ", CONNECT_CANNOT_CONNECT)                                                  \
    ROW(FAILED_TO_AUTHENTICATE, "failed to authenticate to ", CONNECT_FAILED_TO_AUTHENTICATE)                          \
    ROW(INSTALLED, "Success", ADB_SUCCESS)                                                                             \
    ROW(STREAMED_INSTALL, "Performing Streamed Install", MEANS_NEXT_LINE)                                              \
    ROW(FAILED_TO_INSTALL, "adb: failed to install", MEANS_FAILURE_NAME)                                               \
    ROW(FAILED_TO_STAT, "adb: failed to stat", INSTALL_FAILED_STAT)                                                    \
    ROW(MORE_THAN_ONE_DEVICE, "adb.exe: more than one device/emulator", INSTALL_MORE_THAN_ONE_DEVICE)                  \
    ROW(DEVICE_OFFLINE, "adb.exe: device offline", INSTALL_DEVICE_OFFLINE)                                             \
    ROW(NO_DEVICES_FOUND, "adb.exe: no devices/emulators found", INSTALL_NO_DEVICES_FOUND)                             \
    ROW(KILL_SERVER_EMPTY_LINE, "", ADB_PARSE_ERROR)                                                                   \
    ROW(NO_DAEMON, "cannot connect to daemon at tcp:", KILL_SEVER_NOT_STARTED)                                         \
    ROW(PAIRED, "Successfully paired to ", ADB_SUCCESS)                                                                \
    ROW(NOT_PAIRED, "Failed: Unable to start pairing client.", PAIR_FAILED)                                            \
    ROW(PAIR_EMPTY_LINE, "", ADB_PARSE_ERROR)                                                                          \
    ROW(DAEMON_STARTED, "* daemon started successfully", MEANS_NEXT_LINE)                                              \
    ROW(SERVER_VERSION, "adb server version (", MEANS_NEXT_LINE)                                                       \
    ROW(DAEMON_STARTING, "* daemon not running; starting now at tcp:", MEANS_NEXT_LINE)                                \
    ROW(DAEMON_EMPTY_LINE, "", ADB_PARSE_ERROR)

enum OUTPUT_ROW : int
{
#define OUTPUT_ROW_NAME(row, text, meaning) ROW_##row,
    OUTPUT_ROWS(OUTPUT_ROW_NAME)
#undef OUTPUT_ROW_NAME
};
static_assert(ROW_CONNECTED == 1 && ROW_DAEMON_EMPTY_LINE == 20);

struct OUTPUT_PATTERN
{
    std::string_view text;
    LINE_MEANING meaning;
};
constexpr OUTPUT_PATTERN kOutputPatterns[] = {
#define OUTPUT_ROW_PATTERN(row, text, meaning) {text, meaning},
    OUTPUT_ROWS(OUTPUT_ROW_PATTERN)
#undef OUTPUT_ROW_PATTERN
};

struct PATTERN_RANGE
{
    OUTPUT_ROW nFirst;
    OUTPUT_ROW nLast;
};
constexpr PATTERN_RANGE kConnectPatterns = {ROW_CONNECTED, ROW_FAILED_TO_AUTHENTICATE};
constexpr PATTERN_RANGE kInstallPatterns = {ROW_INSTALLED, ROW_NO_DEVICES_FOUND};
constexpr PATTERN_RANGE kKillServerPatterns = {ROW_KILL_SERVER_EMPTY_LINE, ROW_NO_DAEMON};
constexpr PATTERN_RANGE kPairPatterns = {ROW_PAIRED, ROW_PAIR_EMPTY_LINE};
constexpr PATTERN_RANGE kDaemonPatterns = {ROW_DAEMON_STARTED, ROW_DAEMON_EMPTY_LINE};

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

bool FindInRange(std::string_view line, PATTERN_RANGE range, int& nIndex)
{
    return FindOutputPattern(line, range.nFirst, range.nLast, nIndex);
}

// The outcome that a line decides as the row means it; none when the next line is to be read.
std::optional<ADB_EXIT_CODE> Decide(int nIndex, std::string_view line)
{
    const LINE_MEANING& meaning = kOutputPatterns[nIndex].meaning;
    if (const auto* pOutcome = std::get_if<ADB_EXIT_CODE>(&meaning)) {
        return *pOutcome;
    }
    if (meaning == LINE_MEANING(MEANS_NEXT_LINE)) {
        return std::nullopt;
    }
    return GetFailedToInstallExitCode(line);
}

// Judges by the lines about the start of adb's server and the command's own.
ADB_EXIT_CODE ClassifyLines(std::string_view output, PATTERN_RANGE own)
{
    std::string_view line;
    while (TakeLine(output, line)) {
        int nIndex = 0;
        if (!FindInRange(line, kDaemonPatterns, nIndex) && !FindInRange(line, own, nIndex)) {
            return ADB_PARSE_ERROR;
        }
        if (const std::optional<ADB_EXIT_CODE> nOutcome = Decide(nIndex, line)) {
            return *nOutcome;
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
    if (!FindInRange(line, kKillServerPatterns, nIndex)) {
        return ADB_PARSE_ERROR;
    }
    return Decide(nIndex, line).value_or(ADB_PARSE_ERROR);
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
