#include "check/Sight.h"

#include "check/Stopping.h"
#include "check/Text.h"
#include "driver/Reading.h"

#include <commctrl.h>
#include <oleauto.h>
#include <uiautomation.h>
#include <wrl/client.h>

#include <algorithm>
#include <format>
#include <ranges>

using Microsoft::WRL::ComPtr;

namespace {

constexpr PCWSTR kDialogClass = L"#32770";

PART PartOf(HWND hwnd)
{
    const LONG nStyle = GetWindowLongW(hwnd, GWL_STYLE);
    PART part = {hwnd,
                 ClassOf(hwnd),
                 TitleOf(hwnd),
                 nStyle & WS_CHILD ? GetDlgCtrlID(hwnd) : 0,
                 {},
                 nStyle,
                 IsWindowVisible(hwnd) != FALSE,
                 IsWindowEnabled(hwnd) != FALSE};
    GetWindowRect(hwnd, &part.rect);
    return part;
}

// A message box holds nothing but words, a picture and buttons.
bool IsMessageBox(const TREE& tree)
{
    return tree.window.IsKind(kDialogClass) && !tree.parts.empty() &&
           std::ranges::all_of(tree.parts,
                               [](const PART& part) { return part.IsKind(WC_STATICW) || part.IsKind(WC_BUTTONW); });
}

// Null for what is no body of a page.
const PAGE* PageOf(const PART& body)
{
    const auto* const pFound = std::ranges::find(kPages, body.nId, &PAGE::nBodyId);
    return body.bVisible && body.IsKind(WC_STATICW) && pFound != kPages.end() ? &*pFound : nullptr;
}

// A button of the frame whose id is none that we know is known by its text.
void NameButton(PART& part)
{
    const auto IsKnown = [&](const FRAME_BUTTON& button) { return button.nId == part.nId; };
    std::wstring szText = part.szText;
    std::erase(szText, L'&');
    const auto* const pNamed = std::ranges::find(kFrameButtons, szText, &FRAME_BUTTON::pszText);
    if (std::ranges::none_of(kFrameButtons, IsKnown) && pNamed != kFrameButtons.end()) {
        part.nId = pNamed->nId;
    }
}

void Recognise(SIGHT& sight, TREE tree)
{
    const auto body = std::ranges::find_if(tree.parts, PageOf);
    if (body != tree.parts.end() && tree.window.szText == kTitle) {
        sight.pPage = PageOf(*body);
        sight.hwndPage = GetParent(body->hwnd);
        sight.frame = std::move(tree);
        for (PART& part : sight.frame.parts) {
            if (part.IsKind(WC_BUTTONW) && !IsChild(sight.hwndPage, part.hwnd)) {
                NameButton(part);
            }
        }
    } else if (IsMessageBox(tree)) {
        sight.boxes.push_back(std::move(tree));
    } else {
        sight.others.push_back(std::move(tree));
    }
}

template<typename WANTED>
std::vector<const PART*> Where(const std::vector<PART>& parts, WANTED wanted)
{
    std::vector<const PART*> found;
    for (const PART& part : parts) {
        if (wanted(part)) {
            found.push_back(&part);
        }
    }
    return found;
}

const PART* FirstOf(const std::vector<const PART*>& parts)
{
    return parts.empty() ? nullptr : parts.front();
}

} // namespace

bool PART::IsKind(PCWSTR pszClass) const
{
    return IsSame(szClass, pszClass);
}

bool PART::IsPushButton() const
{
    const LONG nKind = nStyle & BS_TYPEMASK;
    return IsKind(WC_BUTTONW) && (nKind == BS_PUSHBUTTON || nKind == BS_DEFPUSHBUTTON);
}

const PART* SIGHT::Control(int nId) const
{
    return FirstOf(
        Where(frame.parts, [&](const PART& part) { return part.nId == nId && IsChild(hwndPage, part.hwnd); }));
}

const PART& SIGHT::Existing(int nId) const
{
    const PART* const pControl = Control(nId);
    if (pControl == nullptr) {
        throw CLost{std::format(L"there is no control {} on page {}", nId, Number())};
    }
    return *pControl;
}

const PART* SIGHT::FrameButton(int nId) const
{
    return FirstOf(Where(frame.parts, [&](const PART& part) {
        return part.nId == nId && part.bVisible && part.IsKind(WC_BUTTONW) && !IsChild(hwndPage, part.hwnd);
    }));
}

UINT SIGHT::Buttons() const
{
    UINT nButtons = 0;
    for (const FRAME_BUTTON& button : kFrameButtons) {
        nButtons |= FrameButton(button.nId) != nullptr ? button.nButton : 0;
    }
    return nButtons;
}

std::wstring SIGHT::Status() const
{
    const PART* const pStatus = pPage != nullptr && pPage->nStatusId != 0 ? Control(pPage->nStatusId) : nullptr;
    return pStatus != nullptr ? pStatus->szText : std::wstring();
}

int SIGHT::FocusId() const
{
    for (const PART& part : frame.parts) {
        if (part.nId != 0 &&
            (part.hwnd == hwndFocus || (part.IsKind(WC_IPADDRESSW) && IsChild(part.hwnd, hwndFocus)))) {
            return part.nId;
        }
    }
    return 0;
}

std::vector<const PART*> SIGHT::DefaultButtons() const
{
    return Where(frame.parts, [](const PART& part) {
        return part.bVisible && part.IsKind(WC_BUTTONW) && (part.nStyle & BS_TYPEMASK) == BS_DEFPUSHBUTTON;
    });
}

std::vector<const PART*> SIGHT::PageParts() const
{
    return Where(frame.parts, [&](const PART& part) { return part.bVisible && GetParent(part.hwnd) == hwndPage; });
}

std::vector<const PART*> SIGHT::FrameParts() const
{
    return Where(frame.parts, [&](const PART& part) {
        return part.bVisible && part.hwnd != hwndPage && !IsChild(hwndPage, part.hwnd) &&
               (part.IsKind(WC_STATICW) || part.IsKind(WC_BUTTONW));
    });
}

TREE TreeOf(HWND hwnd)
{
    TREE tree = {PartOf(hwnd), {}};
    const auto Add = [](HWND hwndInside, LPARAM lParam) -> BOOL {
        reinterpret_cast<std::vector<PART>*>(lParam)->push_back(PartOf(hwndInside));
        return TRUE;
    };
    EnumChildWindows(hwnd, Add, reinterpret_cast<LPARAM>(&tree.parts));
    return tree;
}

DWORD ProcessOf(HWND hwnd)
{
    DWORD dwProcess = 0;
    GetWindowThreadProcessId(hwnd, &dwProcess);
    return dwProcess;
}

std::vector<HWND> WindowsOf(DWORD dwProcess)
{
    std::vector<HWND> windows;
    const auto Add = [](HWND hwnd, LPARAM lParam) -> BOOL {
        reinterpret_cast<std::vector<HWND>*>(lParam)->push_back(hwnd);
        return TRUE;
    };
    EnumWindows(Add, reinterpret_cast<LPARAM>(&windows));
    std::erase_if(windows, [&](HWND hwnd) { return ProcessOf(hwnd) != dwProcess || !IsWindowVisible(hwnd); });
    return windows;
}

SIGHT LookAt(DWORD dwProcess)
{
    SIGHT sight;
    for (const HWND hwnd : WindowsOf(dwProcess)) {
        Recognise(sight, TreeOf(hwnd));
    }
    // The thread that has the keyboard; zero names it.
    GUITHREADINFO thread = {};
    thread.cbSize = sizeof thread;
    GetGUIThreadInfo(0, &thread);
    sight.hwndFocus = thread.hwndFocus;
    sight.hwndCaret = thread.hwndCaret;
    sight.hwndForeground = GetForegroundWindow();
    return sight;
}

std::wstring ButtonNames(UINT nButtons)
{
    const auto IsAmong = [nButtons](const FRAME_BUTTON& button) { return (nButtons & button.nButton) != 0; };
    return Joined(kFrameButtons | std::views::filter(IsAmong), L", ", L"none", &FRAME_BUTTON::pszText);
}

std::wstring WordsOf(const TREE& box)
{
    const auto IsText = [](const PART& part) {
        return part.bVisible && part.IsKind(WC_STATICW) && !part.szText.empty();
    };
    return box.window.szText + L": " +
           Joined(box.parts | std::views::filter(IsText), L"\n", L"no words", &PART::szText);
}

std::vector<PART> FieldsOf(const PART& address)
{
    std::vector<PART> fields = TreeOf(address.hwnd).parts;
    std::ranges::sort(fields, {}, [](const PART& field) { return field.rect.left; });
    return fields;
}

std::wstring HoldsText(const PART& control)
{
    const auto Text = [](const PART& edit) { return ReadText(edit.hwnd).value_or(L"(busy)"); };
    if (!control.IsKind(WC_IPADDRESSW)) {
        return Text(control);
    }
    // An empty field stands between two dots.
    std::wstring szText;
    for (const PART& field : FieldsOf(control)) {
        szText += L"." + Text(field);
    }
    return szText.substr(szText.empty() ? 0 : 1);
}

bool IsTicked(const PART& control)
{
    return Ask(control.hwnd, BM_GETCHECK, 0, 0) == DWORD_PTR{BST_CHECKED};
}

bool SaysOfItself(HWND hwnd, const std::wstring& szName)
{
    const TREE tree = TreeOf(hwnd);
    if (std::ranges::any_of(tree.parts, [&](const PART& part) { return part.bVisible && part.szText == szName; })) {
        return true;
    }
    ComPtr<IUIAutomation> pReader;
    ComPtr<IUIAutomationElement> pWindow;
    ComPtr<IUIAutomationCondition> pNamed;
    ComPtr<IUIAutomationElement> pFound;
    VARIANT name = {};
    name.vt = VT_BSTR;
    name.bstrVal = SysAllocString(szName.c_str());
    const bool bAsked =
        SUCCEEDED(CoCreateInstance(__uuidof(CUIAutomation), nullptr, CLSCTX_INPROC_SERVER, IID_PPV_ARGS(&pReader))) &&
        SUCCEEDED(pReader->ElementFromHandle(hwnd, &pWindow)) &&
        SUCCEEDED(pReader->CreatePropertyCondition(UIA_NamePropertyId, name, &pNamed)) &&
        SUCCEEDED(pWindow->FindFirst(TreeScope_Descendants, pNamed.Get(), &pFound));
    VariantClear(&name);
    return bAsked && pFound != nullptr;
}

std::wstring Describe(const TREE& tree)
{
    const auto Line = [](const PART& part) {
        return std::format(L"{} id {} \"{}\" {}x{} at {},{} style {:08x}{}{}\n", part.szClass, part.nId,
                           part.szText.substr(0, 60), part.rect.right - part.rect.left,
                           part.rect.bottom - part.rect.top, part.rect.left, part.rect.top,
                           static_cast<unsigned long>(part.nStyle), part.bVisible ? L"" : L" hidden",
                           part.bEnabled ? L"" : L" disabled");
    };
    std::wstring szLines = Line(tree.window);
    for (const PART& part : tree.parts) {
        szLines += L"  " + Line(part);
    }
    return szLines;
}
