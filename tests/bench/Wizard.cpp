// Goes through the wizard as fast as the wizard lets it, and tells how long that took. Unlike a person it asks the
// windows and sends them messages, so that what is measured is the program and not the one in front of it.
//
//     bench-wizard TITLE
//
// TITLE is that of the windows to wait for. A request is a line on standard input (UTF-8, tabs between its words):
//   run COMMAND                              runs a program to its end; answers with the milliseconds
//   dialog COMMAND                           starts a program, waits for its window, then ends it; answers with the
//                                            milliseconds until then, and the most memory that it has had, in KiB
//   start COMMAND                            the same of the installer, whose first page is waited for
//   pages COMMAND                            starts a wizard whose pages want nothing, goes through all
//                                            of them, waits for its end; answers as job does
//   job COMMAND ADDRESS PORT CODE PORT       starts the installer, goes through all pages, waits for its end; answers
//                                            with the milliseconds that its process has lived, and the most memory
// Ends with 1, after a line on standard error, when something does not come. The end of the input ends it.
#include "tests/bench/Program.h"
#include "tests/bench/StopWatch.h"
#include "tests/driver/Pages.h"
#include "tests/kit/Request.h"

#include <commctrl.h>

#include <algorithm>
#include <format>
#include <functional>
#include <iostream>
#include <span>
#include <stdexcept>
#include <vector>

namespace {

// Nothing takes longer, on a busy machine either.
constexpr double kPatience = 60'000;

// How often the peak is looked up: each time in so many looks at the windows, or after so many milliseconds.
constexpr int kLooks = 16;

// A look asks Windows about every control, and while it is answered, the installer's own questions wait. Pages come
// quickly; what takes longer than that is adb's work.
DWORD PauseBetweenLooks(const CStopWatch& watch)
{
    constexpr double kQuick = 100;
    return watch.Milliseconds() < kQuick ? 1 : 10;
}

// Looks again and again until there is something to see; `idle` passes the time.
HWND WaitFor(const char* pszWhat, const std::function<HWND()>& look, const std::function<void()>& idle = [] {})
{
    const CStopWatch watch;
    for (;;) {
        if (const HWND hwnd = look()) {
            return hwnd;
        }
        if (watch.Milliseconds() > kPatience) {
            throw std::runtime_error(std::format("waited in vain for {}", pszWhat));
        }
        idle();
        Sleep(PauseBetweenLooks(watch));
    }
}

// The control with that id, at any depth, while it is to be seen.
HWND FindShown(HWND hwndParent, int nId)
{
    struct SEARCH
    {
        int nId;
        HWND hwndFound;
    } search = {nId, nullptr};
    EnumChildWindows(
        hwndParent,
        [](HWND hwnd, LPARAM lParam) -> BOOL {
            SEARCH& wanted = *reinterpret_cast<SEARCH*>(lParam);
            if (GetDlgCtrlID(hwnd) == wanted.nId && IsWindowVisible(hwnd)) {
                wanted.hwndFound = hwnd;
            }
            return wanted.hwndFound == nullptr;
        },
        reinterpret_cast<LPARAM>(&search));
    return search.hwndFound;
}

// Whether its program takes messages, as it does when it has shown what it had to show.
bool Listens(HWND hwnd)
{
    DWORD_PTR dwResult = 0;
    return SendMessageTimeoutW(hwnd, WM_NULL, 0, 0, SMTO_ABORTIFHUNG, 1000, &dwResult) != 0;
}

// Until the window is there, and in it a control with that id; 0 for any window.
HWND WaitForWindow(PCWSTR pszTitle, int nId)
{
    return WaitFor("a window", [&] {
        const HWND hwnd = FindWindowW(nullptr, pszTitle);
        const bool bThere = hwnd != nullptr && IsWindowVisible(hwnd) && Listens(hwnd);
        return bThere && (nId == 0 || FindShown(hwnd, nId)) ? hwnd : nullptr;
    });
}

void WaitUntilGone(PCWSTR pszTitle)
{
    WaitFor("a window to go", [&] { return FindWindowW(nullptr, pszTitle) == nullptr ? GetDesktopWindow() : nullptr; });
}

void Write(HWND hwndFrame, int nId, const std::wstring& strText)
{
    SendMessageW(FindShown(hwndFrame, nId), WM_SETTEXT, 0, reinterpret_cast<LPARAM>(strText.c_str()));
}

// Does what a page asks for; the entries are address, port, code and the port for it.
void FillIn(HWND hwndFrame, const PAGE& page, std::span<const std::wstring> entries)
{
    if (page.nBodyId == IDC_WIRELESS_DEBUGGING_ON_BODY) {
        Write(hwndFrame, IDC_WATCH_ADDRESS, entries[0]);
        Write(hwndFrame, IDC_WATCH_PORT, entries[1]);
    } else if (page.nBodyId == IDC_PAIR_DEVICE_BODY) {
        Write(hwndFrame, IDC_PAIRING_CODE, entries[2]);
        Write(hwndFrame, IDC_PAIRING_PORT, entries[3]);
    } else if (page.nBoxId != 0) {
        SendMessageW(FindShown(hwndFrame, page.nBoxId), BM_CLICK, 0, 0);
    }
}

// Without entries the pages ask for nothing.
void GoThrough(HWND hwndFrame, std::span<const std::wstring> entries, const std::function<void()>& look)
{
    int nIdle = 0;
    const auto idle = [&] {
        if (nIdle++ % kLooks == 0) {
            look();
        }
    };
    for (const PAGE& page : kPages) {
        WaitFor("a page", [&] { return FindShown(hwndFrame, page.nBodyId); }, idle);
        if (!entries.empty()) {
            FillIn(hwndFrame, page, entries);
        }
        const int nButton = page.nBodyId == IDC_FINISHED_BODY ? kFinishId : kNextId;
        PostMessageW(WaitFor("a button", [&] { return FindShown(hwndFrame, nButton); }, idle), BM_CLICK, 0, 0);
    }
}

std::string Run(const std::wstring& strCommand)
{
    const CStopWatch watch;
    if (!CProgram(strCommand).EndsWithin(static_cast<DWORD>(kPatience))) {
        throw std::runtime_error("waited in vain for a program to end");
    }
    return std::format("{}", watch.Milliseconds());
}

std::string Show(PCWSTR pszTitle, const std::wstring& strCommand, int nBodyId)
{
    WaitUntilGone(pszTitle);
    const CStopWatch watch;
    const CProgram program(strCommand);
    const HWND hwnd = WaitForWindow(pszTitle, nBodyId);
    const double dTaken = watch.Milliseconds();
    const size_t nPeak = MemoryPeak(OpenOwner(hwnd));
    program.End();
    return std::format("{}\t{}", dTaken, nPeak);
}

std::string DoJob(PCWSTR pszTitle, const std::wstring& strCommand, std::span<const std::wstring> entries)
{
    WaitUntilGone(pszTitle);
    const CStopWatch watch;
    const CProgram program(strCommand);
    const HWND hwndFrame = WaitForWindow(pszTitle, IDC_WELCOME_BODY);
    const CHandle hProcess = OpenOwner(hwndFrame);
    size_t nPeak = 0;
    const auto look = [&] { nPeak = std::max(nPeak, MemoryPeak(hProcess)); };
    look();
    GoThrough(hwndFrame, entries, look);
    while (!program.EndsWithin(kLooks) && watch.Milliseconds() < kPatience) {
        look();
    }
    return std::format("{}\t{}", Lifetime(hProcess), nPeak);
}

std::string Answer(PCWSTR pszTitle, const std::vector<std::wstring>& words)
{
    if (words.size() == 2 && words[0] == L"run") {
        return Run(words[1]);
    }
    if (words.size() == 2 && words[0] == L"dialog") {
        return Show(pszTitle, words[1], 0);
    }
    if (words.size() == 2 && words[0] == L"start") {
        return Show(pszTitle, words[1], IDC_WELCOME_BODY);
    }
    if ((words.size() == 2 && words[0] == L"pages") || (words.size() == 6 && words[0] == L"job")) {
        return DoJob(pszTitle, words[1], std::span(words).subspan(2));
    }
    throw std::runtime_error("this is no request");
}

} // namespace

int wmain(int argc, wchar_t** argv)
try {
    for (std::string strRequest; std::getline(std::cin, strRequest);) {
        std::cout << Answer(argc == 2 ? argv[1] : L"", SplitRequest(strRequest)) << '\n' << std::flush;
    }
    return 0;
} catch (const std::exception& error) {
    std::cerr << error.what() << '\n';
    return 1;
}
