#include "check/Fields.h"

#include "check/Hands.h"
#include "check/Stopping.h"
#include "driver/Reading.h"

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

std::vector<PART> FieldsOf(const SIGHT& sight)
{
    const PART* const pAddress = sight.Control(IDC_WATCH_ADDRESS);
    if (pAddress == nullptr) {
        throw CLost{L"there is no address field"};
    }
    TREE address = TreeOf(pAddress->hwnd);
    std::ranges::sort(address.parts, {}, [](const PART& field) { return field.rect.left; });
    return std::move(address.parts);
}

int FieldOf(HWND hwnd, const std::vector<PART>& fields)
{
    const auto found = std::ranges::find(fields, hwnd, &PART::hwnd);
    return found == fields.end() ? 0 : static_cast<int>(found - fields.begin()) + 1;
}

void LookAtPrefill(CAnswers& answers, const CWalk& walk)
{
    const std::vector<std::wstring> gateways = DefaultGateways();
    const std::wstring szHeld = walk.TextOf(IDC_WATCH_ADDRESS);
    answers.m_notes.push_back(std::format(L"Routes of this computer that lead everywhere: {}", gateways.size()));
    const std::wstring szExpected = gateways.empty() ? L"..." : gateways.front();
    // The report tells no addresses.
    answers.Tell(L"address.prefill", szHeld == szExpected,
                 gateways.empty() ? L"an empty field, as no route leads everywhere"
                                  : L"the first three numbers of the gateway that the route table prefers",
                 szHeld == szExpected ? L"just that" : L"something else");
    if (gateways.empty()) {
        answers.NotTried(L"address.caret", L"without a gateway nothing is proposed");
        answers.NotTried(L"address.partial", L"without a gateway nothing is proposed");
    }
}

// The text of an edit, soon.
bool Holds(HWND hwnd, const std::wstring& szText)
{
    return WaitFor(2000, [&] { return ReadText(hwnd) == szText; });
}

void EmptyField(const CWalk& walk, const PART& field)
{
    Click(field.rect);
    WaitFor(2000, [&] { return walk.Look().hwndFocus == field.hwnd; });
    walk.Press(VK_END);
    for (int n = 0; n < 3 && !ReadText(field.hwnd).value_or(L"").empty(); ++n) {
        walk.Press(VK_BACK);
        Pause(30);
    }
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

// Opens the field's menu and takes the fourth of its commands: Undo, Cut, Copy, Paste.
std::wstring PasteByMenu(const CWalk& walk, int nId, const std::wstring& szText)
{
    constexpr PCWSTR kMenuClass = L"#32768";
    walk.Empty(nId);
    CopyText(szText);
    walk.Press(VK_F10, VK_SHIFT);
    if (!WaitFor(2000, [] { return FindWindowW(kMenuClass, nullptr) != nullptr; })) {
        return L"(no menu)";
    }
    for (int n = 0; n < 4; ++n) {
        walk.Press(VK_DOWN);
    }
    walk.Press(VK_RETURN);
    WaitFor(2000, [] { return FindWindowW(kMenuClass, nullptr) == nullptr; });
    Pause(200);
    return walk.TextOf(nId);
}

void TypeIntoPort(const CWalk& walk)
{
    CAnswers& answers = walk.Check().answers;
    walk.Empty(IDC_WATCH_PORT);
    walk.Type(L"4321");
    Pause(100);
    answers.Expect(L"number.digits", L"4321", walk.TextOf(IDC_WATCH_PORT));
    walk.Type(L"a-.x ");
    Pause(100);
    answers.Expect(L"number.letters", L"4321", walk.TextOf(IDC_WATCH_PORT));
    walk.Type(L"098");
    Pause(100);
    answers.Expect(L"number.limit", L"43210", walk.TextOf(IDC_WATCH_PORT));
    walk.Press(VK_BACK);
    walk.Press(VK_BACK);
    Pause(100);
    answers.Expect(L"number.backspace", L"432", walk.TextOf(IDC_WATCH_PORT));
}

} // namespace

void LookAtAddress(const CWalk& walk)
{
    CAnswers& answers = walk.Check().answers;
    const SIGHT sight = walk.Rest();
    const PART* const pAddress = sight.Control(IDC_WATCH_ADDRESS);
    answers.Expect(L"address.exists", WC_IPADDRESSW, pAddress != nullptr ? pAddress->szClass : L"no such control");
    const std::vector<PART> fields = FieldsOf(sight);
    answers.Expect(L"address.fields", L"4", std::to_wstring(fields.size()));
    LookAtPrefill(answers, walk);
    DWORD_PTR nFilled = 0;
    for (const PART& field : fields) {
        nFilled += ReadText(field.hwnd).value_or(L"").empty() ? 0 : 1;
    }
    answers.Expect(L"address.partial", L"3 of 4 filled in", std::format(L"{} of 4 filled in", nFilled));
    answers.Expect(L"address.caret", L"field 4", std::format(L"field {}", FieldOf(sight.hwndFocus, fields)));
    answers.Expect(L"address.caret-seen", L"field 4", std::format(L"field {}", FieldOf(sight.hwndCaret, fields)));
}

void TypeIntoAddress(const CWalk& walk)
{
    CAnswers& answers = walk.Check().answers;
    const std::vector<PART> fields = FieldsOf(walk.Rest());
    for (const PART& field : fields) {
        EmptyField(walk, field);
    }
    Click(fields[0].rect);
    walk.Type(L"1x2a7");
    answers.Tell(L"address.letters", Holds(fields[0].hwnd, L"127"), L"127",
                 ReadText(fields[0].hwnd).value_or(L"(busy)"));
    Pause(100);
    const auto Field = [&] { return FieldOf(walk.Rest().hwndFocus, fields); };
    answers.Expect(L"address.third-digit", L"field 2", std::format(L"field {}", Field()));
    if (Field() != 2) {
        Click(fields[1].rect);
    }
    walk.Type(L"0.");
    Pause(100);
    answers.Expect(L"address.dot", L"field 3", std::format(L"field {}", Field()));
    if (Field() != 3) {
        Click(fields[2].rect);
    }
    walk.Type(L"256");
    walk.Press(VK_TAB);
    Pause(200);
    const SIGHT sight = walk.Look();
    for (const TREE& box : sight.boxes) {
        walk.Dismiss(box);
    }
    const std::wstring szThird = ReadText(fields[2].hwnd).value_or(L"(busy)");
    answers.Expect(L"address.limit", L"255", szThird);
    for (size_t n = 2; n < fields.size(); ++n) {
        EmptyField(walk, fields[n]);
    }
    Click(fields[2].rect);
    walk.Type(L"0");
    walk.Enter(IDC_WATCH_PORT, L"4321");
    const bool bNot = walk.HasButtons(kWaiting);
    Click(fields[3].rect);
    walk.Type(L"1");
    const bool bNow = walk.HasButtons(kReady);
    walk.Press(VK_BACK);
    const bool bGone = walk.HasButtons(kWaiting);
    answers.Tell(L"address.tells", bNot && bNow && bGone, L"Next follows every key",
                 std::format(L"{} {} {}", bNot, bNow, bGone));
}

void LookAtPort(const CWalk& walk)
{
    CAnswers& answers = walk.Check().answers;
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
    CAnswers& answers = walk.Check().answers;
    answers.Expect(L"number.paste-twice", L"1212", Paste(walk, IDC_PAIRING_CODE, L"12"));
    walk.Empty(IDC_PAIRING_CODE);
    walk.Type(L"01234567");
    Pause(100);
    answers.Expect(L"number.code", L"012345", walk.TextOf(IDC_PAIRING_CODE));
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
