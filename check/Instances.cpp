// A second start.
#include "check/Hands.h"
#include "check/Redirect.h"
#include "check/Stopping.h"
#include "check/Walk.h"

#include <format>
#include <set>

namespace {

std::set<HWND> g_shown;

void CALLBACK OnShow(HWINEVENTHOOK, DWORD, HWND hwnd, LONG nObject, LONG nChild, DWORD, DWORD)
{
    if (nObject == OBJID_WINDOW && nChild == CHILDID_SELF && GetAncestor(hwnd, GA_PARENT) == GetDesktopWindow()) {
        g_shown.insert(hwnd);
    }
}

// Starts it again and waits for its end: what it showed, and its exit code.
std::pair<size_t, std::optional<DWORD>> StartAgain(CHECK& check)
{
    const SURROUNDINGS& surroundings = check.surroundings;
    g_shown.clear();
    const HWINEVENTHOOK hHook =
        SetWinEventHook(EVENT_OBJECT_SHOW, EVENT_OBJECT_SHOW, nullptr, OnShow, 0, 0, WINEVENT_OUTOFCONTEXT);
    std::optional<DWORD> dwCode;
    {
        const CInstaller second(surroundings, check.program.parent_path() / L"Second.exe");
        // Out-of-context hooks are served between messages.
        WaitFor(20000, [&] {
            MSG message;
            while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
                DispatchMessageW(&message);
            }
            return second.HasEnded();
        });
        dwCode = second.WaitForEnd(0);
        std::erase_if(g_shown, [&](HWND hwnd) {
            DWORD dwProcess = 0;
            GetWindowThreadProcessId(hwnd, &dwProcess);
            return dwProcess != 0 && dwProcess != second.Process();
        });
    }
    UnhookWinEvent(hHook);
    return {g_shown.size(), dwCode};
}

// Something else that has the keyboard.
class COtherWindow
{
public:
    COtherWindow()
        : m_hwnd(CreateWindowExW(0, L"STATIC", L"Something else", WS_POPUP | WS_CAPTION | WS_VISIBLE, 400, 0, 300, 80,
                                 nullptr, nullptr, nullptr, nullptr))
    {
        BringForward(m_hwnd);
    }
    ~COtherWindow()
    {
        DestroyWindow(m_hwnd);
    }
    COtherWindow(const COtherWindow&) = delete;
    COtherWindow& operator=(const COtherWindow&) = delete;

private:
    HWND m_hwnd;
};

} // namespace

void CheckInstances(CHECK& check)
{
    CAnswers& answers = check.answers;
    const CPath second = check.program.parent_path() / L"Second.exe";
    copy_file(check.program, second, std::filesystem::copy_options::overwrite_existing);
    {
        CWalk walk(check);
        const HWND hwndWizard = walk.Look().frame.window.hwnd;
        const COtherWindow other;
        const bool bBehind = WaitFor(2000, [&] { return GetForegroundWindow() != hwndWizard; });
        const auto [nShown, dwCode] = StartAgain(check);
        answers.Expect(L"instance.code", L"0", dwCode ? std::to_wstring(*dwCode) : L"it goes on running");
        answers.Expect(L"instance.silent", L"0 windows", std::format(L"{} windows", nShown));
        const bool bFront = WaitFor(3000, [&] { return GetForegroundWindow() == hwndWizard; });
        if (bBehind) {
            answers.Tell(L"instance.front", bFront, L"the first wizard in front",
                         bFront ? L"the first wizard in front" : L"another window in front");
        } else {
            answers.NotTried(L"instance.front", L"no other window could be brought before the wizard");
        }
        answers.Expect(L"instance.tools", L"5", std::to_wstring(NamesIn(ToolsFolder()).size()));
    }
    // A copy for which every Windows is too old shows a box with the title.
    const CPath old = check.program.parent_path() / L"Old.exe";
    CopyRedirected(check.program, old, "VerifyVersionInfoW", "GetThreadId");
    const CInstaller program(check.surroundings, old);
    WaitFor(20000, [&] { return !program.Look().boxes.empty() || program.HasEnded(); });
    const SIGHT sight = program.Look();
    const std::wstring szMessage = sight.boxes.empty() ? L"no box" : MessageOf(sight.boxes.front());
    answers.Tell(L"end.old-windows", szMessage.starts_with(L"This application requires Windows 10 Version 2004"),
                 L"This application requires Windows 10 Version 2004 ...", szMessage);
    if (sight.boxes.empty()) {
        throw CLost{L"the box about an old Windows did not come"};
    }
    const TREE& box = sight.boxes.front();
    {
        const COtherWindow other;
        StartAgain(check);
        const bool bFront = WaitFor(3000, [&] { return GetForegroundWindow() == box.window.hwnd; });
        answers.Tell(L"instance.front-box", bFront, L"the box of the first in front",
                     bFront ? L"the box of the first in front" : L"another window in front");
    }
    Press(program.Process(), VK_RETURN);
    const std::optional<DWORD> dwCode = program.WaitForEnd(10000);
    answers.Expect(L"end.old-windows-code", L"0", dwCode ? std::to_wstring(*dwCode) : L"it goes on running");
}
