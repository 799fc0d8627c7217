// Anything at all on the clipboard, and any character typed, in the edit control that takes digits only.
//
// The input's first byte chooses: bit 0, whether the rest are UTF-16 units or bytes that stand for themselves; the
// lowest of bits 1 to 4, whether the clipboard holds no text, cannot be opened, gives no memory, or one that cannot be
// locked.
#include "tests/fuzz/Demand.h"
#include "tests/fuzz/Units.h"

#include "app/ground/ErrorReport.h"
#include "wizard/IntegerEdit.h"

#include <bit>
#include <cwctype>
#include <iterator>
#include <string>

namespace {

constexpr size_t kMaxUnits = 1 << 16;
constexpr size_t kMaxTyped = 64;
constexpr LRESULT kAnswer = 4711;

const auto kWindow = reinterpret_cast<HWND>(0x100);
const auto kData = reinterpret_cast<HANDLE>(0x200);

// What happens, in order, as words, when the first of the four questions to the clipboard is refused, the second ...
constexpr PCWSTR kRefused[] = {L"text? ", L"text? open ", L"text? open data close default ",
                               L"text? open data lock close default "};
size_t g_nRefused = 0;
wchar_t* g_pszClipboard = nullptr;
std::wstring g_journal;

BOOL Note(const std::wstring& strWhat, size_t nQuestion = std::size(kRefused))
{
    g_journal += strWhat + L' ';
    return nQuestion != g_nRefused ? TRUE : FALSE;
}

std::wstring ExpectedOfPaste()
{
    if (g_nRefused < std::size(kRefused)) {
        return kRefused[g_nRefused];
    }
    std::wstring digits = g_pszClipboard;
    std::erase_if(digits, [](wchar_t ch) { return iswdigit(static_cast<wint_t>(ch)) == 0; });
    return L"text? open data lock insert " + digits + L" unlock close default ";
}

LRESULT Send(UINT nMessage, WPARAM wParam)
{
    g_journal.clear();
    return CIntegerEdit::SubclassProc(kWindow, nMessage, wParam, 0, reinterpret_cast<UINT_PTR>(kWindow), 0);
}

void Paste()
{
    const LRESULT nAnswer = Send(WM_PASTE, 0);
    Demand(g_journal == ExpectedOfPaste(), "the clipboard's digits are inserted in their order, and nothing else is");
    Demand(nAnswer == (g_journal.ends_with(L"default ") ? kAnswer : 0), "the control's own answer is passed on");
}

void Type(wchar_t ch)
{
    const LRESULT nAnswer = Send(WM_CHAR, static_cast<WPARAM>(ch));
    const bool bTaken = ch < L' ' || iswdigit(static_cast<wint_t>(ch)) != 0;
    Demand(g_journal == (bTaken ? L"default " : L""), "digits and control characters alone reach the control");
    Demand(nAnswer == (bTaken ? kAnswer : 0), "the control's own answer is passed on");
}

} // namespace

BOOL IsClipboardFormatAvailable(UINT nFormat)
{
    Demand(nFormat == CF_UNICODETEXT, "text is asked for");
    return Note(L"text?", 0);
}

BOOL OpenClipboard(HWND hwnd)
{
    Demand(hwnd == kWindow, "the clipboard is opened for the control");
    return Note(L"open", 1);
}

HANDLE GetClipboardData(UINT nFormat)
{
    Demand(nFormat == CF_UNICODETEXT, "text is asked for");
    return Note(L"data", 2) ? kData : nullptr;
}

void* GlobalLock(HGLOBAL hMemory)
{
    Demand(hMemory == kData, "the clipboard's memory is locked");
    return Note(L"lock", 3) ? g_pszClipboard : nullptr;
}

BOOL GlobalUnlock(HGLOBAL hMemory)
{
    Demand(hMemory == kData, "the clipboard's memory is unlocked");
    return Note(L"unlock");
}

BOOL CloseClipboard()
{
    return Note(L"close");
}

LRESULT SendMessageW(HWND hwnd, UINT nMessage, WPARAM wParam, LPARAM lParam)
{
    Demand(hwnd == kWindow && nMessage == EM_REPLACESEL && wParam == FALSE, "digits are inserted, not to be undone");
    return Note(std::wstring(L"insert ") + reinterpret_cast<PCWSTR>(lParam));
}

LRESULT DefSubclassProc(HWND hwnd, UINT /*nMessage*/, WPARAM /*wParam*/, LPARAM /*lParam*/)
{
    Demand(hwnd == kWindow, "the message is the control's own");
    Note(L"default");
    return kAnswer;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* pData, size_t nSize)
{
    if (nSize == 0) {
        return 0;
    }
    const auto pszText = TextOf({pData + 1, nSize - 1}, (pData[0] & 1) != 0, kMaxUnits);
    g_pszClipboard = pszText.get();
    g_nRefused = static_cast<size_t>(std::countr_zero((pData[0] >> 1U) & 0xFU));
    Paste();
    for (size_t n = 0; n < kMaxTyped && pszText[n] != L'\0'; ++n) {
        Type(pszText[n]);
    }
    return 0;
}

// Making and taking off the subclass calls these; typing and pasting do not.
UNEXPECTED(BOOL SetWindowSubclass(HWND, SUBCLASSPROC, UINT_PTR, DWORD_PTR))
UNEXPECTED(BOOL RemoveWindowSubclass(HWND, SUBCLASSPROC, UINT_PTR))
UNEXPECTED(BOOL SetWindowTextW(HWND, PCWSTR))
UNEXPECTED(void ReportFatalError(PCWSTR, PCWSTR))
