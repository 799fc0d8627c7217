#include "check/Busy.h"

#include "check/Hands.h"
#include "check/Picture.h"
#include "check/Stopping.h"
#include "check/Text.h"
#include "driver/Reading.h"

#include <commctrl.h>

#include <algorithm>
#include <format>
#include <set>

namespace {

// What the system shows in the place of a window that does not answer.
constexpr PCWSTR kGhostClass = L"Ghost";

// Nothing is painted at the very moment that it is said, and on a busy machine it takes twice that time.
constexpr DWORD kUntilPainted = 60;

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

void NoteLine(WORK& work, const CWalk& walk, const SIGHT& sight, ULONGLONG nStart)
{
    const std::wstring szStatus = sight.Status();
    if (szStatus.empty() || (!work.lines.empty() && work.lines.back().szText == szStatus)) {
        return;
    }
    const ULONGLONG nSaid = GetTickCount64() - nStart;
    const RECT rect = sight.Existing(sight.pPage->nStatusId).rect;
    const std::vector<COLORREF> before = work.lines.empty() ? work.before.pixels : work.lines.back().pixels;
    // One that changes at once is not seen long enough to say anything about its letters.
    std::vector<COLORREF> pixels;
    Pause(kUntilPainted);
    WaitFor(kUntilPainted, [&] {
        std::vector<COLORREF> seen = ScreenColors(rect);
        const SIGHT now = walk.Look();
        const bool bStill = now.Status() == szStatus && now.boxes.empty();
        if (bStill) {
            pixels = std::move(seen);
        }
        return !bStill || pixels != before;
    });
    work.lines.push_back({szStatus, nSaid, std::move(pixels)});
}

} // namespace

std::wstring WORK::Counts() const
{
    std::vector<std::wstring> counts;
    for (const STATUS_LINE& line : lines) {
        const size_t nOf = line.szText.find(L" of ");
        if (nOf != std::wstring::npos && nOf > 0 && nOf + 4 < line.szText.size()) {
            counts.push_back(line.szText.substr(nOf - 1, 6));
        }
    }
    return Joined(counts);
}

std::wstring WORK::Texts() const
{
    return Joined(lines, L" | ", L"nothing", &STATUS_LINE::szText);
}

bool WORK::WerePainted() const
{
    // One that is painted late shows what stood there before it.
    std::set<std::vector<COLORREF>> different = {before.pixels};
    std::set<std::wstring> texts = {before.szText};
    for (const STATUS_LINE& line : lines) {
        if (!line.pixels.empty()) {
            different.insert(line.pixels);
            texts.insert(line.szText);
        }
    }
    return texts.size() > 1 && different.size() == texts.size();
}

bool WORK::SaysSomewhere(const std::wstring& szText) const
{
    return std::ranges::any_of(lines, [&](const STATUS_LINE& line) { return line.szText == szText; });
}

WORK PressNextAndWatch(const CWalk& walk, PATIENCE nPatience)
{
    WORK work = {};
    const SIGHT first = walk.Rest();
    const int nPage = first.Number();
    work.before = {first.Status(), 0, ScreenColors(first.Existing(first.pPage->nStatusId).rect)};
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
        NoteLine(work, walk, sight, nStart);
        const bool bSaysNothing = work.boxes.empty() && sight.Status() == work.before.szText;
        if (!bPressed && bSaysNothing && Milliseconds() > kUntilPressed && Listens(sight)) {
            walk.PressButton(PSBTN_NEXT);
            bPressed = true;
        }
        if (bClicks && Milliseconds() > kUntilImpatient) {
            ClickOnPage(sight.hwndPage);
            bClicks = false;
        }
        // To ask it takes longer than some lines stand there; and what ends here ends with a box.
        return !work.boxes.empty() && Listens(sight) && walk.Look().boxes.empty();
    });
    if (!bOver) {
        throw CLost{std::format(L"page {} works without an end: {}", nPage, work.Texts())};
    }
    work.nMilliseconds = Milliseconds();
    const SIGHT sight = walk.Rest();
    work.nPage = sight.Number();
    if (work.nPage == nPage) {
        NoteLine(work, walk, sight, nStart);
    }
    return work;
}
