#include "check/Sight.h"

#include "check/Stopping.h"
#include "check/Text.h"
#include "driver/Reading.h"

#include <commctrl.h>
#include <oleacc.h>
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

BOOL CALLBACK AddPart(HWND hwnd, LPARAM lParam)
{
    reinterpret_cast<std::vector<PART>*>(lParam)->push_back(PartOf(hwnd));
    return TRUE;
}

// A message box holds nothing but words, a picture and buttons.
bool IsMessageBox(const TREE& tree)
{
    return tree.window.IsKind(kDialogClass) && !tree.parts.empty() &&
           std::ranges::all_of(tree.parts,
                               [](const PART& part) { return part.IsKind(WC_STATICW) || part.IsKind(WC_BUTTONW); });
}

const PAGE* PageIn(const TREE& tree)
{
    for (const PART& part : tree.parts) {
        const auto* const pFound = std::ranges::find(kPages, part.nId, &PAGE::nBodyId);
        if (part.bVisible && part.IsKind(WC_STATICW) && pFound != kPages.end()) {
            return &*pFound;
        }
    }
    return nullptr;
}

// A button of the frame whose id is none that we know is known by its text.
void NameButtons(SIGHT& sight)
{
    for (PART& part : sight.frame.parts) {
        if (part.IsKind(WC_BUTTONW) && !IsChild(sight.hwndPage, part.hwnd) &&
            std::ranges::find(kFrameButtons, part.nId, &FRAME_BUTTON::nId) == kFrameButtons.end()) {
            std::wstring szText = part.szText;
            std::erase(szText, L'&');
            const auto* const pFound = std::ranges::find(kFrameButtons, szText, &FRAME_BUTTON::pszText);
            part.nId = pFound != kFrameButtons.end() ? pFound->nId : part.nId;
        }
    }
}

void Recognise(SIGHT& sight, TREE tree)
{
    const PAGE* const pPage = PageIn(tree);
    if (pPage != nullptr && tree.window.szText == kTitle) {
        sight.pPage = pPage;
        const auto body = std::ranges::find(tree.parts, pPage->nBodyId, &PART::nId);
        sight.hwndPage = GetParent(body->hwnd);
        sight.frame = std::move(tree);
        NameButtons(sight);
    } else if (IsMessageBox(tree)) {
        sight.boxes.push_back(std::move(tree));
    } else {
        sight.others.push_back(std::move(tree));
    }
}

struct SEARCH
{
    DWORD dwProcess;
    std::vector<HWND> found;
};

BOOL CALLBACK AddWindow(HWND hwnd, LPARAM lParam)
{
    auto& search = *reinterpret_cast<SEARCH*>(lParam);
    DWORD dwProcess = 0;
    GetWindowThreadProcessId(hwnd, &dwProcess);
    if (dwProcess == search.dwProcess && IsWindowVisible(hwnd)) {
        search.found.push_back(hwnd);
    }
    return TRUE;
}

// More than any frame has; a guard against programs whose tree has no end.
constexpr size_t kMostElements = 1000;

// For screen readers.
bool IsNamed(IAccessible* pElement, VARIANT self, const std::wstring& szName)
{
    BSTR bstrName = nullptr;
    const bool bNamed = pElement->get_accName(self, &bstrName) == S_OK && bstrName != nullptr && szName == bstrName;
    SysFreeString(bstrName);
    return bNamed;
}

// Whether anything inside an element has that name; adds those elements that may have more inside.
bool SaysInside(IAccessible* pElement, const std::wstring& szName, std::vector<ComPtr<IAccessible>>& elements)
{
    long nChildren = 0;
    pElement->get_accChildCount(&nChildren);
    std::vector<VARIANT> children(static_cast<size_t>(std::max(nChildren, 0L)));
    long nObtained = 0;
    AccessibleChildren(pElement, 0, nChildren, children.data(), &nObtained);
    bool bSays = false;
    for (VARIANT& child : children) {
        ComPtr<IAccessible> pChild;
        if (child.vt == VT_DISPATCH && child.pdispVal != nullptr &&
            SUCCEEDED(child.pdispVal->QueryInterface(IID_PPV_ARGS(&pChild)))) {
            VARIANT self = {};
            self.vt = VT_I4;
            bSays = bSays || IsNamed(pChild.Get(), self, szName);
            elements.push_back(pChild);
        } else if (child.vt == VT_I4) {
            bSays = bSays || IsNamed(pElement, child, szName);
        }
        VariantClear(&child);
    }
    return bSays;
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
    return CompareStringOrdinal(szClass.c_str(), -1, pszClass, -1, TRUE) == CSTR_EQUAL;
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
    EnumChildWindows(hwnd, AddPart, reinterpret_cast<LPARAM>(&tree.parts));
    return tree;
}

std::vector<HWND> WindowsOf(DWORD dwProcess)
{
    SEARCH search = {dwProcess, {}};
    EnumWindows(AddWindow, reinterpret_cast<LPARAM>(&search));
    return std::move(search.found);
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
    ComPtr<IAccessible> pWindow;
    if (FAILED(AccessibleObjectFromWindow(hwnd, static_cast<DWORD>(OBJID_CLIENT), IID_PPV_ARGS(&pWindow)))) {
        return false;
    }
    std::vector<ComPtr<IAccessible>> elements = {pWindow};
    for (size_t n = 0; n < std::min(elements.size(), kMostElements); ++n) {
        const ComPtr<IAccessible> pElement = elements[n];
        if (SaysInside(pElement.Get(), szName, elements)) {
            return true;
        }
    }
    return false;
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
