// Anything at all as adb's output: the whole input to each command's classifier, and each of its lines to the two
// functions for lines. They must agree with the reference.
#include "tests/fuzz/Demand.h"
#include "tests/fuzz/OutputReference.h"

#include "adb/AdbOutput.h"

#include <array>
#include <memory>
#include <sstream>

namespace {

int g_nBoxes = 0;

void CompareOutcome(ADB_EXIT_CODE (*pfnClassify)(std::string_view), int (*pfnReference)(const std::string&, int&),
                    const std::string& text, const char* pszSentence)
{
    // A block of just the text's size, which a string's own is not.
    const std::unique_ptr<char[]> pText(new char[text.size()]);
    text.copy(pText.get(), text.size());
    g_nBoxes = 0;
    int nBoxes = 0;
    const int nOutcome = pfnReference(text, nBoxes);
    Demand(pfnClassify({pText.get(), text.size()}) == nOutcome, pszSentence);
    Demand(g_nBoxes == nBoxes, "a box comes for each failure whose name is not known, and for nothing else");
}

void ComparePatterns(const std::string& line)
{
    static constexpr std::array<std::array<int, 2>, 9> kRanges = {
        {{0, 20}, {1, 4}, {5, 11}, {12, 13}, {14, 16}, {17, 20}, {2, 1}, {20, 20}, {0, 0}}};
    for (const auto& [nFirst, nLast] : kRanges) {
        int nIndex = -7;
        int nReference = -7;
        const bool bFound = FindOutputPattern(line, nFirst, nLast, nIndex);
        Demand(bFound == reference::FindOutputPattern(line, nFirst, nLast, nReference), "the same lines are known");
        Demand(nIndex == nReference, "the first known text that matches is told");
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
    CompareOutcome(ClassifyKillServerOutput, reference::KillServer, output,
                   "kill-server is judged as the reference does");
    CompareOutcome(ClassifyConnectOutput, reference::Connect, output, "connect is judged as the reference does");
    CompareOutcome(ClassifyPairOutput, reference::Pair, output, "pair is judged as the reference does");
    CompareOutcome(ClassifyInstallOutput, reference::Install, output, "install is judged as the reference does");

    std::istringstream lines(output);
    std::string line;
    while (std::getline(lines, line)) {
        ComparePatterns(line);
        CompareOutcome(GetFailedToInstallExitCode, reference::FailedToInstall, line, "the failure's name is found");
        if (line.size() <= reference::kShortLine) {
            Demand(reference::FailureName(line) == reference::FailureNameByRegex(line),
                   "the name is what the regular expression captures");
        }
    }
    return 0;
}
