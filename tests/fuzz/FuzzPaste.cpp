// Anything at all on the clipboard, and any character typed, in the edit control that takes digits only.
//
// The input's first byte chooses: bit 0, whether the rest are UTF-16 units or bytes that stand for themselves; bits 1
// to 4, whether the clipboard holds no text, cannot be opened, gives no memory, or memory that cannot be locked.
#include "tests/fuzz/Demand.h"
#include "tests/fuzz/Units.h"

#include "app/ground/ErrorReport.h"
#include "wizard/IntegerEdit.h"

#include <cwctype>
#include <vector>

namespace {

constexpr size_t kMaxUnits = 1 << 16;
constexpr size_t kMaxTyped = 64;
constexpr LRESULT kAnswer = 4711;

const auto kWindow = reinterpret_cast<HWND>(0x100);
const auto kData = reinterpret_cast<HANDLE>(0x200);

struct CLIPBOARD
{
    bool bHasText;
    bool bOpens;
    bool bGivesData;
    bool bLocks;
    std::unique_ptr<wchar_t[]> pszText;
};
CLIPBOARD g_clipboard;

// What happened, in order, as words.
std::vector<std::wstring> g_journal;

BOOL Note(bool bAnswer, const std::wstring& strWhat)
{
    g_journal.push_back(strWhat);
    return bAnswer ? TRUE : FALSE;
}

std::wstring DigitsOf(const wchar_t* pszText)
{
    std::wstring digits;
    for (; *pszText != L'\0'; ++pszText) {
        if (iswdigit(static_cast<wint_t>(*pszText)) != 0) {
            digits += *pszText;
        }
    }
    return digits;
}

std::vector<std::wstring> ExpectedOfPaste()
{
    if (!g_clipboard.bHasText) {
        return {L"has text?"};
    }
    if (!g_clipboard.bOpens) {
        return {L"has text?", L"open"};
    }
    if (!g_clipboard.bGivesData) {
        return {L"has text?", L"open", L"data", L"close", L"default"};
    }
    if (!g_clipboard.bLocks) {
        return {L"has text?", L"open", L"data", L"lock", L"close", L"default"};
    }
    return {L"has text?", L"open",  L"data",   L"lock", L"insert " + DigitsOf(g_clipboard.pszText.get()),
            L"unlock",    L"close", L"default"};
}

LRESULT Send(UINT nMessage, WPARAM wParam)
{
    return CIntegerEdit::SubclassProc(kWindow, nMessage, wParam, 0, reinterpret_cast<UINT_PTR>(kWindow), 0);
}

void Paste()
{
    g_journal.clear();
    const LRESULT nAnswer = Send(WM_PASTE, 0);
    Demand(g_journal == ExpectedOfPaste(), "the clipboard's digits are inserted in their order, and nothing else is");
    Demand(nAnswer == (g_journal.back() == L"default" ? kAnswer : 0), "the control's own answer is passed on");
}

void Type(wchar_t ch)
{
    g_journal.clear();
    const LRESULT nAnswer = Send(WM_CHAR, static_cast<WPARAM>(ch));
    const bool bTaken = ch < L' ' || iswdigit(static_cast<wint_t>(ch)) != 0;
    Demand(g_journal.size() == (bTaken ? 1U : 0U), "digits and control characters reach the control, others do not");
    Demand(nAnswer == (bTaken ? kAnswer : 0), "the control's own answer is passed on");
}

} // namespace

BOOL IsClipboardFormatAvailable(UINT nFormat)
{
    Demand(nFormat == CF_UNICODETEXT, "text is asked for");
    return Note(g_clipboard.bHasText, L"has text?");
}

BOOL OpenClipboard(HWND hwnd)
{
    Demand(hwnd == kWindow, "the clipboard is opened for the control");
    return Note(g_clipboard.bOpens, L"open");
}

HANDLE GetClipboardData(UINT nFormat)
{
    Demand(nFormat == CF_UNICODETEXT, "text is asked for");
    return Note(g_clipboard.bGivesData, L"data") != FALSE ? kData : nullptr;
}

void* GlobalLock(HGLOBAL hMemory)
{
    Demand(hMemory == kData, "the clipboard's memory is locked");
    return Note(g_clipboard.bLocks, L"lock") != FALSE ? g_clipboard.pszText.get() : nullptr;
}

BOOL GlobalUnlock(HGLOBAL hMemory)
{
    Demand(hMemory == kData, "the clipboard's memory is unlocked");
    return Note(true, L"unlock");
}

BOOL CloseClipboard()
{
    return Note(true, L"close");
}

LRESULT SendMessageW(HWND hwnd, UINT nMessage, WPARAM wParam, LPARAM lParam)
{
    Demand(hwnd == kWindow && nMessage == EM_REPLACESEL && wParam == FALSE, "digits are inserted, not to be undone");
    Note(true, std::wstring(L"insert ") + reinterpret_cast<PCWSTR>(lParam));
    return 0;
}

LRESULT DefSubclassProc(HWND hwnd, UINT /*nMessage*/, WPARAM /*wParam*/, LPARAM /*lParam*/)
{
    Demand(hwnd == kWindow, "the message is the control's own");
    Note(true, L"default");
    return kAnswer;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* pData, size_t nSize)
{
    if (nSize == 0) {
        return 0;
    }
    const unsigned nChoices = pData[0];
    const std::wstring units = UnitsOf({pData + 1, nSize - 1}, (nChoices & 1) != 0, kMaxUnits);
    g_clipboard = {(nChoices & 2) == 0, (nChoices & 4) == 0, (nChoices & 8) == 0, (nChoices & 16) == 0,
                   TerminatedCopy(units)};
    Paste();
    for (size_t n = 0; n < std::min(units.size(), kMaxTyped); ++n) {
        Type(units[n]);
    }
    return 0;
}

// Making and taking off the subclass calls these; typing and pasting do not.

BOOL SetWindowSubclass(HWND, SUBCLASSPROC, UINT_PTR, DWORD_PTR)
{
    Unexpected("SetWindowSubclass");
}

BOOL RemoveWindowSubclass(HWND, SUBCLASSPROC, UINT_PTR)
{
    Unexpected("RemoveWindowSubclass");
}

BOOL SetWindowTextW(HWND, PCWSTR)
{
    Unexpected("SetWindowTextW");
}

void ReportFatalError(PCWSTR, PCWSTR)
{
    Unexpected("ReportFatalError");
}
