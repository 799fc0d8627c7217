#include "check/Walk.h"

#include "check/Hands.h"
#include "check/Stopping.h"
#include "driver/Reading.h"

#include <commctrl.h>

#include <algorithm>

namespace {

// What has not changed for so long has come to rest.
constexpr DWORD kRest = 150;

// Longer than it takes a busy machine to start the program and write its tools.
constexpr DWORD kStart = 40000;

std::wstring Glance(const SIGHT& sight)
{
    std::wstring szGlance = Describe(sight.frame) + std::to_wstring(HandleToULong(sight.hwndFocus));
    for (const TREE& box : sight.boxes) {
        szGlance += Describe(box);
    }
    return szGlance;
}

} // namespace

CWalk::CWalk(CHECK& check) : CWalk(check, check.program) {}

CWalk::CWalk(CHECK& check, const CPath& program) : m_check(check), m_program(check.surroundings, program)
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
        std::wstring szBoxes;
        for (const TREE& box : sight.boxes) {
            szBoxes += L", the box \"" + box.window.szText + L"\": " + MessageOf(box);
        }
        throw CLost{szWhat + L" did not come; there is page " + std::to_wstring(sight.Number()) + szBoxes +
                    (m_program.HasEnded() ? L", the program has ended" : L"")};
    }
    return sight;
}

SIGHT CWalk::WaitForPage(int nPage, DWORD dwMilliseconds) const
{
    const auto IsThere = [nPage](const SIGHT& sight) { return sight.Number() == nPage && sight.boxes.empty(); };
    WaitUntil(L"page " + std::to_wstring(nPage), IsThere, dwMilliseconds);
    SIGHT sight = Rest();
    if (!IsThere(sight)) {
        throw CLost{L"page " + std::to_wstring(nPage) + L" did not stay"};
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
    return sight.boxes.front();
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

void CWalk::ClickControl(int nId, int nTimes) const
{
    const SIGHT sight = Look();
    const PART* pPart = sight.Control(nId);
    if (pPart == nullptr) {
        pPart = sight.FrameButton(nId);
    }
    if (pPart == nullptr) {
        throw CLost{L"there is no control " + std::to_wstring(nId) + L" on page " + std::to_wstring(sight.Number())};
    }
    Click(pPart->rect, nTimes);
}

void CWalk::Empty(int nId) const
{
    ClickControl(nId);
    if (!WaitFor(2000, [&] { return Look().FocusId() == nId; })) {
        const SIGHT sight = Look();
        throw CLost{L"a click does not give control " + std::to_wstring(nId) + L" the keyboard, " +
                    std::to_wstring(sight.FocusId()) + L" has it, with " + std::to_wstring(sight.boxes.size()) +
                    L" boxes"};
    }
    Press(L'A', VK_CONTROL);
    Press(VK_BACK);
    if (!Holds(nId, L"")) {
        throw CLost{L"control " + std::to_wstring(nId) + L" does not get empty"};
    }
}

void CWalk::Enter(int nId, const std::wstring& szText) const
{
    Empty(nId);
    Type(szText);
    if (!Holds(nId, szText)) {
        throw CLost{L"control " + std::to_wstring(nId) + L" does not take " + szText};
    }
}

void CWalk::EnterAddress(const std::wstring& szAddress) const
{
    const SIGHT sight = Look();
    const PART* const pAddress = sight.Control(IDC_WATCH_ADDRESS);
    if (pAddress == nullptr) {
        throw CLost{L"there is no address field"};
    }
    TREE address = TreeOf(pAddress->hwnd);
    std::ranges::sort(address.parts, {}, [](const PART& field) { return field.rect.left; });
    size_t nStart = 0;
    for (const PART& field : address.parts) {
        const size_t nEnd = std::min(szAddress.find(L'.', nStart), szAddress.size());
        Click(field.rect);
        if (!WaitFor(2000, [&] { return Look().hwndFocus == field.hwnd; })) {
            throw CLost{L"a click does not give a field of the address the keyboard"};
        }
        Press(VK_END);
        for (int n = 0; n < 3; ++n) {
            if (!ReadText(field.hwnd).value_or(L"").empty()) {
                Press(VK_BACK);
                Pause(30);
            }
        }
        Type(szAddress.substr(nStart, nEnd - nStart));
        nStart = nEnd + 1;
    }
    if (!Holds(IDC_WATCH_ADDRESS, szAddress)) {
        throw CLost{L"the address field does not take " + szAddress};
    }
}

bool CWalk::HasButtons(UINT nButtons, DWORD dwMilliseconds) const
{
    return WaitFor(dwMilliseconds, [&] { return Look().Buttons() == nButtons; }) && Rest().Buttons() == nButtons;
}

bool CWalk::Holds(int nId, const std::wstring& szText, DWORD dwMilliseconds) const
{
    const std::wstring szExpected = nId == IDC_WATCH_ADDRESS && szText.empty() ? L"..." : szText;
    return WaitFor(dwMilliseconds, [&] { return TextOf(nId) == szExpected; });
}

std::wstring CWalk::TextOf(int nId) const
{
    const SIGHT sight = Look();
    const PART* const pControl = sight.Control(nId);
    return pControl != nullptr ? HoldsText(*pControl) : L"(no such control)";
}

void CWalk::Dismiss(const TREE& box) const
{
    const auto IsGone = [&] { return !IsWindow(box.window.hwnd) || !IsWindowVisible(box.window.hwnd); };
    Press(VK_RETURN);
    if (!WaitFor(2000, IsGone)) {
        PostMessageW(box.window.hwnd, WM_COMMAND, IDOK, 0);
        if (!WaitFor(5000, IsGone)) {
            throw CLost{L"the box \"" + box.window.szText + L"\" does not go"};
        }
    }
}

void CWalk::Tick(bool bTicked) const
{
    const SIGHT sight = Look();
    const int nBoxId = sight.pPage != nullptr ? sight.pPage->nBoxId : 0;
    const PART* const pBox = sight.Control(nBoxId);
    if (pBox == nullptr) {
        throw CLost{L"there is no box to tick on page " + std::to_wstring(sight.Number())};
    }
    const auto IsDone = [&] { return IsTicked(*pBox) == bTicked; };
    if (IsDone()) {
        return;
    }
    if (sight.FocusId() == nBoxId) {
        Press(VK_SPACE);
    }
    if (!WaitFor(1000, IsDone)) {
        Click(pBox->rect);
    }
    if (!WaitFor(2000, IsDone)) {
        throw CLost{L"the box of page " + std::to_wstring(sight.Number()) + L" cannot be ticked"};
    }
}

SIGHT CWalk::GoOn(DWORD dwMilliseconds) const
{
    const int nPage = Look().Number();
    const auto HasMoved = [&] {
        const SIGHT sight = Look();
        return sight.Number() != nPage || !sight.boxes.empty() || sight.Status().find(L" (") != std::wstring::npos;
    };
    Press(VK_RETURN);
    const bool bMoved = WaitFor(2000, HasMoved);
    // No page but those that do something has a box to show; Enter has then pressed something else.
    const SIGHT sight = Look();
    const bool bOtherBox = sight.Number() == nPage && sight.pPage->nStatusId == 0 && !sight.boxes.empty();
    if (bOtherBox) {
        Dismiss(sight.boxes.front());
    }
    if (!bMoved || bOtherBox) {
        PressButton(PSBTN_NEXT);
    }
    return WaitForPage(nPage + 1, dwMilliseconds);
}

void CWalk::GoTo(int nPage, const std::wstring& szPort) const
{
    for (SIGHT sight = Rest(); sight.Number() < nPage; sight = GoOn()) {
        if (sight.Number() == 5) {
            EnterAddress(L"127.0.0.1");
            Enter(IDC_WATCH_PORT, szPort);
        } else if (sight.pPage->nBoxId != 0) {
            Tick();
        }
        HasButtons(sight.pPage->nFilled, 1000);
    }
}

SIGHT CWalk::JumpTo(int nPage) const
{
    Ask(Look().frame.window.hwnd, PSM_SETCURSEL, static_cast<WPARAM>(nPage - 1), 0);
    return WaitForPage(nPage);
}

void CWalk::PressButton(int nButton) const
{
    PostMessageW(Look().frame.window.hwnd, PSM_PRESSBUTTON, static_cast<WPARAM>(nButton), 0);
}
