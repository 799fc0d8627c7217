#include "check/Busy.h"

#include "check/Hands.h"
#include "check/Stopping.h"
#include "driver/Reading.h"

#include <commctrl.h>

#include <format>

namespace {

// What the system shows in the place of a window that does not answer.
constexpr PCWSTR kGhostClass = L"Ghost";

constexpr DWORD kLongestWork = 90000;

// Behind all that is said quickly.
constexpr ULONGLONG kUntilImpatient = 2000;

// A page that still says the same and listens has not taken the click.
constexpr ULONGLONG kUntilPressed = 4000;

bool IsGhosted()
{
    const HWND hwnd = FindWindowW(kGhostClass, nullptr);
    return hwnd != nullptr && IsWindowVisible(hwnd) && TitleOf(hwnd).starts_with(kTitle);
}

// Into the corner of the page, where nothing is.
void ClickOnPage(HWND hwndPage)
{
    RECT rect = {};
    GetWindowRect(hwndPage, &rect);
    Click({rect.left, rect.top, rect.left + 4, rect.top + 4});
}

// The status line is all that may still change when the wizard listens again.
bool Listens(const SIGHT& sight)
{
    return sight.frame.window.hwnd != nullptr && Ask(sight.frame.window.hwnd, WM_NULL, 0, 0).has_value();
}

} // namespace

WORK PressNextAndWatch(const CWalk& walk, PATIENCE nPatience)
{
    WORK work = {};
    const SIGHT first = walk.Rest();
    const int nPage = first.Number();
    CStatusWatch watch(first);
    const ULONGLONG nStart = GetTickCount64();
    const auto Milliseconds = [nStart] { return GetTickCount64() - nStart; };
    bool bClicks = nPatience == PATIENCE::kImpatient;
    bool bPressed = false;
    walk.ClickControl(kNextId);
    const bool bOver = WaitFor(kLongestWork, [&] {
        const SIGHT sight = walk.Look();
        work.bGhost = work.bGhost || IsGhosted();
        if (!sight.boxes.empty()) {
            const TREE box = walk.WaitForBox();
            work.boxes.push_back(WordsOf(box));
            walk.Answers().AddPicture(box.window.szText, box.window.hwnd);
            walk.Dismiss(box);
            return false;
        }
        if (sight.Number() == 0 || sight.Number() != nPage) {
            return sight.Number() != 0;
        }
        const bool bSaysNothing = work.boxes.empty() && sight.Status() == first.Status();
        if (!bPressed && bSaysNothing && Milliseconds() > kUntilPressed && Listens(sight)) {
            walk.PressButton(PSBTN_NEXT);
            bPressed = true;
        }
        if (bClicks && Milliseconds() > kUntilImpatient) {
            ClickOnPage(sight.hwndPage);
            bClicks = false;
        }
        // What ends here ends with a box.
        return !work.boxes.empty() && Listens(sight) && walk.Look().boxes.empty();
    });
    if (!bOver) {
        throw CLost{std::format(L"page {} works without an end: {}", nPage, watch.End().Texts())};
    }
    work.nMilliseconds = Milliseconds();
    work.nPage = walk.Rest().Number();
    work.said = watch.End();
    return work;
}
