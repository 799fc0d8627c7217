// The frame, and the pages that come before anything is sent.
#include "check/Hands.h"
#include "check/Stopping.h"
#include "check/Walk.h"
#include "driver/Reading.h"

#include <commctrl.h>

#include <format>

namespace {

std::wstring SizeOf(const RECT& rect)
{
    return std::format(L"{} x {}", rect.right - rect.left, rect.bottom - rect.top);
}

// A dialog of the pages' size and font, as this system makes it.
std::wstring SizeOfPages()
{
    struct alignas(4) TEMPLATE
    {
        DLGTEMPLATE dialog = {WS_POPUP | DS_SETFONT | DS_FIXEDSYS, 0, 0, 0, 0, 367, 223};
        WORD nMenu = 0;
        WORD nClass = 0;
        WORD nTitle = 0;
        WORD nPoints = 9;
        WCHAR szFont[13] = L"MS Shell Dlg";
    };
    const TEMPLATE description;
    const HWND hwnd = CreateDialogIndirectW(GetModuleHandleW(nullptr), &description.dialog, nullptr, nullptr);
    RECT rect = {};
    GetClientRect(hwnd, &rect);
    DestroyWindow(hwnd);
    return SizeOf(rect);
}

void LookAtFrame(const CWalk& walk)
{
    CAnswers& answers = walk.Check().answers;
    const SIGHT sight = walk.Rest();
    const PART& frame = sight.frame.window;
    answers.m_notes.push_back(L"The windows of page 1:\n" + Describe(sight.frame));
    answers.Expect(L"frame.class", L"NativeHWNDHost", frame.szClass, frame.hwnd);
    answers.Expect(L"frame.caption", kTitle, frame.szText, frame.hwnd);
    RECT page = {};
    GetClientRect(sight.hwndPage, &page);
    answers.Expect(L"frame.page-size", SizeOfPages(), SizeOf(page), frame.hwnd);
    const bool bInTaskBar =
        GetWindow(frame.hwnd, GW_OWNER) == nullptr && (GetWindowLongW(frame.hwnd, GWL_EXSTYLE) & WS_EX_TOOLWINDOW) == 0;
    answers.Tell(L"frame.task-bar", bInTaskBar, L"an own window that the task bar shows",
                 bInTaskBar ? L"such a window" : L"a tool's window, or one with an owner");
    for (const auto& [pszId, nSize, nClassIcon] :
         {std::tuple(L"frame.icon", ICON_BIG, GCLP_HICON), std::tuple(L"frame.icon-small", ICON_SMALL, GCLP_HICONSM)}) {
        const bool bIcon = Ask(frame.hwnd, WM_GETICON, static_cast<WPARAM>(nSize), 0).value_or(0) != 0 ||
                           GetClassLongPtrW(frame.hwnd, nClassIcon) != 0;
        answers.Tell(pszId, bIcon, L"an icon", bIcon ? L"an icon" : L"none", frame.hwnd);
    }
    answers.Tell(L"frame.front", sight.hwndForeground == frame.hwnd, L"the wizard in front",
                 sight.hwndForeground == frame.hwnd ? L"the wizard in front" : L"another window in front", frame.hwnd);
    answers.Tell(L"frame.first-post", sight.FocusId() == kNextId, L"the keyboard at Next",
                 std::format(L"the keyboard at control {}", sight.FocusId()), frame.hwnd);
    answers.Tell(L"frame.second-post", (sight.Buttons() & kBack) == 0, L"no arrow", ButtonNames(sight.Buttons()),
                 frame.hwnd);
}

void LookAtAbout(const CWalk& walk)
{
    CAnswers& answers = walk.Check().answers;
    walk.ClickControl(IDC_ABOUT);
    const TREE box = walk.WaitForBox(5000);
    answers.AddPicture(L"the About box", box.window.hwnd);
    const std::wstring szMessage = MessageOf(box);
    answers.Tell(L"about.box",
                 box.window.szText == L"About" && szMessage.starts_with(kTitle) &&
                     szMessage.find(L"Version: ") != std::wstring::npos,
                 L"\"About\", the title and the version", L"\"" + box.window.szText + L"\": " + szMessage,
                 box.window.hwnd);
    std::vector<const PART*> parts;
    for (const PART& part : box.parts) {
        parts.push_back(&part);
    }
    const std::wstring szCut = CutTexts(parts, "box");
    answers.Expect(L"about.texts", L"", szCut, box.window.hwnd);
    walk.Dismiss(box);
    const bool bBack = WaitFor(2000, [&] { return walk.Look().FocusId() == IDC_ABOUT; });
    answers.Tell(L"about.keyboard", bBack, L"the keyboard at About",
                 std::format(L"the keyboard at control {}", walk.Look().FocusId()));
}

// The keyboard is on Next again, as it was.
void EnterFirstPage(const CWalk& walk)
{
    CAnswers& answers = walk.Check().answers;
    walk.Press(VK_TAB);
    const bool bOnNext = WaitFor(2000, [&] { return walk.Look().FocusId() == kNextId; });
    answers.Tell(L"about.tab", bOnNext, L"Next after About",
                 std::format(L"control {} after About", walk.Look().FocusId()));
    walk.Press(VK_RETURN);
    const bool bMoved = WaitFor(3000, [&] { return walk.Look().Number() == 2 || !walk.Look().boxes.empty(); }) &&
                        walk.Rest().Number() == 2;
    answers.Tell(L"frame.enter", bMoved && walk.Look().boxes.empty(), L"page 2 and no box",
                 std::format(L"page {} and {} boxes", walk.Look().Number(), walk.Look().boxes.size()));
    if (!bMoved) {
        walk.PressButton(PSBTN_NEXT);
    }
    walk.WaitForPage(2);
}

// The keys arrive in their order: where Enter led on, the tick would be on another page.
void EnterWithoutNext(const CWalk& walk)
{
    walk.Press(VK_RETURN);
    Pause(300);
    const SIGHT sight = walk.Rest();
    walk.Check().answers.Tell(L"frame.enter-hidden", sight.Number() == 2 && sight.boxes.empty(), L"page 2 and no box",
                              std::format(L"page {} and {} boxes", sight.Number(), sight.boxes.size()));
}

// Once around page 2: the box, Next, Cancel, the arrow.
void TabAround(const CWalk& walk)
{
    std::wstring szStops;
    for (int n = 0; n < 4; ++n) {
        walk.Press(VK_TAB);
        szStops += std::format(L"{} ", walk.Rest().FocusId());
    }
    walk.Check().answers.Expect(
        L"frame.tab", std::format(L"{} {} {} {} ", kNextId, IDCANCEL, kBackId, IDC_CONNECT_WIFI_CHECK), szStops);
}

// From page 3 to page 2 and 1 and forward again.
void GoBack(const CWalk& walk)
{
    CAnswers& answers = walk.Check().answers;
    const SIGHT third = walk.WaitForPage(3);
    answers.Tell(L"frame.arrow", third.FrameButton(kBackId) != nullptr, L"an arrow to go back by",
                 third.FrameButton(kBackId) != nullptr ? L"an arrow" : L"none", third.frame.window.hwnd);
    if (const PART* const pArrow = third.FrameButton(kBackId)) {
        Click(pArrow->rect);
    }
    if (!WaitFor(3000, [&] { return walk.Look().Number() == 2; })) {
        answers.Tell(L"frame.back", false, L"page 2 after a click on the arrow", L"page 3");
        walk.PressButton(PSBTN_BACK);
    }
    SIGHT sight = walk.WaitForPage(2);
    const PART* const pBox = sight.Control(IDC_CONNECT_WIFI_CHECK);
    const bool bKept = pBox != nullptr && IsTicked(*pBox) && walk.HasButtons(kReady);
    answers.Tell(L"frame.back", bKept, L"page 2 as it was left, with Next", ButtonNames(sight.Buttons()));
    walk.Press(VK_LEFT, VK_MENU);
    const bool bFirst = WaitFor(3000, [&] { return walk.Look().Number() == 1; });
    answers.Tell(L"frame.alt-left", bFirst, L"page 1", std::format(L"page {}", walk.Look().Number()));
    if (!bFirst) {
        walk.PressButton(PSBTN_BACK);
    }
    walk.WaitForPage(1);
    const bool bSame = walk.HasButtons(kNext | kCancel);
    answers.Tell(L"frame.first-again", bSame, ButtonNames(kNext | kCancel), ButtonNames(walk.Look().Buttons()));
    walk.PressButton(PSBTN_NEXT);
    walk.WaitForPage(2);
    walk.PressButton(PSBTN_NEXT);
    walk.WaitForPage(3);
}

} // namespace

// Next appears with the tick and goes with it.
void LookAtTick(const CWalk& walk, int nPage)
{
    CAnswers& answers = walk.Check().answers;
    walk.Tick(true);
    const bool bCame = walk.HasButtons(kReady);
    walk.Tick(false);
    const bool bWent = walk.HasButtons(kWaiting);
    walk.Tick(true);
    const bool bCameAgain = walk.HasButtons(kReady);
    answers.Tell(PageClaim(nPage, L"next"), bCame && bWent && bCameAgain, L"Next comes, goes and comes again",
                 std::format(L"{}, {}, {}", bCame ? L"comes" : L"does not come", bWent ? L"goes" : L"does not go",
                             bCameAgain ? L"comes again" : L"does not come again"),
                 walk.Look().frame.window.hwnd);
    answers.AddPicture(std::format(L"page {}", nPage), walk.Look().frame.window.hwnd);
}

void CheckFirstPages(CHECK& check)
{
    CWalk walk(check);
    LookAtFrame(walk);
    LookAtPage(walk, 1);
    check.answers.AddPicture(L"page 1", walk.Look().frame.window.hwnd);
    LookAtAbout(walk);
    EnterFirstPage(walk);
    LookAtPage(walk, 2);
    EnterWithoutNext(walk);
    LookAtTick(walk, 2);
    TabAround(walk);
    walk.GoOn();
    LookAtPage(walk, 3);
    GoBack(walk);
    LookAtTick(walk, 3);
    walk.GoOn();
    LookAtPage(walk, 4);
    LookAtTick(walk, 4);
}
