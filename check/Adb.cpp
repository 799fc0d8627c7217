// What adb prints, line by line, asked as the installer asks it: the deployed adb.exe, its output through a pipe.
#include "check/Command.h"
#include "check/Listener.h"
#include "check/Machine.h"
#include "check/Stopping.h"
#include "check/Text.h"
#include "check/Walk.h"
#include "driver/Json.h"
#include "kit/Request.h"

#include <algorithm>
#include <format>

namespace {

constexpr DWORD kLongestCommand = 60000;

PRINTED Run(const std::wstring& szCommand)
{
    return RunCommand(InQuotes(AdbPath()) + L" " + szCommand, kLongestCommand);
}

// Each line begins so; there are no others.
void ExpectLines(CAnswers& answers, PCWSTR pszClaim, const PRINTED& printed, const std::vector<std::string>& beginnings)
{
    const std::vector<std::string> lines = LinesOf(printed.text);
    const auto BeginsSo = [](const std::string& line, const std::string& beginning) {
        return line.starts_with(beginning);
    };
    answers.Tell(pszClaim, std::ranges::equal(lines, beginnings, BeginsSo),
                 Joined(beginnings, L" | ", L"nothing", FromUtf8), Joined(lines, L" | ", L"nothing", FromUtf8));
}

void Server(CAnswers& answers)
{
    ExpectLines(answers, L"adb.no-server", Run(L"kill-server"), {"cannot connect to daemon at tcp:5037: "});
    const CListener nobody(CListener::kRefuses);
    const std::wstring szConnect = L"connect " + nobody.Address();
    const std::string refused = "cannot connect to " + ToUtf8(nobody.Address()) + ": ";
    const PRINTED first = Run(szConnect);
    ExpectLines(answers, L"adb.server-starts", first,
                {"* daemon not running; starting now at tcp:5037", "* daemon started successfully", refused});
    // The server goes on; had it kept the pipe, the command would have lasted as long as the check waits.
    const bool bRuns = IsListening(kAdbServerPort);
    answers.Tell(L"adb.pipe", first.dwMilliseconds < kLongestCommand && bRuns,
                 L"the pipe breaks while the server runs on",
                 std::format(L"the pipe broke after {} ms, the server {}", first.dwMilliseconds,
                             bRuns ? L"runs on" : L"does not run"));
    ExpectLines(answers, L"adb.connect-refused", Run(szConnect), {refused});
    answers.Either(L"adb.line-ends", first.text.ends_with("\r\n"), L"carriage return and line feed",
                   L"another end of the line");
}

void Watches(CAnswers& answers)
{
    const CListener rude(CListener::kHangsUp);
    ExpectLines(answers, L"adb.connect-hung-up", Run(L"connect " + rude.Address()),
                {"failed to connect to " + ToUtf8(rude.Address())});
    ExpectLines(answers, L"adb.pair-hung-up", Run(L"pair " + rude.Address() + L" 123456"),
                {"Failed: Wrong password or connection was dropped."});
    const CListener nobody(CListener::kRefuses);
    ExpectLines(answers, L"adb.pair-refused", Run(L"pair " + nobody.Address() + L" 123456"),
                {"Failed: Unable to start pairing client."});
    const CListener silent(CListener::kStaysOpen);
    const PRINTED printed = Run(L"connect " + silent.Address());
    ExpectLines(answers, L"adb.connect-silent", printed, {"failed to connect to " + ToUtf8(silent.Address())});
    answers.Tell(L"adb.connect-patience", printed.dwMilliseconds > 8000 && printed.dwMilliseconds < 20000,
                 L"about 10 seconds", std::format(L"{} ms", printed.dwMilliseconds));
}

} // namespace

void CheckAdb(CHECK& check)
{
    const CWalk walk(check);
    Server(check.answers);
    Watches(check.answers);
    const CPath package = check.program.parent_path() / L"Check.apk";
    ExpectLines(check.answers, L"adb.install-no-device", Run(L"-s 127.0.0.1:1 install " + InQuotes(package)),
                {"adb.exe: device '127.0.0.1:1' not found"});
    ExpectLines(check.answers, L"adb.server-ends", Run(L"kill-server"), {});
    const bool bGone = WaitFor(5000, [] { return !IsListening(kAdbServerPort) && !IsOwnAdbRunning(); });
    check.answers.Either(L"adb.server-gone", bGone, L"no server", L"a process of adb, or somebody on its port");
}
