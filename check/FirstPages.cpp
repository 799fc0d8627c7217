// The frame, and the pages that come before anything is sent.
#include "check/Hands.h"
#include "check/Stopping.h"
#include "check/Walk.h"
#include "check/resource.h"

#include <commctrl.h>

#include <format>

namespace {

std::wstring SizeOf(const RECT& rect)
{
    return std::format(L"{} x {}", rect.right - rect.left, rect.bottom - rect.top);
}

// What the pages' templates ask for, as this system measures it in a dialog of their font.
std::wstring SizeOfPages()
{
    const HWND hwnd = CreateDialogParamW(nullptr, MAKEINTRESOURCEW(IDD_PROGRESS), nullptr, nullptr, 0);
    RECT rect = {0, 0, 367, 223};
    MapDialogRect(hwnd, &rect);
    DestroyWindow(hwnd);
    return SizeOf(rect);
}

std::wstring KeyboardAt(int nId)
{
    return std::format(L"the keyboard at control {}", nId);
}

// Says whether the keyboard came to be there.
void LookAtKeyboard(const CWalk& walk, PCWSTR pszClaim, int nId)
{
    WaitFor(2000, [&] { return walk.Look().FocusId() == nId; });
    walk.Answers().Expect(pszClaim, KeyboardAt(nId), KeyboardAt(walk.Look().FocusId()));
}

void LookAtFrame(const CWalk& walk)
{
    CAnswers& answers = walk.Answers();
    const SIGHT sight = walk.Rest();
    const PART& frame = sight.frame.window;
    answers.m_notes.push_back(L"The windows of page 1:\n" + Describe(sight.frame));
    answers.Expect(L"frame.class", L"NativeHWNDHost", frame.szClass, frame.hwnd);
    answers.Expect(L"frame.caption", kTitle, frame.szText, frame.hwnd);
    RECT page = {};
    GetClientRect(sight.hwndPage, &page);
    answers.Expect(L"frame.page-size", SizeOfPages(), SizeOf(page), frame.hwnd);
    answers.Either(L"frame.task-bar",
                   GetWindow(frame.hwnd, GW_OWNER) == nullptr &&
                       (GetWindowLongW(frame.hwnd, GWL_EXSTYLE) & WS_EX_TOOLWINDOW) == 0,
                   L"an own window that the task bar shows", L"a tool's window, or one with an owner");
    answers.Either(L"frame.front", sight.hwndForeground == frame.hwnd, L"the wizard in front",
                   L"another window in front", frame.hwnd);
    answers.Expect(L"frame.first-post", KeyboardAt(kNextId), KeyboardAt(sight.FocusId()), frame.hwnd);
    answers.Either(L"frame.second-post", (sight.Buttons() & kBack) == 0, L"no arrow", L"an arrow", frame.hwnd);
}

void LookAtAbout(const CWalk& walk)
{
    CAnswers& answers = walk.Answers();
    walk.ClickControl(IDC_ABOUT);
    const TREE box = walk.WaitForBox(5000);
    answers.AddPicture(L"the About box", box.window.hwnd);
    const std::wstring szWords = WordsOf(box);
    answers.Tell(L"about.box",
                 szWords.starts_with(L"About: " + std::wstring(kTitle)) &&
                     szWords.find(L"Version: ") != std::wstring::npos,
                 L"\"About\", the title and the version", szWords, box.window.hwnd);
    answers.Expect(L"about.texts", L"nothing", CutTexts(box), box.window.hwnd);
    walk.Dismiss(box);
    LookAtKeyboard(walk, L"about.keyboard", IDC_ABOUT);
}

std::wstring PageAndBoxes(const SIGHT& sight)
{
    return std::format(L"page {} and {} boxes", sight.Number(), sight.boxes.size());
}

// The keyboard is on Next again, as it was.
void EnterFirstPage(const CWalk& walk)
{
    walk.Press(VK_TAB);
    LookAtKeyboard(walk, L"about.tab", kNextId);
    walk.Press(VK_RETURN);
    WaitFor(3000, [&] { return walk.Look().Number() == 2 || !walk.Look().boxes.empty(); });
    const SIGHT sight = walk.Rest();
    walk.Answers().Expect(L"frame.enter", L"page 2 and 0 boxes", PageAndBoxes(sight));
    if (!sight.boxes.empty()) {
        walk.Dismiss(walk.WaitForBox());
    }
    if (sight.Number() != 2) {
        walk.PressButton(PSBTN_NEXT);
    }
    walk.WaitForPage(2);
}

void EnterWithoutNext(const CWalk& walk)
{
    walk.Press(VK_RETURN);
    Pause(300);
    walk.Answers().Expect(L"frame.enter-hidden", L"page 2 and 0 boxes", PageAndBoxes(walk.Rest()));
}

// Once around page 2: the box, Next, Cancel, the arrow.
void TabAround(const CWalk& walk)
{
    std::wstring szStops;
    for (int n = 0; n < 4; ++n) {
        walk.Press(VK_TAB);
        szStops += std::format(L"{} ", walk.Rest().FocusId());
    }
    walk.Answers().Expect(L"frame.tab",
                          std::format(L"{} {} {} {} ", kNextId, IDCANCEL, kBackId, IDC_CONNECT_WIFI_CHECK), szStops);
}

// From page 3 to page 2 and 1 and forward again.
void GoBack(const CWalk& walk)
{
    CAnswers& answers = walk.Answers();
    const SIGHT third = walk.WaitForPage(3);
    const PART* const pArrow = third.FrameButton(kBackId);
    answers.Either(L"frame.arrow", pArrow != nullptr, L"an arrow", L"none", third.frame.window.hwnd);
    if (pArrow != nullptr) {
        Click(pArrow->rect);
    }
    if (!WaitFor(3000, [&] { return walk.Look().Number() == 2; })) {
        answers.Tell(L"frame.back", false, L"page 2 after a click on the arrow", L"page 3");
        walk.PressButton(PSBTN_BACK);
    }
    const SIGHT second = walk.WaitForPage(2);
    const PART* const pBox = second.Control(IDC_CONNECT_WIFI_CHECK);
    const bool bKept = pBox != nullptr && IsTicked(*pBox) && walk.HasButtons(kReady);
    answers.Tell(L"frame.back", bKept, L"page 2 as it was left, with Next", ButtonNames(second.Buttons()));
    walk.Press(VK_LEFT, VK_MENU);
    const bool bFirst = WaitFor(3000, [&] { return walk.Look().Number() == 1; });
    answers.Either(L"frame.alt-left", bFirst, L"page 1", L"page 2");
    if (!bFirst) {
        walk.PressButton(PSBTN_BACK);
    }
    walk.WaitForPage(1);
    LookAtButtons(walk, L"frame.first-again", kNext | kCancel);
    for (const int nPage : {2, 3}) {
        walk.PressButton(PSBTN_NEXT);
        walk.WaitForPage(nPage);
    }
}

} // namespace

void CheckFirstPages(CHECK& check)
{
    const CWalk walk(check);
    LookAtFrame(walk);
    LookAtIcons(walk);
    LookAtPage(walk, 1);
    check.answers.AddPicture(L"page 1", walk.Look().frame.window.hwnd);
    LookAtAbout(walk);
    EnterFirstPage(walk);
    LookAtPage(walk, 2);
    EnterWithoutNext(walk);
    LookAtTick(walk);
    TabAround(walk);
    walk.GoOn();
    LookAtPage(walk, 3);
    GoBack(walk);
    LookAtTick(walk);
    walk.GoOn();
    LookAtPage(walk, 4);
    LookAtTick(walk);
}
