// What adb prints, line by line, asked as the installer asks it: the deployed adb.exe, its output through a pipe.
#include "check/Command.h"
#include "check/Listener.h"
#include "check/Machine.h"
#include "check/Stopping.h"
#include "check/Walk.h"
#include "kit/Request.h"

#include <format>

namespace {

constexpr DWORD kLongest = 60000;

std::wstring InOneLine(const std::vector<std::string>& lines)
{
    std::wstring szLines;
    for (const std::string& line : lines) {
        szLines += (szLines.empty() ? L"" : L" | ") + FromUtf8(line);
    }
    return szLines.empty() ? L"nothing" : szLines;
}

PRINTED Run(const std::wstring& szCommand)
{
    return RunCommand(L"\"" + AdbPath().wstring() + L"\" " + szCommand, kLongest);
}

// Each line begins so; there are no others.
void ExpectLines(CAnswers& answers, PCWSTR pszClaim, const PRINTED& printed, const std::vector<std::string>& beginnings)
{
    const std::vector<std::string> lines = LinesOf(printed.text);
    bool bSame = lines.size() == beginnings.size();
    for (size_t n = 0; bSame && n < lines.size(); ++n) {
        bSame = lines[n].starts_with(beginnings[n]);
    }
    answers.Tell(pszClaim, bSame, InOneLine(beginnings), InOneLine(lines));
}

void Server(CAnswers& answers)
{
    ExpectLines(answers, L"adb.no-server", Run(L"kill-server"), {"cannot connect to daemon at tcp:5037: "});
    const CListener nobody(CListener::kRefuses);
    const std::wstring szConnect = L"connect " + nobody.Address();
    const std::string refused = "cannot connect to 127.0.0.1:" + std::to_string(std::stoi(nobody.Port())) + ": ";
    const PRINTED first = Run(szConnect);
    ExpectLines(answers, L"adb.server-starts", first,
                {"* daemon not running; starting now at tcp:5037", "* daemon started successfully", refused});
    // The server goes on; had it kept the pipe, the command would have lasted as long as the check waits.
    const bool bLetGo = first.dwMilliseconds < kLongest && IsListening(kAdbServerPort);
    answers.Tell(L"adb.pipe", bLetGo, L"the pipe breaks while the server runs on",
                 std::format(L"the pipe broke after {} ms, the server {}", first.dwMilliseconds,
                             IsListening(kAdbServerPort) ? L"runs on" : L"does not run"));
    ExpectLines(answers, L"adb.connect-refused", Run(szConnect), {refused});
    answers.Tell(L"adb.line-ends", first.text.ends_with("\r\n"), L"carriage return and line feed",
                 first.text.ends_with("\r\n") ? L"carriage return and line feed" : L"another end of the line");
}

void Watches(CAnswers& answers)
{
    const CListener rude(CListener::kHangsUp);
    ExpectLines(answers, L"adb.connect-hung-up", Run(L"connect " + rude.Address()),
                {"failed to connect to 127.0.0.1:" + std::to_string(std::stoi(rude.Port()))});
    ExpectLines(answers, L"adb.pair-hung-up", Run(L"pair " + rude.Address() + L" 123456"),
                {"Failed: Wrong password or connection was dropped."});
    const CListener nobody(CListener::kRefuses);
    ExpectLines(answers, L"adb.pair-refused", Run(L"pair " + nobody.Address() + L" 123456"),
                {"Failed: Unable to start pairing client."});
    const CListener silent(CListener::kStaysOpen);
    const PRINTED printed = Run(L"connect " + silent.Address());
    ExpectLines(answers, L"adb.connect-silent", printed,
                {"failed to connect to 127.0.0.1:" + std::to_string(std::stoi(silent.Port()))});
    answers.Tell(L"adb.connect-patience", printed.dwMilliseconds > 8000 && printed.dwMilliseconds < 20000,
                 L"about 10 seconds", std::format(L"{} ms", printed.dwMilliseconds));
}

void Packages(CAnswers& answers, const CPath& folder)
{
    ExpectLines(answers, L"adb.install-no-device",
                Run(L"-s 127.0.0.1:1 install \"" + (folder / L"Check.apk").wstring() + L"\""),
                {"adb.exe: device '127.0.0.1:1' not found"});
}

} // namespace

void CheckAdb(CHECK& check)
{
    CWalk walk(check);
    Server(check.answers);
    Watches(check.answers);
    Packages(check.answers, check.program.parent_path());
    const PRINTED printed = Run(L"kill-server");
    ExpectLines(check.answers, L"adb.server-ends", printed, {});
    const bool bGone = WaitFor(5000, [] { return !IsListening(kAdbServerPort) && !IsOwnAdbRunning(); });
    check.answers.Tell(L"adb.server-gone", bGone, L"no server",
                       bGone ? L"no server" : L"a process of adb, or somebody on its port");
}
