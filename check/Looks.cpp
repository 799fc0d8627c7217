// What a careful eye finds on a page.
#include "check/Hands.h"
#include "check/Machine.h"
#include "check/Picture.h"
#include "check/Text.h"
#include "check/Walk.h"
#include "driver/Measure.h"

#include <commctrl.h>

#include <algorithm>
#include <cmath>
#include <format>
#include <map>

namespace {

// "page-05.title" for page 5 and "title".
std::wstring PageClaim(int nPage, PCWSTR pszWhat)
{
    return std::format(L"page-{:02}.{}", nPage, pszWhat);
}

// What is wrong, or that nothing is.
std::wstring OrNothing(const std::wstring& szFound)
{
    return szFound.empty() ? L"nothing" : szFound;
}

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
    // What the fields can hold at most.
    static const std::map<int, std::wstring> s_fullest = {
        {IDC_WATCH_PORT, L"65535"}, {IDC_PAIRING_PORT, L"65535"}, {IDC_PAIRING_CODE, L"888888"}};
    if (const auto found = s_fullest.find(part.nId); found != s_fullest.end()) {
        return found->second;
    }
    return part.IsKind(WC_EDITW) ? std::wstring() : part.szText;
}

// A text with the name of its font, see driver/Measure.h.
struct LETTERING
{
    const PART* pPart;
    PCSTR pszFont;
};

// Of the page and of the frame.
std::vector<LETTERING> LetteringOf(const SIGHT& sight)
{
    std::vector<LETTERING> all;
    for (const PART* const pPart : sight.PageParts()) {
        all.push_back({pPart, "page"});
    }
    for (const PART* const pPart : sight.FrameParts()) {
        if (pPart->nId != kBackId) {
            all.push_back({pPart, pPart->IsKind(WC_STATICW) ? "title" : "frame"});
        }
    }
    return all;
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

// Those that have no room.
std::wstring CutTexts(const std::vector<LETTERING>& all)
{
    std::wstring szFound;
    for (const auto& [pPart, pszFont] : all) {
        if (pPart->IsKind(WC_IPADDRESSW)) {
            for (const PART& field : FieldsOf(*pPart)) {
                szFound += CutText(field, pszFont, L"255");
            }
        } else {
            szFound += CutText(*pPart, pszFont, FullestText(*pPart));
        }
    }
    return OrNothing(szFound);
}

// Where the words of a text really are; nothing where that cannot be measured.
std::optional<RECT> InkOf(const LETTERING& lettering)
{
    const std::optional<MEASURE> measure = Measure(lettering.pPart->hwnd, lettering.pszFont, lettering.pPart->szText);
    return measure ? std::optional(measure->ink) : std::nullopt;
}

// A text may stand over the empty end of another.
RECT PlaceOf(const PART& part)
{
    return part.IsKind(WC_STATICW) ? InkOf({&part, "page"}).value_or(part.rect) : part.rect;
}

std::wstring Overlaps(const std::vector<const PART*>& parts)
{
    std::wstring szFound;
    for (size_t n = 0; n < parts.size(); ++n) {
        for (size_t m = n + 1; m < parts.size(); ++m) {
            if (Meet(parts[n]->rect, parts[m]->rect) && Meet(PlaceOf(*parts[n]), PlaceOf(*parts[m]))) {
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

std::wstring IdOf(const PART* pPart)
{
    return pPart != nullptr ? std::to_wstring(pPart->nId) : L"none";
}

// A push button that has the keyboard is the one; else Next or Finish. The arrow draws itself, without an outline.
std::wstring ExpectedDefault(const SIGHT& sight)
{
    const auto focused = std::ranges::find(sight.frame.parts, sight.hwndFocus, &PART::hwnd);
    if (focused != sight.frame.parts.end() && focused->IsPushButton()) {
        return focused->nId == kBackId ? L"none" : IdOf(&*focused);
    }
    const PART* const pNext = sight.FrameButton(kNextId);
    return IdOf(pNext != nullptr ? pNext : sight.FrameButton(kFinishId));
}

std::wstring Misplaced(const SIGHT& sight)
{
    RECT page = {};
    GetWindowRect(sight.hwndPage, &page);
    const RECT screen = {GetSystemMetrics(SM_XVIRTUALSCREEN), GetSystemMetrics(SM_YVIRTUALSCREEN),
                         GetSystemMetrics(SM_XVIRTUALSCREEN) + GetSystemMetrics(SM_CXVIRTUALSCREEN),
                         GetSystemMetrics(SM_YVIRTUALSCREEN) + GetSystemMetrics(SM_CYVIRTUALSCREEN)};
    return OrNothing(Overlaps(sight.PageParts()) + Overlaps(sight.FrameParts()) +
                     Outside(sight.PageParts(), page, L"the page") +
                     Outside(sight.FrameParts(), sight.frame.window.rect, L"the frame") +
                     Outside({&sight.frame.window}, screen, L"the screen"));
}

// How bright a color is to the eye, from 0, black, to 1, white: the light of its channels, as sRGB has them.
double RelativeLuminance(COLORREF color)
{
    const auto Light = [](BYTE nChannel) {
        const double c = nChannel / 255.0;
        return c <= 0.04045 ? c / 12.92 : std::pow((c + 0.055) / 1.055, 2.4);
    };
    return (0.2126 * Light(GetRValue(color))) + (0.7152 * Light(GetGValue(color))) + (0.0722 * Light(GetBValue(color)));
}

// From 1, when they are the same, to 21, black and white.
double ContrastRatio(COLORREF one, COLORREF other)
{
    const auto [darker, lighter] = std::minmax({RelativeLuminance(one), RelativeLuminance(other)});
    return (lighter + 0.05) / (darker + 0.05);
}

// Between the ground, which is the color that most of it has, and the color in it that stands out most.
double ContrastOnScreen(const RECT& rect)
{
    std::map<COLORREF, size_t> colors;
    for (const COLORREF color : ScreenColors(rect)) {
        ++colors[color];
    }
    const auto ground = std::ranges::max_element(colors, {}, [](const auto& item) { return item.second; });
    double highest = 1;
    for (const auto& [color, nPixels] : colors) {
        highest = std::max(highest, ContrastRatio(color, ground->first));
    }
    return highest;
}

// What is disabled need not stand out. What an edit holds may be selected, in the system's colors.
void LookAtContrast(CAnswers& answers, const std::wstring& szClaim, const std::vector<LETTERING>& all, HWND hwnd)
{
    const double least = IsHighContrast() ? 7.0 : 4.5;
    std::map<double, std::wstring> ratios;
    for (const LETTERING& lettering : all) {
        const std::optional<RECT> ink = InkOf(lettering);
        if (ink && !IsRectEmpty(&*ink) && lettering.pPart->bEnabled && !lettering.pPart->IsKind(WC_EDITW)) {
            ratios[ContrastOnScreen(*ink)] = NameOf(*lettering.pPart);
        }
    }
    const bool bAny = !ratios.empty();
    answers.Tell(szClaim, bAny && ratios.begin()->first >= least, std::format(L"{:.1f} or more", least),
                 bAny ? std::format(L"{:.1f}, {}", ratios.begin()->first, ratios.begin()->second) : L"no words", hwnd);
}

// A button that is found by its text has another id.
void LookAtIds(CAnswers& answers, const SIGHT& sight)
{
    for (const FRAME_BUTTON& button : kFrameButtons) {
        if (const PART* const pButton = sight.FrameButton(button.nId)) {
            answers.Expect(L"frame.button-ids", std::format(L"{} {}", button.pszText, button.nId),
                           std::format(L"{} {}", button.pszText, GetDlgCtrlID(pButton->hwnd)));
        }
    }
}

} // namespace

std::wstring CutTexts(const TREE& box)
{
    std::vector<LETTERING> all;
    all.reserve(box.parts.size());
    for (const PART& part : box.parts) {
        all.push_back({&part, "box"});
    }
    return CutTexts(all);
}

void LookAtButtons(const CWalk& walk, const std::wstring& szClaim, UINT nButtons)
{
    const bool bThere = walk.HasButtons(nButtons);
    const SIGHT sight = walk.Look();
    walk.Answers().Either(szClaim, bThere, ButtonNames(nButtons), ButtonNames(sight.Buttons()),
                          sight.frame.window.hwnd);
}

void LookAtTick(const CWalk& walk)
{
    const int nPage = walk.Look().Number();
    walk.Tick(true);
    const bool bCame = walk.HasButtons(kReady);
    walk.Tick(false);
    const bool bWent = walk.HasButtons(kWaiting);
    walk.Tick(true);
    const bool bCameAgain = walk.HasButtons(kReady);
    const HWND hwnd = walk.Look().frame.window.hwnd;
    walk.Answers().Tell(PageClaim(nPage, L"next"), bCame && bWent && bCameAgain, L"Next comes, goes and comes again",
                        std::format(L"{}, {}, {}", bCame ? L"comes" : L"does not come",
                                    bWent ? L"goes" : L"does not go",
                                    bCameAgain ? L"comes again" : L"does not come again"),
                        hwnd);
    walk.Answers().AddPicture(std::format(L"page {}", nPage), hwnd);
}

void LookAtPage(const CWalk& walk, int nPage)
{
    CAnswers& answers = walk.Answers();
    const PAGE& page = PageNumber(nPage);
    const auto Claim = [nPage](PCWSTR pszWhat) { return PageClaim(nPage, pszWhat); };
    MoveMouseAway();
    const bool bButtons = walk.HasButtons(page.nFirst);
    const SIGHT sight = walk.Rest();
    // Page 5 shows where in the network this computer is.
    const HWND hwnd = nPage == 5 ? nullptr : sight.frame.window.hwnd;
    const std::vector<LETTERING> lettering = LetteringOf(sight);
    answers.Either(Claim(L"title"), SaysOfItself(sight.frame.window.hwnd, page.pszTitle), page.pszTitle,
                   L"no such words above the page", hwnd);
    answers.Either(Claim(L"buttons"), bButtons, ButtonNames(page.nFirst), ButtonNames(sight.Buttons()), hwnd);
    answers.Expect(Claim(L"focus"), std::to_wstring(page.nFocusId), std::to_wstring(sight.FocusId()), hwnd);
    answers.Expect(Claim(L"default"), ExpectedDefault(sight), Joined(sight.DefaultButtons(), L", ", L"none", IdOf),
                   hwnd);
    answers.Expect(Claim(L"texts"), L"nothing", CutTexts(lettering), hwnd);
    answers.Expect(Claim(L"apart"), L"nothing", Misplaced(sight), hwnd);
    LookAtContrast(answers, Claim(L"contrast"), lettering, hwnd);
    LookAtIds(answers, sight);
}
