#include "wizard/IntegerEdit.h"

#include "app/ground/ErrorReport.h"

#include <cwctype>

void CIntegerEdit::Attach(HWND hwndCtl, UINT nLimit, PCWSTR pszContext, PCWSTR pszFailure)
{
    if (!SetWindowSubclass(hwndCtl, 0)) {
        ReportFatalError(pszContext, pszFailure);
    }
    SendMessageW(hwndCtl, EM_LIMITTEXT, nLimit, 0);
    SetWindowTextW(hwndCtl, L"");
}

BOOL CIntegerEdit::SetWindowSubclass(HWND hwndCtl, DWORD_PTR dwRefData)
{
    return ::SetWindowSubclass(hwndCtl, SubclassProc, reinterpret_cast<UINT_PTR>(hwndCtl), dwRefData);
}

LRESULT CALLBACK CIntegerEdit::SubclassProc(HWND hwnd, UINT nMessage, WPARAM wParam, LPARAM lParam,
                                            UINT_PTR nSubclassId, DWORD_PTR /*dwRefData*/)
{
    switch (nMessage) {
    case WM_NCDESTROY:
        RemoveWindowSubclass(hwnd, SubclassProc, nSubclassId);
        break;
    case WM_CHAR:
        // Below the blank are Backspace and what Ctrl with a letter sends.
        if (wParam >= L' ' && !iswdigit(static_cast<wint_t>(wParam))) {
            return 0;
        }
        break;
    case WM_PASTE:
        if (!IsClipboardFormatAvailable(CF_UNICODETEXT) || !OpenClipboard(hwnd)) {
            return 0;
        }
        PasteDigits(hwnd);
        CloseClipboard();
        // The control's own paste follows on purpose: it inserts once more what still fits.
        break;
    default:
        break;
    }
    return DefSubclassProc(hwnd, nMessage, wParam, lParam);
}

// Inserts the digits in the text of the clipboard, which is open.
void CIntegerEdit::PasteDigits(HWND hwnd)
{
    const HANDLE hData = GetClipboardData(CF_UNICODETEXT);
    if (hData == nullptr) {
        return;
    }
    const auto* pszText = static_cast<const WCHAR*>(GlobalLock(hData));
    if (pszText == nullptr) {
        return;
    }
    CStringW szDigits;
    for (; *pszText != L'\0'; ++pszText) {
        if (iswdigit(*pszText)) {
            szDigits.AppendChar(*pszText);
        }
    }
    SendMessageW(hwnd, EM_REPLACESEL, FALSE, reinterpret_cast<LPARAM>(szDigits.GetString()));
    GlobalUnlock(hData);
}
