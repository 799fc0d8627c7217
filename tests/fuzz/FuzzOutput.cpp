// Anything at all as adb's output: the whole input to each command's classifier, and each of its lines to the two
// functions for lines. They must agree with a second judge, as plain as it can be written.
#include "tests/fuzz/Demand.h"

#include "adb/AdbOutput.h"

#include <iterator>
#include <map>
#include <memory>
#include <regex.h>
#include <sstream>

namespace {

// The boxes that were shown, and those that should have been.
int g_nBoxes = 0;
int g_nExpectedBoxes = 0;

namespace plainly {

// What a row means besides an outcome.
constexpr int kNextLine = -1;
constexpr int kFailure = -2;

struct ROW
{
    std::string text;
    int nMeaning;
};
const ROW kRows[] = {
    {"_Default_", ADB_PARSE_ERROR},
    {"connected to ", ADB_SUCCESS},
    {"already connected to ", CONNECT_ALREADY_CONNECTED},
    {"cannot connect to ", CONNECT_CANNOT_CONNECT},
    {"failed to authenticate to ", CONNECT_FAILED_TO_AUTHENTICATE},
    {"Success", ADB_SUCCESS},
    {"Performing Streamed Install", kNextLine},
    {"adb: failed to install", kFailure},
    {"adb: failed to stat", INSTALL_FAILED_STAT},
    {"adb.exe: more than one device/emulator", INSTALL_MORE_THAN_ONE_DEVICE},
    {"adb.exe: device offline", INSTALL_DEVICE_OFFLINE},
    {"adb.exe: no devices/emulators found", INSTALL_NO_DEVICES_FOUND},
    {"", ADB_PARSE_ERROR},
    {"cannot connect to daemon at tcp:", KILL_SEVER_NOT_STARTED},
    {"Successfully paired to ", ADB_SUCCESS},
    {"Failed: Unable to start pairing client.", PAIR_FAILED},
    {"", ADB_PARSE_ERROR},
    {"* daemon started successfully", kNextLine},
    {"adb server version (", kNextLine},
    {"* daemon not running; starting now at tcp:", kNextLine},
    {"", ADB_PARSE_ERROR},
};

const std::map<std::string, int> kFailures = {
#define FAILURE(value, name, message) {#name, value},
    ADB_PACKAGE_MANAGER_OUTCOMES(FAILURE)
#undef FAILURE
};

// The first row that a line begins with, or -1.
int Find(const std::string& line, int nFirst, int nLast)
{
    for (int n = nFirst; n <= nLast; ++n) {
        const std::string& text = kRows[n].text;
        if (line.compare(0, text.size(), text) == 0 && (!text.empty() || line.empty())) {
            return n;
        }
    }
    return -1;
}

int FailedToInstall(const std::string& line)
{
    static const regex_t s_failure = [] {
        regex_t expression;
        Demand(regcomp(&expression, ": Failure \\[([A-Z0-9_]+):", REG_EXTENDED) == 0, "this is an expression");
        return expression;
    }();
    regmatch_t matches[2] = {{0, static_cast<regoff_t>(line.size())}, {}};
    if (regexec(&s_failure, line.c_str(), std::size(matches), matches, REG_STARTEND) != 0) {
        return INSTALL_FAILED;
    }
    const auto nBegin = static_cast<size_t>(matches[1].rm_so);
    const auto found = kFailures.find(line.substr(nBegin, static_cast<size_t>(matches[1].rm_eo) - nBegin));
    if (found == kFailures.end()) {
        ++g_nExpectedBoxes;
        return INSTALL_FAILED_KALVO_UNKNOWN_ERROR;
    }
    return found->second;
}

int Lines(const std::string& output, int nFirst, int nLast)
{
    std::istringstream lines(output);
    for (std::string line; std::getline(lines, line);) {
        const int nServer = Find(line, 17, 20);
        const int nRow = nServer >= 0 ? nServer : Find(line, nFirst, nLast);
        const int nMeaning = nRow >= 0 ? kRows[nRow].nMeaning : ADB_PARSE_ERROR;
        if (nMeaning != kNextLine) {
            return nMeaning == kFailure ? FailedToInstall(line) : nMeaning;
        }
    }
    return ADB_PARSE_ERROR;
}

int KillServer(const std::string& output)
{
    if (output.empty()) {
        return ADB_SUCCESS;
    }
    return Find(output.substr(0, output.find('\n')), 12, 13) == 13 ? KILL_SEVER_NOT_STARTED : ADB_PARSE_ERROR;
}

int Connect(const std::string& output)
{
    return Lines(output, 1, 4);
}

int Pair(const std::string& output)
{
    return output.empty() ? static_cast<int>(PAIR_ALREADY_PAIRED) : Lines(output, 14, 16);
}

int Install(const std::string& output)
{
    return Lines(output, 5, 11);
}

} // namespace plainly

void CompareOutcome(ADB_EXIT_CODE (*pfnClassify)(std::string_view), int (*pfnPlainly)(const std::string&),
                    const std::string& text, const char* pszSentence)
{
    // A block of just the text's size, which a string's own is not.
    const std::unique_ptr<char[]> pText(new char[text.size()]);
    text.copy(pText.get(), text.size());
    Demand(pfnClassify({pText.get(), text.size()}) == pfnPlainly(text), pszSentence);
    Demand(g_nBoxes == g_nExpectedBoxes, "a box comes for each failure whose name is not known, and for nothing else");
}

void ComparePatterns(const std::string& line)
{
    static constexpr int kRanges[][2] = {{0, 20},  {1, 4}, {5, 11},  {12, 13}, {14, 16},
                                         {17, 20}, {2, 1}, {20, 20}, {0, 0}};
    for (const auto& [nFirst, nLast] : kRanges) {
        int nIndex = -1;
        const bool bFound = FindOutputPattern(line, nFirst, nLast, nIndex);
        Demand(nIndex == plainly::Find(line, nFirst, nLast), "the first known text that matches is told");
        Demand(bFound == (nIndex >= 0), "the same lines are known");
    }
}

} // namespace

int MessageBoxW(HWND hwndOwner, PCWSTR pszText, PCWSTR pszCaption, UINT nType)
{
    Demand(hwndOwner == nullptr && nType == MB_OK &&
               wcscmp(pszText, L"Unknown ADB_EXIT_CODE, please report to KALVO") == 0 &&
               wcscmp(pszCaption, L"GetFailedToInstallExitCode()") == 0,
           "the only box is the one about an unknown failure");
    ++g_nBoxes;
    return 1;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* pData, size_t nSize)
{
    const std::string output(reinterpret_cast<const char*>(pData), nSize);
    CompareOutcome(ClassifyKillServerOutput, plainly::KillServer, output, "kill-server is judged alike");
    CompareOutcome(ClassifyConnectOutput, plainly::Connect, output, "connect is judged alike");
    CompareOutcome(ClassifyPairOutput, plainly::Pair, output, "pair is judged alike");
    CompareOutcome(ClassifyInstallOutput, plainly::Install, output, "install is judged alike");

    std::istringstream lines(output);
    for (std::string line; std::getline(lines, line);) {
        ComparePatterns(line);
        CompareOutcome(GetFailedToInstallExitCode, plainly::FailedToInstall, line, "the failure's name is found");
    }
    return 0;
}
