#include "check/Fields.h"

#include "check/Hands.h"
#include "check/Stopping.h"

#include <winsock2.h>

#include <commctrl.h>
#include <iphlpapi.h>

#include <algorithm>
#include <format>
#include <memory>

namespace {

// The routes of this computer that lead everywhere, the cheapest first: their gateways.
std::vector<std::wstring> DefaultGateways()
{
    ULONG cb = 0;
    GetIpForwardTable(nullptr, &cb, FALSE);
    const auto buffer = std::make_unique<std::byte[]>(cb);
    auto* const pTable = reinterpret_cast<MIB_IPFORWARDTABLE*>(buffer.get());
    std::vector<MIB_IPFORWARDROW> rows;
    if (cb != 0 && GetIpForwardTable(pTable, &cb, FALSE) == NO_ERROR) {
        std::copy_if(pTable->table, pTable->table + pTable->dwNumEntries, std::back_inserter(rows),
                     [](const MIB_IPFORWARDROW& row) { return row.dwForwardDest == 0 && row.dwForwardMask == 0; });
    }
    std::ranges::stable_sort(rows, {}, &MIB_IPFORWARDROW::dwForwardMetric1);
    std::vector<std::wstring> gateways;
    for (const MIB_IPFORWARDROW& row : rows) {
        const auto* const p = reinterpret_cast<const BYTE*>(&row.dwForwardNextHop);
        gateways.push_back(std::format(L"{}.{}.{}.", p[0], p[1], p[2]));
    }
    return gateways;
}

// "field 4", counted from the left.
std::wstring FieldName(HWND hwnd, const std::vector<PART>& fields)
{
    const auto found = std::ranges::find(fields, hwnd, &PART::hwnd);
    return found == fields.end() ? L"no field" : std::format(L"field {}", found - fields.begin() + 1);
}

// Says whether there is a gateway, without which nothing is proposed.
bool LookAtPrefill(CAnswers& answers, const CWalk& walk)
{
    const std::vector<std::wstring> gateways = DefaultGateways();
    answers.m_notes.push_back(std::format(L"Routes of this computer that lead everywhere: {}", gateways.size()));
    const std::wstring szExpected = gateways.empty() ? L"..." : gateways.front();
    // The report tells no addresses.
    answers.Either(L"address.prefill", walk.TextOf(IDC_WATCH_ADDRESS) == szExpected,
                   gateways.empty() ? L"an empty field, as no route leads everywhere"
                                    : L"the first three numbers of the gateway that the route table prefers",
                   L"something else");
    return !gateways.empty();
}

// Copies, empties the field and pastes. What the field holds then.
std::wstring Paste(const CWalk& walk, int nId, const std::wstring& szText)
{
    walk.Empty(nId);
    if (!CopyText(szText)) {
        throw CLost{L"the clipboard cannot be written"};
    }
    walk.Press(L'V', VK_CONTROL);
    Pause(200);
    return walk.TextOf(nId);
}

bool IsMenuOpen()
{
    const HWND hwnd = FindWindowW(L"#32768", nullptr);
    return hwnd != nullptr && IsWindowVisible(hwnd);
}

// Opens the field's menu and takes the fourth of its commands: Undo, Cut, Copy, Paste.
std::wstring PasteByMenu(const CWalk& walk, int nId, const std::wstring& szText)
{
    walk.Empty(nId);
    CopyText(szText);
    walk.Press(VK_F10, VK_SHIFT);
    if (!WaitFor(2000, IsMenuOpen)) {
        return L"(no menu)";
    }
    for (int n = 0; n < 4; ++n) {
        walk.Press(VK_DOWN);
    }
    walk.Press(VK_RETURN);
    WaitFor(2000, [] { return !IsMenuOpen(); });
    Pause(200);
    return walk.TextOf(nId);
}

// What a field of the page holds once that is typed into it.
std::wstring Typed(const CWalk& walk, int nId, PCWSTR pszText)
{
    walk.Type(pszText);
    Pause(100);
    return walk.TextOf(nId);
}

void TypeIntoPort(const CWalk& walk)
{
    CAnswers& answers = walk.Answers();
    walk.Empty(IDC_WATCH_PORT);
    answers.Expect(L"number.digits", L"4321", Typed(walk, IDC_WATCH_PORT, L"4321"));
    answers.Expect(L"number.letters", L"4321", Typed(walk, IDC_WATCH_PORT, L"a-.x "));
    answers.Expect(L"number.limit", L"43210", Typed(walk, IDC_WATCH_PORT, L"098"));
    walk.Press(VK_BACK);
    walk.Press(VK_BACK);
    answers.Expect(L"number.backspace", L"432", Typed(walk, IDC_WATCH_PORT, L""));
}

// Types into a field of the address and says where the keyboard is then, which goes on to the next field in any case.
std::wstring TypeIntoField(const CWalk& walk, const std::vector<PART>& fields, size_t nField, PCWSTR pszText)
{
    walk.Type(pszText);
    Pause(100);
    const HWND hwndFocus = walk.Rest().hwndFocus;
    if (const PART& next = fields[nField + 1]; hwndFocus != next.hwnd) {
        Click(next.rect);
    }
    return FieldName(hwndFocus, fields);
}

// With the port there, Next is offered for an address of four numbers and no other.
void LookAtNext(const CWalk& walk, const std::vector<PART>& fields)
{
    walk.EmptyField(fields[2]);
    walk.EmptyField(fields[3]);
    Click(fields[2].rect);
    walk.Type(L"0");
    walk.Enter(IDC_WATCH_PORT, L"4321");
    const bool bNot = walk.HasButtons(kWaiting);
    Click(fields[3].rect);
    walk.Type(L"1");
    const bool bNow = walk.HasButtons(kReady);
    walk.Press(VK_BACK);
    const bool bGone = walk.HasButtons(kWaiting);
    walk.Answers().Tell(L"address.tells", bNot && bNow && bGone, L"Next follows every key",
                        std::format(L"{} {} {}", bNot, bNow, bGone));
}

} // namespace

void LookAtAddress(const CWalk& walk)
{
    CAnswers& answers = walk.Answers();
    const SIGHT sight = walk.Rest();
    const PART* const pAddress = sight.Control(IDC_WATCH_ADDRESS);
    answers.Expect(L"address.exists", WC_IPADDRESSW, pAddress != nullptr ? pAddress->szClass : L"no such control");
    const std::vector<PART> fields = pAddress != nullptr ? FieldsOf(*pAddress) : std::vector<PART>();
    answers.Expect(L"address.fields", L"4", std::to_wstring(fields.size()));
    if (!LookAtPrefill(answers, walk)) {
        for (const PCWSTR pszClaim : {L"address.partial", L"address.caret", L"address.caret-seen"}) {
            answers.NotTried(pszClaim, L"without a gateway nothing is proposed");
        }
        return;
    }
    const auto nFilled = std::ranges::count_if(fields, [](const PART& field) { return !HoldsText(field).empty(); });
    answers.Expect(L"address.partial", L"3 of 4 filled in", std::format(L"{} of 4 filled in", nFilled));
    answers.Expect(L"address.caret", L"field 4", FieldName(sight.hwndFocus, fields));
    answers.Expect(L"address.caret-seen", L"field 4", FieldName(sight.hwndCaret, fields));
}

void TypeIntoAddress(const CWalk& walk)
{
    CAnswers& answers = walk.Answers();
    const std::vector<PART> fields = walk.AddressFields();
    for (const PART& field : fields) {
        walk.EmptyField(field);
    }
    Click(fields[0].rect);
    answers.Expect(L"address.third-digit", L"field 2", TypeIntoField(walk, fields, 0, L"1x2a7"));
    answers.Expect(L"address.letters", L"127", HoldsText(fields[0]));
    answers.Expect(L"address.dot", L"field 3", TypeIntoField(walk, fields, 1, L"0."));
    walk.Type(L"256");
    walk.Press(VK_TAB);
    Pause(200);
    if (!walk.Look().boxes.empty()) {
        walk.Dismiss(walk.WaitForBox());
    }
    answers.Expect(L"address.limit", L"255", HoldsText(fields[2]));
    LookAtNext(walk, fields);
}

void LookAtPort(const CWalk& walk)
{
    CAnswers& answers = walk.Answers();
    TypeIntoPort(walk);
    answers.Expect(L"number.paste", L"43210", Paste(walk, IDC_WATCH_PORT, L"43210"));
    answers.Expect(L"number.paste-mixed", L"43210", Paste(walk, IDC_WATCH_PORT, L"port 4-3-2-1-0!"));
    answers.Expect(L"number.paste-long", L"43210", Paste(walk, IDC_WATCH_PORT, L"43210" + std::wstring(100000, L'9')));
    answers.Expect(L"number.paste-menu", L"43210", PasteByMenu(walk, IDC_WATCH_PORT, L"43210"));
    walk.Empty(IDC_WATCH_PORT);
    CopyPicture();
    walk.Press(L'V', VK_CONTROL);
    Pause(200);
    answers.Expect(L"number.paste-picture", L"", walk.TextOf(IDC_WATCH_PORT));
}

void LookAtCode(const CWalk& walk)
{
    CAnswers& answers = walk.Answers();
    answers.Expect(L"number.paste-twice", L"1212", Paste(walk, IDC_PAIRING_CODE, L"12"));
    walk.Empty(IDC_PAIRING_CODE);
    answers.Expect(L"number.code", L"012345", Typed(walk, IDC_PAIRING_CODE, L"01234567"));
    // Arabic digits: which of them get in is the C library's to say. The page must not take them for a port.
    walk.Enter(IDC_PAIRING_CODE, L"123456");
    const std::wstring szHeld = Paste(walk, IDC_PAIRING_PORT, L"\x0664\x0663\x0662\x0661\x0660");
    const SIGHT sight = walk.Rest();
    bool bRefused = (sight.Buttons() & kNext) == 0;
    if (!bRefused) {
        walk.ClickControl(kNextId);
        const TREE box = walk.WaitForBox(5000);
        bRefused = walk.Look().Number() == 6;
        walk.Dismiss(box);
    }
    answers.Tell(L"number.paste-script", bRefused, L"no Next, or a box", L"the field holds \"" + szHeld + L"\"");
}
