// What a careful eye finds on a page.
#include "check/Hands.h"
#include "check/Walk.h"
#include "driver/Measure.h"

#include <commctrl.h>

#include <algorithm>
#include <format>
#include <map>

namespace {

// What the fields can hold at most.
const std::map<int, std::wstring> kFullest = {
    {IDC_WATCH_PORT, L"65535"}, {IDC_PAIRING_PORT, L"65535"}, {IDC_PAIRING_CODE, L"888888"}};

std::wstring NameOf(const PART& part)
{
    return part.szText.empty() ? std::format(L"{} {}", part.szClass, part.nId)
                               : std::format(L"{} \"{}\"", part.szClass, part.szText.substr(0, 40));
}

bool Holds(const RECT& outer, const RECT& inner)
{
    return outer.left <= inner.left && outer.top <= inner.top && inner.right <= outer.right &&
           inner.bottom <= outer.bottom;
}

bool Meet(const RECT& one, const RECT& other)
{
    RECT both = {};
    return IntersectRect(&both, &one, &other) != FALSE;
}

// An edge of a letter is sharper or softer depending on where it stands.
bool HasRoom(const MEASURE& measure)
{
    return measure.extent.right <= measure.room.right && measure.extent.bottom <= measure.room.bottom &&
           (IsRectEmpty(&measure.ink) || Holds(measure.room, measure.ink));
}

// Empty for a control that shows no text, or scrolls it.
std::wstring FullestText(const PART& part)
{
    const auto found = kFullest.find(part.nId);
    return found != kFullest.end() ? found->second : part.IsKind(WC_EDITW) ? std::wstring() : part.szText;
}

std::wstring CutText(const PART& part, PCSTR pszFont, const std::wstring& szText)
{
    const std::optional<MEASURE> measure = szText.empty() ? std::nullopt : Measure(part.hwnd, pszFont, szText);
    if (!measure || HasRoom(*measure)) {
        return {};
    }
    return std::format(L"{} takes {} x {} and has {} x {}; ", NameOf(part),
                       measure->extent.right - measure->extent.left, measure->extent.bottom - measure->extent.top,
                       measure->room.right - measure->room.left, measure->room.bottom - measure->room.top);
}

// Where the words of a text really are: one may stand over the empty end of another.
RECT WordsOf(const PART& part)
{
    const std::optional<MEASURE> measure =
        part.IsKind(WC_STATICW) ? Measure(part.hwnd, "page", part.szText) : std::nullopt;
    return measure ? measure->ink : part.rect;
}

std::wstring Overlaps(const std::vector<const PART*>& parts)
{
    std::wstring szFound;
    for (size_t n = 0; n < parts.size(); ++n) {
        for (size_t m = n + 1; m < parts.size(); ++m) {
            if (Meet(parts[n]->rect, parts[m]->rect) && Meet(WordsOf(*parts[n]), WordsOf(*parts[m]))) {
                szFound += NameOf(*parts[n]) + L" and " + NameOf(*parts[m]) + L" cover each other; ";
            }
        }
    }
    return szFound;
}

std::wstring Outside(const std::vector<const PART*>& parts, const RECT& area, PCWSTR pszArea)
{
    std::wstring szFound;
    for (const PART* const pPart : parts) {
        if (!Holds(area, pPart->rect)) {
            szFound += NameOf(*pPart) + L" stands outside " + pszArea + L"; ";
        }
    }
    return szFound;
}

std::wstring OrNothing(const std::wstring& szFound)
{
    return szFound.empty() ? L"nothing" : szFound;
}

std::wstring Ids(const std::vector<int>& ids)
{
    std::wstring szIds;
    for (const int nId : ids) {
        szIds += (szIds.empty() ? L"" : L", ") + std::to_wstring(nId);
    }
    return szIds.empty() ? L"none" : szIds;
}

// A push button that has the keyboard is the one; else Next or Finish.
std::wstring ExpectedDefault(const SIGHT& sight)
{
    for (const PART& part : sight.frame.parts) {
        if (part.hwnd == sight.hwndFocus && part.IsPushButton()) {
            return part.nId == kBackId ? L"none" : std::to_wstring(part.nId);
        }
    }
    const UINT nButtons = sight.Buttons();
    return nButtons & kNext ? std::to_wstring(kNextId) : nButtons & kFinish ? std::to_wstring(kFinishId) : L"none";
}

void LookAtTexts(CAnswers& answers, const SIGHT& sight, int nPage, HWND hwndPictured)
{
    std::vector<const PART*> titles;
    std::vector<const PART*> buttons;
    for (const PART* const pPart : sight.FrameParts()) {
        if (pPart->nId != kBackId) {
            (pPart->IsKind(WC_STATICW) ? titles : buttons).push_back(pPart);
        }
    }
    const std::wstring szCut =
        CutTexts(sight.PageParts(), "page") + CutTexts(titles, "title") + CutTexts(buttons, "frame");
    answers.Expect(PageClaim(nPage, L"texts"), L"nothing", OrNothing(szCut), hwndPictured);
}

void LookAtPlaces(CAnswers& answers, const SIGHT& sight, int nPage, HWND hwndPictured)
{
    RECT page = {};
    GetWindowRect(sight.hwndPage, &page);
    const RECT screen = {GetSystemMetrics(SM_XVIRTUALSCREEN), GetSystemMetrics(SM_YVIRTUALSCREEN),
                         GetSystemMetrics(SM_XVIRTUALSCREEN) + GetSystemMetrics(SM_CXVIRTUALSCREEN),
                         GetSystemMetrics(SM_YVIRTUALSCREEN) + GetSystemMetrics(SM_CYVIRTUALSCREEN)};
    const std::vector<const PART*> parts = sight.PageParts();
    const std::wstring szFound = Overlaps(parts) + Overlaps(sight.FrameParts()) + Outside(parts, page, L"the page") +
                                 Outside(sight.FrameParts(), sight.frame.window.rect, L"the frame") +
                                 Outside({&sight.frame.window}, screen, L"the screen");
    answers.Expect(PageClaim(nPage, L"apart"), L"nothing", OrNothing(szFound), hwndPictured);
}

} // namespace

std::wstring CutTexts(const std::vector<const PART*>& parts, PCSTR pszFont)
{
    std::wstring szFound;
    for (const PART* const pPart : parts) {
        if (pPart->IsKind(WC_IPADDRESSW)) {
            for (const PART& field : TreeOf(pPart->hwnd).parts) {
                szFound += CutText(field, pszFont, L"255");
            }
        } else {
            szFound += CutText(*pPart, pszFont, FullestText(*pPart));
        }
    }
    return szFound;
}

void LookAtPage(const CWalk& walk, int nPage)
{
    CAnswers& answers = walk.Check().answers;
    const PAGE& page = PageNumber(nPage);
    MoveMouseAway();
    const bool bButtons = walk.HasButtons(page.nFirst);
    const SIGHT sight = walk.Rest();
    const HWND hwnd = sight.frame.window.hwnd;
    // Page 5 shows where in the network this computer is.
    const HWND hwndPictured = nPage == 5 ? nullptr : hwnd;
    answers.Tell(PageClaim(nPage, L"title"), SaysOfItself(hwnd, page.pszTitle), page.pszTitle,
                 SaysOfItself(hwnd, page.pszTitle) ? page.pszTitle : L"no such words above the page", hwndPictured);
    answers.Tell(PageClaim(nPage, L"buttons"), bButtons, ButtonNames(page.nFirst), ButtonNames(sight.Buttons()),
                 hwndPictured);
    answers.Expect(PageClaim(nPage, L"focus"), std::to_wstring(page.nFocusId), std::to_wstring(sight.FocusId()),
                   hwndPictured);
    answers.Expect(PageClaim(nPage, L"default"), ExpectedDefault(sight), Ids(sight.DefaultButtons()), hwndPictured);
    LookAtTexts(answers, sight, nPage, hwndPictured);
    LookAtPlaces(answers, sight, nPage, hwndPictured);
}
