// The pages behind the installation, which are reached by their number here.
#include "check/Stopping.h"
#include "check/Walk.h"

#include <commctrl.h>

#include <format>

namespace {

constexpr int kLast = 14;

void EscapeOnLastPage(const CWalk& walk)
{
    walk.Press(VK_ESCAPE);
    Pause(300);
    walk.Answers().Expect(L"frame.escape-hidden", L"page 14", std::format(L"page {}", walk.Rest().Number()));
}

void BackFromLastPage(const CWalk& walk)
{
    walk.PressButton(PSBTN_BACK);
    walk.WaitForPage(kLast - 1);
    LookAtButtons(walk, L"frame.back-from-last", kReady);
    walk.GoOn();
    LookAtButtons(walk, L"frame.last-again", kBack | kFinish);
}

void Finish(const CWalk& walk)
{
    CAnswers& answers = walk.Answers();
    walk.Press(VK_RETURN);
    const bool bEnds = WaitFor(3000, [&] { return walk.Look().Number() == 0; });
    answers.Either(L"frame.enter-last", bEnds, L"the end of the wizard", L"page 14");
    if (!bEnds) {
        walk.PressButton(PSBTN_FINISH);
    }
    answers.Expect(L"end.finish", kEndedWell, walk.Program().WaitForEnd());
    answers.Expect(L"deploy.gone-finish", L"nothing", ListOf(ToolsFolder()));
}

// No watch is at hand to get there by.
void JumpBehindTheInstallation(const CWalk& walk)
{
    walk.JumpTo(8);
    const bool bShown = WaitFor(10000, [&] { return walk.Look().Number() == 8; });
    walk.Answers().Either(L"frame.by-number", bShown, L"page 8", std::format(L"page {}", walk.Look().Number()));
    walk.WaitForPage(8);
}

} // namespace

void CheckLastPages(CHECK& check)
{
    const CWalk walk(check);
    JumpBehindTheInstallation(walk);
    LookAtPage(walk, 8);
    check.answers.AddPicture(L"page 8", walk.Look().frame.window.hwnd);
    for (int nPage = 9; nPage < kLast; ++nPage) {
        walk.GoOn();
        LookAtPage(walk, nPage);
        LookAtTick(walk);
    }
    walk.GoOn();
    LookAtPage(walk, kLast);
    check.answers.AddPicture(L"page 14", walk.Look().frame.window.hwnd);
    EscapeOnLastPage(walk);
    BackFromLastPage(walk);
    Finish(walk);
}
