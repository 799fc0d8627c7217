// The pages behind the installation, which are reached by their number here: no watch is at hand.
#include "check/Hands.h"
#include "check/Stopping.h"
#include "check/Walk.h"

#include <commctrl.h>

#include <format>

// In FirstPages.cpp.
void LookAtTick(const CWalk& walk, int nPage);

namespace {

constexpr int kLast = 14;

void EscapeOnLastPage(const CWalk& walk)
{
    walk.Press(VK_ESCAPE);
    Pause(300);
    const int nPage = walk.Rest().Number();
    walk.Check().answers.Tell(L"frame.escape-hidden", nPage == kLast, L"page 14", std::format(L"page {}", nPage));
}

void BackFromLastPage(const CWalk& walk)
{
    CAnswers& answers = walk.Check().answers;
    walk.PressButton(PSBTN_BACK);
    const SIGHT sight = walk.WaitForPage(kLast - 1);
    answers.Tell(L"frame.back-from-last", walk.HasButtons(kReady), ButtonNames(kReady), ButtonNames(sight.Buttons()),
                 sight.frame.window.hwnd);
    walk.GoOn();
    const bool bSame = walk.HasButtons(kBack | kFinish);
    answers.Tell(L"frame.last-again", bSame, ButtonNames(kBack | kFinish), ButtonNames(walk.Look().Buttons()));
}

void Finish(CWalk& walk)
{
    CAnswers& answers = walk.Check().answers;
    walk.Press(VK_RETURN);
    if (!WaitFor(3000, [&] { return walk.Look().Number() == 0; })) {
        answers.Tell(L"frame.enter-last", false, L"the end of the wizard", L"page 14");
        walk.PressButton(PSBTN_FINISH);
    }
    answers.Tell(L"frame.enter-last", true, L"the end of the wizard", L"the end of the wizard");
    const std::optional<DWORD> dwCode = walk.Program().WaitForEnd();
    answers.Expect(L"end.finish", L"0", dwCode ? std::to_wstring(*dwCode) : L"it goes on running");
    answers.Expect(L"deploy.gone-finish", L"nothing", ListOf(ToolsFolder()));
}

} // namespace

void CheckLastPages(CHECK& check)
{
    CWalk walk(check);
    bool bReached = true;
    try {
        walk.JumpTo(8);
    } catch (const CLost& lost) {
        bReached = false;
        check.answers.Tell(L"frame.by-number", false, L"page 8", lost.szWhy);
    }
    if (!bReached) {
        throw CLost{L"the last pages cannot be reached without a watch"};
    }
    check.answers.Tell(L"frame.by-number", true, L"page 8", L"page 8");
    LookAtPage(walk, 8);
    check.answers.AddPicture(L"page 8", walk.Look().frame.window.hwnd);
    for (int nPage = 9; nPage < kLast; ++nPage) {
        walk.GoOn();
        LookAtPage(walk, nPage);
        LookAtTick(walk, nPage);
    }
    walk.GoOn();
    LookAtPage(walk, kLast);
    check.answers.AddPicture(L"page 14", walk.Look().frame.window.hwnd);
    EscapeOnLastPage(walk);
    BackFromLastPage(walk);
    Finish(walk);
}
