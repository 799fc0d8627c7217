// Finds out whether the installer does on this Windows what it is said to do.
//
//   Check.exe                          asks before it begins, and shows its report in the end
//   Check.exe --unattended ...         asks and shows nothing
//     --through PROGRAM                starts the installer through that program, see Installer.h
//     --not-tried "ID REASON"          a claim that cannot be answered here; any number of them
//     --told SENTENCE                  stands in the report, which is not one of plain Windows
//     --only STEP                      no other steps than those that are named so
//     --program FILE                   another installer than the one in the folder "parts"
//
// Ends with 0 when all that was tried holds, 1 when something does not, 2 when it refuses to begin, 3 when it was
// cancelled, 4 when the reports could not be written. They and what it says of 2 and 4 stand beside this program.
#include "check/Check.h"
#include "check/Hands.h"
#include "check/Installer.h"
#include "check/Listener.h"
#include "check/Machine.h"
#include "check/Progress.h"
#include "check/Report.h"
#include "check/Stopping.h"
#include "driver/Json.h"
#include "kit/Request.h"

#include <objbase.h>
#include <shellapi.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <format>
#include <functional>
#include <map>
#include <thread>

namespace {

constexpr PCWSTR kCaption = L"KALVO Windows check";

constexpr PCWSTR kConsent =
    L"This checks on your computer what the installer of the watch client is said to do, and takes about five "
    L"minutes.\n\n"
    L"Meanwhile\n"
    L"\x2022 it uses the mouse and the keyboard: please leave both alone;\n"
    L"\x2022 it starts and ends the installer, and starts and stops adb's server: please close other programs that use "
    L"adb;\n"
    L"\x2022 it uses no network but this computer's own address, 127.0.0.1;\n"
    L"\x2022 it uses the clipboard and puts its text back.\n\n"
    L"You can cancel it at any time in the small window at the top left. It leaves nothing behind but its report, "
    L"beside this program: report.html and report.json. The report names neither you nor your computer; its pictures "
    L"show the installer and whatever lies over it.";

constexpr std::array kSteps = {
    STEP{L"units", L"Unit tests", L"unit", CheckUnits},
    STEP{L"system", L"Echo and connections", L"system", CheckSystem},
    STEP{L"first-pages", L"Frame and first pages", L"frame about box page-01 page-02 page-03 page-04", CheckFirstPages},
    STEP{L"last-pages", L"Last pages", L"frame page-08 page-09 page-10 page-11 page-12 page-13 page-14",
         CheckLastPages},
    STEP{L"working-pages", L"Address, pairing and package",
         L"address number connect pair install box page-05 page-06 page-07", CheckWorkingPages},
    STEP{L"adb", L"What adb prints", L"adb", CheckAdb},
    STEP{L"deployment", L"Tools on the disk", L"deploy", CheckDeployment},
    STEP{L"instances", L"Second starts", L"instance", CheckInstances},
    STEP{L"ends", L"Ends", L"end", CheckEnds},
    STEP{L"loader", L"Libraries beside the program", L"loader", CheckLoader},
};

struct OPTIONS
{
    bool bUnattended = false;
    std::wstring szThrough;
    std::vector<std::pair<std::wstring, std::wstring>> notTried;
    std::vector<std::wstring> told;
    std::vector<std::wstring> only;
    CPath program = PartsFolder() / L"KalvoApkInstaller.exe";
};

// Throws CLost for arguments that make no sense; what stands before them is read then.
void ReadOptions(OPTIONS& options)
{
    int nArguments = 0;
    LPWSTR* const ppszArguments = CommandLineToArgvW(GetCommandLineW(), &nArguments);
    const std::vector<std::wstring> arguments(ppszArguments + 1, ppszArguments + nArguments);
    LocalFree(static_cast<HLOCAL>(ppszArguments));
    const std::map<std::wstring, std::function<void(const std::wstring&)>> takers = {
        {L"--through", [&](const std::wstring& szValue) { options.szThrough = szValue; }},
        {L"--not-tried",
         [&](const std::wstring& szValue) {
             const size_t nEnd = std::min(szValue.find(L' '), szValue.size());
             options.notTried.emplace_back(szValue.substr(0, nEnd), szValue.substr(nEnd));
         }},
        {L"--told", [&](const std::wstring& szValue) { options.told.push_back(szValue); }},
        {L"--only", [&](const std::wstring& szValue) { options.only.push_back(szValue); }},
        {L"--program", [&](const std::wstring& szValue) { options.program = szValue; }},
    };
    for (size_t n = 0; n < arguments.size(); ++n) {
        if (arguments[n] == L"--unattended") {
            options.bUnattended = true;
        } else if (const auto taker = takers.find(arguments[n]); taker != takers.end() && n + 1 < arguments.size()) {
            taker->second(arguments[++n]);
        } else {
            throw CLost{L"The argument " + arguments[n] + L" makes no sense."};
        }
    }
    for (const std::wstring& szStep : options.only) {
        if (std::ranges::find(kSteps, szStep, &STEP::pszId) == kSteps.end()) {
            throw CLost{L"There is no step " + szStep + L"."};
        }
    }
}

bool IsChosen(const OPTIONS& options, const STEP& step)
{
    return options.only.empty() || std::ranges::find(options.only, step.pszId) != options.only.end();
}

// One step, whatever becomes of it.
void RunStep(CHECK& check, const STEP& step)
{
    std::wstring szWhy = L"the step ended before it was looked at";
    const auto NoteEnd = [&](const std::wstring& szReason) {
        szWhy = std::format(L"the step \"{}\" could not go on: {}", step.pszName, szReason);
        check.answers.m_notes.push_back(szWhy);
    };
    try {
        step.pfnRun(check);
    } catch (const CLost& lost) {
        NoteEnd(lost.szWhy);
    } catch (const std::exception& error) {
        NoteEnd(FromUtf8(error.what()));
    }
    RemoveTools();
    // A claim of the group that a later step looks at is then told anew.
    check.answers.GroupsNotTried(step.pszGroups, szWhy);
}

// Returns false when the user cancelled.
bool RunSteps(CHECK& check, const OPTIONS& options, CProgress& progress)
{
    try {
        const CKeptClipboard clipboard;
        for (size_t n = 0; n < kSteps.size(); ++n) {
            if (IsChosen(options, kSteps[n])) {
                progress.Tell(static_cast<int>(n), kSteps[n].pszName);
                Pause(0);
                RunStep(check, kSteps[n]);
            }
        }
        return true;
    } catch (const CStopped&) {
        RemoveTools();
        return false;
    }
}

// What is left when all is over.
void LookAtRemains(CAnswers& answers, CWorkFolder& work, const std::optional<std::wstring>& szClipboard)
{
    const CUnstoppable tidying;
    const bool bEnded = WaitFor(5000, [] { return !IsRunning(L"KalvoApkInstaller.exe") && !IsRunning(L"adb.exe"); });
    answers.Either(L"tidy.processes", bEnded, L"none", L"the installer, or adb");
    const bool bRemoved = work.Remove() && NamesIn(ToolsFolder()).empty();
    answers.Either(L"tidy.files", bRemoved, L"none",
                   std::format(L"copies: {}; tools: {}; adb's key: {}", ListOf(work.Path()), ListOf(ToolsFolder()),
                               ListOf(AdbKeyFolder())));
    answers.Either(L"tidy.port", !IsListening(kAdbServerPort), L"nobody", L"somebody");
    answers.Either(L"tidy.clipboard", ClipboardText() == szClipboard, L"the same", L"another text, or none");
}

// Unattended it is printed, and written where that can be.
void Refuse(const OPTIONS& options, const std::wstring& szWhy)
{
    if (!options.bUnattended) {
        MessageBoxW(nullptr, szWhy.c_str(), kCaption, MB_OK | MB_ICONINFORMATION);
        return;
    }
    std::fprintf(stderr, "%s\n", ToUtf8(szWhy).c_str());
    try {
        WriteBytes(OwnFolder() / L"refused.txt", ToUtf8(szWhy));
    } catch (const CLost& lost) {
        std::fprintf(stderr, "%s\n", ToUtf8(lost.szWhy).c_str());
    }
}

std::wstring VersionOf(const CPath& program)
{
    DWORD dwUnused = 0;
    std::string bytes(GetFileVersionInfoSizeExW(0, program.c_str(), &dwUnused), '\0');
    VS_FIXEDFILEINFO* pInfo = nullptr;
    UINT cb = 0;
    if (bytes.empty() ||
        !GetFileVersionInfoExW(0, program.c_str(), 0, static_cast<DWORD>(bytes.size()), bytes.data()) ||
        !VerQueryValueW(bytes.data(), L"\\", reinterpret_cast<void**>(&pInfo), &cb)) {
        return L"unknown";
    }
    return std::format(L"{}.{}.{}", HIWORD(pInfo->dwFileVersionMS), LOWORD(pInfo->dwFileVersionMS),
                       HIWORD(pInfo->dwFileVersionLS));
}

// The whole check on a thread of its own, while this one shows how far it is.
RUN RunCheck(const OPTIONS& options, CAnswers& answers)
{
    RUN run = {VersionOf(options.program), DescribeMachine(), options.told, false, 0};
    const ULONGLONG nStart = GetTickCount64();
    const HWND hwndFront = GetForegroundWindow();
    const std::optional<std::wstring> szClipboard = ClipboardText();
    CWorkFolder work;
    const CPath copy = CopyIntoFolder(options.program, work.Path() / L"program");
    {
        CProgress progress(static_cast<int>(kSteps.size()));
        const CHandle hEnd(CreateEventW(nullptr, TRUE, FALSE, nullptr));
        std::thread thread([&] {
            CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
            CHECK check = {answers, options.szThrough, work, copy};
            run.bCancelled = !RunSteps(check, options, progress);
            LookAtRemains(answers, work, szClipboard);
            CoUninitialize();
            SetEvent(hEnd.get());
        });
        progress.RunUntil(hEnd.get());
        thread.join();
    }
    SetForegroundWindow(hwndFront);
    for (const STEP& step : kSteps) {
        answers.GroupsNotTried(step.pszGroups,
                               run.bCancelled ? L"the check was cancelled before" : L"the step was not chosen");
    }
    run.nSeconds = (GetTickCount64() - nStart) / 1000;
    return run;
}

int Check(const OPTIONS& options)
{
    if (const std::wstring szWhy = ReasonToRefuse(); !szWhy.empty()) {
        Refuse(options, szWhy);
        return 2;
    }
    const CHandle hMutex(CreateMutexW(nullptr, FALSE, kCheckMutex));
    if (!options.bUnattended && MessageBoxW(nullptr, kConsent, kCaption, MB_OKCANCEL) != IDOK) {
        return 3;
    }
    CAnswers answers;
    for (const auto& [szId, szReason] : options.notTried) {
        answers.Exclude(szId, szReason);
    }
    const RUN run = RunCheck(options, answers);
    try {
        WriteReport(OwnFolder(), answers, run);
    } catch (const CLost& lost) {
        Refuse(options, L"There is no report: " + lost.szWhy + L". Please unpack the archive into a folder of yours.");
        return 4;
    }
    if (!options.bUnattended && !run.bCancelled) {
        ShellExecuteW(nullptr, L"open", (OwnFolder() / L"report.html").c_str(), nullptr, nullptr, SW_SHOWNORMAL);
    }
    if (run.bCancelled) {
        return 3;
    }
    return answers.Count(ANSWER::kDoesNotHold) == 0 ? 0 : 1;
}

} // namespace

int WINAPI wWinMain(HINSTANCE /*hInstance*/, HINSTANCE /*hPrevious*/, PWSTR /*pszArguments*/, int /*nShow*/)
{
    SetProcessDpiAwarenessContext(DPI_AWARENESS_CONTEXT_PER_MONITOR_AWARE_V2);
    WSADATA data = {};
    WSAStartup(MAKEWORD(2, 2), &data);
    OPTIONS options;
    try {
        ReadOptions(options);
        return Check(options);
    } catch (const CLost& lost) {
        Refuse(options, lost.szWhy);
        return 2;
    }
}
