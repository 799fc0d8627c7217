// A second start.
#include "check/Hands.h"
#include "check/Redirect.h"
#include "check/Stopping.h"
#include "check/Walk.h"

#include <format>
#include <memory>
#include <set>

namespace {

std::set<HWND> g_shown;

void CALLBACK OnShow(HWINEVENTHOOK /*hHook*/, DWORD /*nEvent*/, HWND hwnd, LONG nObject, LONG nChild,
                     DWORD /*dwThread*/, DWORD /*dwTime*/)
{
    if (nObject == OBJID_WINDOW && nChild == CHILDID_SELF && GetAncestor(hwnd, GA_PARENT) == GetDesktopWindow()) {
        g_shown.insert(hwnd);
    }
}

using CHook =
    std::unique_ptr<std::remove_pointer_t<HWINEVENTHOOK>, decltype([](HWINEVENTHOOK hHook) { UnhookWinEvent(hHook); })>;
using CWindow = std::unique_ptr<std::remove_pointer_t<HWND>, decltype([](HWND hwnd) { DestroyWindow(hwnd); })>;

// Another copy than the one that runs.
CPath SecondProgram(const CHECK& check)
{
    return check.program.parent_path() / L"Second.exe";
}

struct SECOND
{
    size_t nShown; // windows
    std::wstring szEnd;
};

// Starts it again and waits for its end.
SECOND StartAgain(const CHECK& check)
{
    g_shown.clear();
    const CHook hHook(
        SetWinEventHook(EVENT_OBJECT_SHOW, EVENT_OBJECT_SHOW, nullptr, OnShow, 0, 0, WINEVENT_OUTOFCONTEXT));
    const CInstaller second(check.szThrough, SecondProgram(check));
    // Out-of-context hooks are served between messages.
    WaitFor(20000, [&] {
        MSG message;
        while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
            DispatchMessageW(&message);
        }
        return second.HasEnded();
    });
    // Those that are gone again nobody owns any more.
    std::erase_if(g_shown, [&](HWND hwnd) { return ProcessOf(hwnd) != 0 && ProcessOf(hwnd) != second.Process(); });
    return {g_shown.size(), second.WaitForEnd(0)};
}

bool ComesToTheFront(HWND hwnd)
{
    return WaitFor(3000, [hwnd] { return GetForegroundWindow() == hwnd; });
}

// Something else that has the keyboard.
CWindow OtherWindow()
{
    CWindow hwnd(CreateWindowExW(0, L"STATIC", L"Something else", WS_POPUP | WS_CAPTION | WS_VISIBLE, 400, 0, 300, 80,
                                 nullptr, nullptr, nullptr, nullptr));
    BringForward(hwnd.get());
    return hwnd;
}

void BesideTheWizard(CHECK& check)
{
    CAnswers& answers = check.answers;
    const CWalk walk(check);
    const HWND hwndWizard = walk.Look().frame.window.hwnd;
    const CWindow other = OtherWindow();
    const bool bBehind = WaitFor(2000, [&] { return GetForegroundWindow() != hwndWizard; });
    const SECOND second = StartAgain(check);
    answers.Expect(L"instance.code", kEndedWell, second.szEnd);
    answers.Expect(L"instance.silent", L"0 windows", std::format(L"{} windows", second.nShown));
    if (bBehind) {
        answers.Either(L"instance.front", ComesToTheFront(hwndWizard), L"the first wizard in front",
                       L"another window in front");
    } else {
        answers.NotTried(L"instance.front", L"no other window could be brought before the wizard");
    }
    answers.Expect(L"instance.tools", L"5", std::to_wstring(NamesIn(ToolsFolder()).size()));
}

// A copy for which every Windows is too old shows a box with the title.
void BesideABox(CHECK& check)
{
    CAnswers& answers = check.answers;
    const CPath old = check.program.parent_path() / L"Old.exe";
    CopyRedirected(check.program, old, "VerifyVersionInfoW", "GetThreadId");
    const CWalk walk(check, old, CWalk::kAnything);
    const TREE box = walk.WaitForBox();
    const std::wstring szOld = std::wstring(kTitle) + L": This application requires Windows 10 Version 2004";
    answers.Tell(L"end.old-windows", WordsOf(box).starts_with(szOld), szOld + L" ...", WordsOf(box));
    {
        const CWindow other = OtherWindow();
        StartAgain(check);
        answers.Either(L"instance.front-box", ComesToTheFront(box.window.hwnd), L"the box of the first in front",
                       L"another window in front");
    }
    walk.Dismiss(box);
    answers.Expect(L"end.old-windows-code", kEndedWell, walk.Program().WaitForEnd(10000));
}

} // namespace

void CheckInstances(CHECK& check)
{
    copy_file(check.program, SecondProgram(check), std::filesystem::copy_options::overwrite_existing);
    BesideTheWizard(check);
    BesideABox(check);
}
