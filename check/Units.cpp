// The unit tests, which lie beside this program.
#include "check/Check.h"
#include "check/Command.h"
#include "check/Stopping.h"
#include "kit/Request.h"

#include <format>

namespace {

constexpr PCWSTR kPrograms[] = {L"adb", L"adb-load", L"app", L"atl", L"kit", L"net", L"res", L"tools", L"wizard"};

constexpr DWORD kLongestProgram = 120000;

// GoogleTest's lines: "[       OK ] Suite.Case (3 ms)".
constexpr std::string_view kPassed = "[       OK ] ";
constexpr std::string_view kFailed = "[  FAILED  ] ";

// What the program said of its cases; true when all passed and it came to its end.
bool TakeCases(CAnswers& answers, const std::wstring& szProgram, const PRINTED& printed, std::wstring& szSeen)
{
    size_t nPassed = 0;
    bool bEnded = false;
    std::wstring szFailed;
    for (const std::string& line : LinesOf(printed.text)) {
        const bool bPassed = line.starts_with(kPassed);
        // At the end those that failed are listed again, without a time.
        if ((bPassed || line.starts_with(kFailed)) && line.ends_with(" ms)")) {
            const std::wstring szCase = FromUtf8(line.substr(kPassed.size(), line.rfind(" (") - kPassed.size()));
            answers.m_cases.push_back({szProgram, szCase, bPassed});
            nPassed += bPassed ? 1 : 0;
            szFailed += bPassed ? L"" : L" " + szCase;
        }
        bEnded = bEnded || line.starts_with("[==========] ");
        bEnded = bEnded && !line.starts_with("[ RUN      ] ");
    }
    szSeen = std::format(L"{} cases passed{}{}, exit code {}", nPassed, szFailed.empty() ? L"" : L", not" + szFailed,
                         bEnded ? L"" : L", it did not come to its end", printed.dwExitCode);
    return bEnded && szFailed.empty() && nPassed > 0 && printed.dwExitCode == 0;
}

// What a failing case says, for whoever has to understand it.
void KeepWords(CAnswers& answers, const std::wstring& szProgram, const std::string& text)
{
    constexpr size_t kMost = 20000;
    std::string words;
    std::string since;
    for (const std::string& line : LinesOf(text)) {
        since = line.starts_with("[ RUN      ] ") ? line + "\n" : since + line + "\n";
        words += line.starts_with(kFailed) && line.ends_with(" ms)") ? since : "";
    }
    answers.m_notes.push_back(szProgram + L":\n" +
                              FromUtf8(words.empty() ? text.substr(0, kMost) : words.substr(0, kMost)));
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
            const PRINTED printed = RunCommand(InQuotes(file) + L" --gtest_color=no", kLongestProgram);
            std::wstring szSeen;
            const bool bHolds = TakeCases(check.answers, szProgram, printed, szSeen);
            check.answers.Tell(L"unit." + szName, bHolds, L"all cases pass", szSeen);
            if (!bHolds) {
                KeepWords(check.answers, szProgram, printed.text);
            }
        } catch (const CLost& lost) {
            check.answers.NotTried(L"unit." + szName, lost.szWhy);
        }
    }
}
