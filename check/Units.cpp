// The unit tests, which lie beside this program.
#include "check/Check.h"
#include "check/Command.h"
#include "check/Stopping.h"
#include "check/Text.h"
#include "kit/Request.h"

#include <format>

namespace {

constexpr PCWSTR kPrograms[] = {L"adb", L"adb-load", L"app", L"atl", L"kit", L"net", L"res", L"tools", L"wizard"};

constexpr DWORD kLongestProgram = 120000;

// GoogleTest's lines: "[       OK ] Suite.Case (3 ms)".
constexpr std::string_view kPassed = "[       OK ] ";
constexpr std::string_view kFailed = "[  FAILED  ] ";

// What a program said.
struct TOLD
{
    std::vector<UNIT_CASE> cases;
    std::vector<std::wstring> failed; // their names
    std::string words;                // of those that failed, for whoever has to understand it
    bool bEnded = false;
};

TOLD Read(const std::wstring& szProgram, const std::string& text)
{
    TOLD told;
    std::string words;
    for (const std::string& line : LinesOf(text)) {
        const bool bBegins = line.starts_with("[ RUN      ] ");
        if (bBegins) {
            words.clear();
        }
        words += line + "\n";
        told.bEnded = !bBegins && (told.bEnded || line.starts_with("[==========] "));
        const bool bPassed = line.starts_with(kPassed);
        // At the end those that failed are listed again, without a time.
        if ((bPassed || line.starts_with(kFailed)) && line.ends_with(" ms)")) {
            const std::wstring szCase = FromUtf8(line.substr(kPassed.size(), line.rfind(" (") - kPassed.size()));
            told.cases.push_back({szProgram, szCase, bPassed});
            if (!bPassed) {
                told.failed.push_back(szCase);
                told.words += words;
            }
        }
    }
    return told;
}

// All cases passed, and it came to its end.
void LookAtProgram(CAnswers& answers, const std::wstring& szName, const std::wstring& szProgram, const PRINTED& printed)
{
    constexpr size_t kMostWords = 20000;
    const TOLD told = Read(szProgram, printed.text);
    const bool bHolds = told.bEnded && told.failed.empty() && !told.cases.empty() && printed.dwExitCode == 0;
    answers.m_cases.insert(answers.m_cases.end(), told.cases.begin(), told.cases.end());
    answers.Tell(L"unit." + szName, bHolds, L"all cases pass",
                 std::format(L"of {} cases fail: {}{}, exit code {}", told.cases.size(),
                             Joined(told.failed, L" ", L"none"), told.bEnded ? L"" : L", it did not come to its end",
                             printed.dwExitCode));
    if (!bHolds) {
        const std::string& words = told.words.empty() ? printed.text : told.words;
        answers.m_notes.push_back(szProgram + L":\n" + FromUtf8(words.substr(0, kMostWords)));
    }
}

} // namespace

void CheckUnits(CHECK& check)
{
    SetEnvironmentVariableW(L"KALVO_EXE", check.program.c_str());
    SetEnvironmentVariableW(L"KALVO_CHILD", (PartsFolder() / L"child.exe").c_str());
    for (const std::wstring szName : kPrograms) {
        const std::wstring szProgram = L"unit-" + szName;
        const CPath file = PartsFolder() / (szProgram + L".exe");
        try {
            LookAtProgram(check.answers, szName, szProgram,
                          RunCommand(InQuotes(file) + L" --gtest_color=no", kLongestProgram));
        } catch (const CLost& lost) {
            check.answers.NotTried(L"unit." + szName, lost.szWhy);
        }
    }
}
