#include "check/Walk.h"

#include "check/Hands.h"
#include "check/Stopping.h"
#include "check/Text.h"
#include "driver/Reading.h"

#include <commctrl.h>

#include <algorithm>
#include <format>
#include <ranges>

namespace {

// What has not changed for so long has come to rest.
constexpr DWORD kRest = 150;

// Longer than it takes a busy machine to start the program and write its tools.
constexpr DWORD kStart = 40000;

// What follows a key or a click at once, on a busy machine too.
constexpr DWORD kSoon = 10000;

// Two pages ask the network before they let the user go on.
constexpr DWORD kLongestStep = 60000;

std::wstring Glance(const SIGHT& sight)
{
    std::wstring szGlance = Describe(sight.frame) + std::to_wstring(HandleToULong(sight.hwndFocus));
    for (const TREE& box : sight.boxes) {
        szGlance += Describe(box);
    }
    return szGlance;
}

// Null where there is none.
const TREE* FileDialogIn(const SIGHT& sight)
{
    const auto found =
        std::ranges::find_if(sight.others, [](const TREE& tree) { return tree.window.IsKind(L"#32770"); });
    return found != sight.others.end() ? &*found : nullptr;
}

} // namespace

CWalk::CWalk(CHECK& check) : CWalk(check, check.program) {}

CWalk::CWalk(CHECK& check, const CPath& program, COMES nComes) : m_check(check), m_program(check.szThrough, program)
{
    if (nComes == kWizard) {
        WaitForStart();
    }
}

void CWalk::WaitForStart() const
{
    WaitForPage(1, kStart);
}

SIGHT CWalk::WaitUntil(const std::wstring& szWhat, const std::function<bool(const SIGHT&)>& seen,
                       DWORD dwMilliseconds) const
{
    SIGHT sight;
    const bool bSeen = WaitFor(dwMilliseconds, [&] {
        sight = Look();
        return seen(sight) || m_program.HasEnded();
    });
    if (!bSeen || !seen(sight)) {
        throw CLost{std::format(L"{} did not come; there is page {}, {}{}", szWhat, sight.Number(),
                                Joined(sight.boxes, L" | ", L"no box", WordsOf),
                                m_program.HasEnded() ? L", the program has ended" : L"")};
    }
    return sight;
}

SIGHT CWalk::WaitForPage(int nPage, DWORD dwMilliseconds) const
{
    const auto IsThere = [nPage](const SIGHT& sight) { return sight.Number() == nPage && sight.boxes.empty(); };
    WaitUntil(std::format(L"page {}", nPage), IsThere, dwMilliseconds);
    SIGHT sight = Rest();
    if (!IsThere(sight)) {
        throw CLost{std::format(L"page {} did not stay", nPage)};
    }
    return sight;
}

TREE CWalk::WaitForBox(DWORD dwMilliseconds) const
{
    WaitUntil(L"a message box", [](const SIGHT& sight) { return !sight.boxes.empty(); }, dwMilliseconds);
    const SIGHT sight = Rest();
    if (sight.boxes.empty()) {
        throw CLost{L"a message box did not stay"};
    }
    const TREE& box = sight.boxes.front();
    m_check.answers.Expect(L"box.texts", L"nothing", CutTexts(box), box.window.hwnd);
    return box;
}

SIGHT CWalk::Rest() const
{
    SIGHT sight = Look();
    std::wstring szLast = Glance(sight);
    ULONGLONG nSince = GetTickCount64();
    const bool bRests = WaitFor(10000, [&] {
        sight = Look();
        if (std::wstring szNow = Glance(sight); szNow != szLast) {
            szLast = std::move(szNow);
            nSince = GetTickCount64();
        }
        return GetTickCount64() - nSince >= kRest;
    });
    if (!bRests) {
        throw CLost{L"the screen does not come to rest"};
    }
    return sight;
}

void CWalk::Press(WORD nKey, WORD nHeld) const
{
    ::Press(m_program.Process(), nKey, nHeld);
}

void CWalk::Type(const std::wstring& szText) const
{
    ::Type(m_program.Process(), szText);
}

void CWalk::ClickControl(int nId) const
{
    const SIGHT sight = Look();
    const PART* const pButton = sight.FrameButton(nId);
    Click(pButton != nullptr ? pButton->rect : sight.Existing(nId).rect);
}

void CWalk::Empty(int nId) const
{
    ClickControl(nId);
    if (!WaitFor(kSoon, [&] { return Look().FocusId() == nId; })) {
        const SIGHT sight = Look();
        throw CLost{std::format(L"a click does not give control {} the keyboard, {} has it, with {} boxes", nId,
                                sight.FocusId(), sight.boxes.size())};
    }
    Press(L'A', VK_CONTROL);
    Press(VK_BACK);
    if (!Holds(nId, L"")) {
        throw CLost{std::format(L"control {} does not get empty", nId)};
    }
}

void CWalk::Enter(int nId, const std::wstring& szText) const
{
    Empty(nId);
    Type(szText);
    if (!Holds(nId, szText)) {
        throw CLost{std::format(L"control {} does not take {}", nId, szText)};
    }
}

std::vector<PART> CWalk::AddressFields() const
{
    std::vector<PART> fields = FieldsOf(Rest().Existing(IDC_WATCH_ADDRESS));
    if (fields.size() != 4) {
        throw CLost{std::format(L"the address has {} fields", fields.size())};
    }
    return fields;
}

void CWalk::EmptyField(const PART& field) const
{
    Click(field.rect);
    if (!WaitFor(kSoon, [&] { return Look().hwndFocus == field.hwnd; })) {
        throw CLost{L"a click does not give a field of the address the keyboard"};
    }
    Press(VK_END);
    // Each key is waited for: one too many would go on to the field before.
    for (std::wstring szText = HoldsText(field); !szText.empty();) {
        const size_t nBefore = szText.size();
        Press(VK_BACK);
        if (!WaitFor(kSoon, [&] { return (szText = HoldsText(field)).size() < nBefore; })) {
            throw CLost{L"a field of the address does not get empty"};
        }
    }
}

void CWalk::EnterAddress(const std::wstring& szAddress) const
{
    const std::vector<PART> fields = AddressFields();
    auto field = fields.begin();
    for (const auto number : szAddress | std::views::split(L'.')) {
        EmptyField(*field++);
        Type({number.begin(), number.end()});
    }
    if (!Holds(IDC_WATCH_ADDRESS, szAddress)) {
        throw CLost{L"the address field does not take " + szAddress};
    }
}

bool CWalk::HasButtons(UINT nButtons) const
{
    return WaitFor(kSoon, [&] { return Look().Buttons() == nButtons; }) && Rest().Buttons() == nButtons;
}

bool CWalk::Holds(int nId, const std::wstring& szText) const
{
    return WaitFor(kSoon, [&] { return TextOf(nId) == szText; });
}

std::wstring CWalk::TextOf(int nId) const
{
    const SIGHT sight = Look();
    const PART* const pControl = sight.Control(nId);
    return pControl != nullptr ? HoldsText(*pControl) : L"(no such control)";
}

void CWalk::Dismiss(const TREE& box) const
{
    Press(VK_RETURN);
    if (!WaitFor(5000, [&] { return !IsWindowVisible(box.window.hwnd); })) {
        throw CLost{L"the box \"" + box.window.szText + L"\" does not go"};
    }
}

void CWalk::Tick(bool bTicked) const
{
    const SIGHT sight = Look();
    const PART& box = sight.Existing(sight.pPage != nullptr ? sight.pPage->nBoxId : 0);
    if (IsTicked(box) != bTicked) {
        Click(box.rect);
    }
    if (!WaitFor(kSoon, [&] { return IsTicked(box) == bTicked; })) {
        throw CLost{std::format(L"the box of page {} cannot be ticked", sight.Number())};
    }
}

SIGHT CWalk::GoOn() const
{
    const int nPage = Look().Number();
    PressButton(PSBTN_NEXT);
    return WaitForPage(nPage + 1, kLongestStep);
}

void CWalk::GoTo(int nPage, const std::wstring& szPort) const
{
    for (SIGHT sight = Rest(); sight.Number() < nPage; sight = GoOn()) {
        if (sight.Number() == 0) {
            throw CLost{L"there is no wizard any more"};
        }
        if (sight.Number() == 5) {
            EnterAddress(L"127.0.0.1");
            Enter(IDC_WATCH_PORT, szPort);
        } else if (sight.pPage->nBoxId != 0) {
            Tick();
        }
        WaitFor(kSoon, [&] { return (Look().Buttons() & kNext) != 0; });
    }
}

void CWalk::GoBackTo(int nPage) const
{
    for (int n = Rest().Number() - 1; n >= nPage; --n) {
        PressButton(PSBTN_BACK);
        WaitForPage(n);
    }
}

void CWalk::JumpTo(int nPage) const
{
    Ask(Look().frame.window.hwnd, PSM_SETCURSEL, static_cast<WPARAM>(nPage - 1), 0);
}

void CWalk::PressButton(int nButton) const
{
    PostMessageW(Look().frame.window.hwnd, PSM_PRESSBUTTON, static_cast<WPARAM>(nButton), 0);
}

TREE CWalk::OpenFileDialog() const
{
    ClickControl(IDC_BROWSE);
    WaitUntil(L"the file dialog", FileDialogIn, 20000);
    Pause(1500); // it goes on loading
    return *FileDialogIn(WaitUntil(L"the file dialog", FileDialogIn));
}

void CWalk::LeaveFileDialog() const
{
    Press(VK_ESCAPE);
    if (!WaitFor(5000, [&] { return FileDialogIn(Look()) == nullptr; })) {
        throw CLost{L"the file dialog does not go"};
    }
}

void CWalk::ExpectEnd(PCWSTR pszClaim) const
{
    std::wstring szEnd = m_program.WaitForEnd();
    if (!m_program.HasEnded()) {
        const SIGHT sight = Look();
        szEnd += std::format(L" with page {}, {}", sight.Number(), Joined(sight.boxes, L" | ", L"no box", WordsOf));
    }
    const std::wstring szLeft = ListOf(ToolsFolder());
    m_check.answers.Expect(pszClaim, std::format(L"nothing left, {}", kEndedWell),
                           std::format(L"{} left, {}", szLeft, szEnd));
    m_check.answers.Expect(L"end.cancel", kEndedWell, szEnd);
}
