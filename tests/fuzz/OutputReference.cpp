#include "tests/fuzz/OutputReference.h"

#include <map>
#include <regex>
#include <sstream>

namespace reference {
namespace {

constexpr int kParseError = 6;
constexpr int kNextLine = -1;
constexpr int kFailure = -2;

const std::map<int, std::string> kPatterns = {
    {0, "_Default_"},
    {1, "connected to "},
    {2, "already connected to "},
    {3, "cannot connect to "},
    {4, "failed to authenticate to "},
    {5, "Success"},
    {6, "Performing Streamed Install"},
    {7, "adb: failed to install"},
    {8, "adb: failed to stat"},
    {9, "adb.exe: more than one device/emulator"},
    {10, "adb.exe: device offline"},
    {11, "adb.exe: no devices/emulators found"},
    {12, ""},
    {13, "cannot connect to daemon at tcp:"},
    {14, "Successfully paired to "},
    {15, "Failed: Unable to start pairing client."},
    {16, ""},
    {17, "* daemon started successfully"},
    {18, "adb server version ("},
    {19, "* daemon not running; starting now at tcp:"},
    {20, ""},
};

const std::map<std::string, int> kFailures = {
    {"INSTALL_FAILED_ALREADY_EXISTS", 302},
    {"INSTALL_FAILED_INVALID_APK", 303},
    {"INSTALL_FAILED_INVALID_URI", 304},
    {"INSTALL_FAILED_INSUFFICIENT_STORAGE", 305},
    {"INSTALL_FAILED_DUPLICATE_PACKAGE", 306},
    {"INSTALL_FAILED_NO_SHARED_USER", 307},
    {"INSTALL_FAILED_UPDATE_INCOMPATIBLE", 308},
    {"INSTALL_FAILED_SHARED_USER_INCOMPATIBLE", 309},
    {"INSTALL_FAILED_MISSING_SHARED_LIBRARY", 310},
    {"INSTALL_FAILED_REPLACE_COULDNT_DELETE", 311},
    {"INSTALL_FAILED_DEXOPT", 312},
    {"INSTALL_FAILED_OLDER_SDK", 313},
    {"INSTALL_FAILED_CONFLICTING_PROVIDER", 314},
    {"INSTALL_FAILED_NEWER_SDK", 315},
    {"INSTALL_FAILED_TEST_ONLY", 316},
    {"INSTALL_FAILED_CPU_ABI_INCOMPATIBLE", 317},
    {"INSTALL_FAILED_MISSING_FEATURE", 318},
    {"INSTALL_FAILED_CONTAINER_ERROR", 319},
    {"INSTALL_FAILED_INVALID_INSTALL_LOCATION", 320},
    {"INSTALL_FAILED_MEDIA_UNAVAILABLE", 321},
    {"INSTALL_FAILED_VERIFICATION_TIMEOUT", 322},
    {"INSTALL_FAILED_VERIFICATION_FAILURE", 323},
    {"INSTALL_FAILED_PACKAGE_CHANGED", 324},
    {"INSTALL_FAILED_UID_CHANGED", 325},
    {"INSTALL_FAILED_VERSION_DOWNGRADE", 326},
    {"INSTALL_PARSE_FAILED_NOT_APK", 327},
    {"INSTALL_PARSE_FAILED_BAD_MANIFEST", 328},
    {"INSTALL_PARSE_FAILED_UNEXPECTED_EXCEPTION", 329},
    {"INSTALL_PARSE_FAILED_NO_CERTIFICATES", 330},
    {"INSTALL_PARSE_FAILED_INCONSISTENT_CERTIFICATES", 331},
    {"INSTALL_PARSE_FAILED_CERTIFICATE_ENCODING", 332},
    {"INSTALL_PARSE_FAILED_BAD_PACKAGE_NAME", 333},
    {"INSTALL_PARSE_FAILED_BAD_SHARED_USER_ID", 334},
    {"INSTALL_PARSE_FAILED_MANIFEST_MALFORMED", 335},
    {"INSTALL_PARSE_FAILED_MANIFEST_EMPTY", 336},
    {"INSTALL_FAILED_INTERNAL_ERROR", 337},
    {"INSTALL_FAILED_USER_RESTRICTED", 338},
    {"INSTALL_FAILED_DUPLICATE_PERMISSION", 339},
    {"INSTALL_FAILED_NO_MATCHING_ABIS", 340},
    {"INSTALL_FAILED_ABORTED", 341},
};

// What a found line means to the command that reads it.
int Meaning(int nIndex)
{
    switch (nIndex) {
    case 1:
    case 5:
    case 14:
        return 0;
    case 2:
        return 100;
    case 3:
        return 101;
    case 4:
        return 102;
    case 6:
    case 17:
    case 18:
    case 19:
        return kNextLine;
    case 7:
        return kFailure;
    case 8:
        return 342;
    case 9:
        return 343;
    case 10:
        return 344;
    case 11:
        return 345;
    case 15:
        return 501;
    default:
        return kParseError;
    }
}

int Lines(const std::string& output, int nFirst, int nLast, int& nBoxes)
{
    std::istringstream stream(output);
    std::string line;
    while (std::getline(stream, line)) {
        int nIndex = 0;
        if (!FindOutputPattern(line, 17, 20, nIndex) && !FindOutputPattern(line, nFirst, nLast, nIndex)) {
            return kParseError;
        }
        const int nMeaning = Meaning(nIndex);
        if (nMeaning == kFailure) {
            return FailedToInstall(line, nBoxes);
        }
        if (nMeaning != kNextLine) {
            return nMeaning;
        }
    }
    return kParseError;
}

} // namespace

bool FindOutputPattern(const std::string& line, int nFirst, int nLast, int& nIndex)
{
    for (int n = nFirst; n <= nLast; ++n) {
        const std::string& pattern = kPatterns.at(n);
        const bool bFound = pattern.empty()
                                ? line.empty()
                                : line.size() >= pattern.size() && line.compare(0, pattern.size(), pattern) == 0;
        if (bFound) {
            nIndex = n;
            return true;
        }
    }
    return false;
}

int KillServer(const std::string& output, int& /*nBoxes*/)
{
    if (output.empty()) {
        return 0;
    }
    std::istringstream stream(output);
    std::string line;
    int nIndex = 0;
    const bool bFound = std::getline(stream, line) && FindOutputPattern(line, 12, 13, nIndex);
    return bFound && nIndex == 13 ? 400 : kParseError;
}

int Connect(const std::string& output, int& nBoxes)
{
    return Lines(output, 1, 4, nBoxes);
}

int Pair(const std::string& output, int& nBoxes)
{
    return output.empty() ? 500 : Lines(output, 14, 16, nBoxes);
}

int Install(const std::string& output, int& nBoxes)
{
    return Lines(output, 5, 11, nBoxes);
}

int FailedToInstall(const std::string& line, int& nBoxes)
{
    const std::string name = FailureName(line);
    if (name.empty()) {
        return 300;
    }
    const auto found = kFailures.find(name);
    if (found == kFailures.end()) {
        ++nBoxes;
        return 301;
    }
    return found->second;
}

std::string FailureName(const std::string& line)
{
    const std::string introduction = ": Failure [";
    for (size_t n = line.find(introduction); n != std::string::npos; n = line.find(introduction, n + 1)) {
        const size_t nName = n + introduction.size();
        size_t nEnd = nName;
        while (nEnd < line.size() &&
               std::string("ABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_").find(line[nEnd]) != std::string::npos) {
            ++nEnd;
        }
        if (nEnd > nName && nEnd < line.size() && line[nEnd] == ':') {
            return line.substr(nName, nEnd - nName);
        }
    }
    return "";
}

std::string FailureNameByRegex(const std::string& line)
{
    static const std::regex s_failure(R"(: Failure \[([A-Z0-9_]+):)");
    std::smatch match;
    return std::regex_search(line, match, s_failure) ? match[1].str() : "";
}

} // namespace reference
