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
#include "tests/bench/Pages.h"
#include "tests/bench/Program.h"
#include "tests/bench/StopWatch.h"
#include "tests/kit/Request.h"

#include <commctrl.h>

#include <format>
#include <functional>
#include <iostream>
#include <stdexcept>
#include <vector>

namespace {

// Nothing takes longer, on a busy machine either.
constexpr double kPatience = 60'000;

constexpr int kNextButton = 0x3024;
constexpr int kFinishButton = 0x3025;

// How often the peak is looked up while nothing else happens.
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

class CWizard
{
public:
    explicit CWizard(std::wstring strTitle) : m_strTitle(std::move(strTitle)) {}

    // Until the window is there, and in it a control with that id; 0 for any window.
    HWND WaitForWindow(int nId) const
    {
        return WaitFor("a window", [&] {
            const HWND hwnd = FindWindowW(nullptr, m_strTitle.c_str());
            return hwnd != nullptr && IsWindowVisible(hwnd) && Listens(hwnd) && (nId == 0 || FindShown(hwnd, nId))
                       ? hwnd
                       : nullptr;
        });
    }

    void WaitUntilGone() const
    {
        WaitFor("a window to go",
                [&] { return FindWindowW(nullptr, m_strTitle.c_str()) == nullptr ? GetDesktopWindow() : nullptr; });
    }

private:
    // Whether its program takes messages, as it does when it has shown what it had to show.
    static bool Listens(HWND hwnd)
    {
        DWORD_PTR dwResult = 0;
        return SendMessageTimeoutW(hwnd, WM_NULL, 0, 0, SMTO_ABORTIFHUNG, 1000, &dwResult) != 0;
    }

    std::wstring m_strTitle;
};

// What the pages ask for.
struct ENTRIES
{
    std::wstring strAddress;
    std::wstring strPort;
    std::wstring strCode;
    std::wstring strPairingPort;
};

void Write(HWND hwndFrame, int nId, const std::wstring& strText)
{
    SendMessageW(FindShown(hwndFrame, nId), WM_SETTEXT, 0, reinterpret_cast<LPARAM>(strText.c_str()));
}

void FillIn(HWND hwndFrame, const PAGE& page, const ENTRIES& entries)
{
    if (page.nBox != 0) {
        SendMessageW(FindShown(hwndFrame, page.nBox), BM_CLICK, 0, 0);
    } else if (page.nBody == IDC_WIRELESS_DEBUGGING_ON_BODY) {
        Write(hwndFrame, IDC_WATCH_ADDRESS, entries.strAddress);
        Write(hwndFrame, IDC_WATCH_PORT, entries.strPort);
    } else if (page.nBody == IDC_PAIR_DEVICE_BODY) {
        Write(hwndFrame, IDC_PAIRING_CODE, entries.strCode);
        Write(hwndFrame, IDC_PAIRING_PORT, entries.strPairingPort);
    }
}

// What is done on a page before Next.
using FILL = std::function<void(HWND hwndFrame, const PAGE& page)>;

void GoThrough(HWND hwndFrame, const FILL& fill, CShowingProcess& process)
{
    for (const PAGE& page : kPages) {
        int nIdle = 0;
        const auto look = [&] {
            if (nIdle++ % kLooks == 0) {
                process.Look();
            }
        };
        WaitFor("a page", [&] { return FindShown(hwndFrame, page.nBody); }, look);
        fill(hwndFrame, page);
        const int nButton = page.nBody == IDC_FINISHED_BODY ? kFinishButton : kNextButton;
        const HWND hwndButton = WaitFor("a button", [&] { return FindShown(hwndFrame, nButton); }, look);
        PostMessageW(hwndButton, BM_CLICK, 0, 0);
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

std::string Show(const CWizard& wizard, const std::wstring& strCommand, int nBody)
{
    wizard.WaitUntilGone();
    const CStopWatch watch;
    const CProgram program(strCommand);
    const HWND hwnd = wizard.WaitForWindow(nBody);
    const double dTaken = watch.Milliseconds();
    const CShowingProcess process(hwnd);
    program.End();
    return std::format("{}\t{}", dTaken, process.MemoryPeak());
}

std::string DoJob(const CWizard& wizard, const std::wstring& strCommand, const FILL& fill)
{
    wizard.WaitUntilGone();
    const CStopWatch watch;
    const CProgram program(strCommand);
    const HWND hwndFrame = wizard.WaitForWindow(IDC_WELCOME_BODY);
    CShowingProcess process(hwndFrame);
    GoThrough(hwndFrame, fill, process);
    while (!program.EndsWithin(kLooks) && watch.Milliseconds() < kPatience) {
        process.Look();
    }
    return std::format("{}\t{}", process.Lifetime(), process.MemoryPeak());
}

std::string Answer(const CWizard& wizard, const std::vector<std::wstring>& words)
{
    if (words.size() == 2 && words[0] == L"run") {
        return Run(words[1]);
    }
    if (words.size() == 2 && words[0] == L"dialog") {
        return Show(wizard, words[1], 0);
    }
    if (words.size() == 2 && words[0] == L"start") {
        return Show(wizard, words[1], IDC_WELCOME_BODY);
    }
    if (words.size() == 2 && words[0] == L"pages") {
        return DoJob(wizard, words[1], [](HWND, const PAGE&) {});
    }
    if (words.size() == 6 && words[0] == L"job") {
        const ENTRIES entries = {words[2], words[3], words[4], words[5]};
        return DoJob(wizard, words[1], [&](HWND hwndFrame, const PAGE& page) { FillIn(hwndFrame, page, entries); });
    }
    throw std::runtime_error("this is no request");
}

} // namespace

int wmain(int argc, wchar_t** argv)
try {
    const CWizard wizard(argc == 2 ? argv[1] : L"");
    for (std::string strRequest; std::getline(std::cin, strRequest);) {
        std::cout << Answer(wizard, SplitRequest(strRequest)) << '\n' << std::flush;
    }
    return 0;
} catch (const std::exception& error) {
    std::cerr << error.what() << '\n';
    return 1;
}
