#include "app/ground/ErrorReport.h"

#include "app/ground/Owned.h"

#include <cwchar>
#include <cwctype>

// strsafe.h deprecates older string functions for whatever follows it, so it comes last.
#include <strsafe.h>

namespace {

// The fixed words and the number of a report.
constexpr SIZE_T kReportOverhead = 40;

// The system's description of a code, untrimmed: it ends with a line break. Null, and
// pcchLength 0, for a code that the system does not know.
CLocalText DescribeError(DWORD dwCode, DWORD* pcchLength = nullptr)
{
    PWSTR pszDescription = nullptr;
    const DWORD cchLength = FormatMessageW(
        FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr, dwCode,
        MAKELANGID(LANG_NEUTRAL, SUBLANG_DEFAULT), reinterpret_cast<PWSTR>(&pszDescription), 0, nullptr);
    if (pcchLength != nullptr) {
        *pcchLength = cchLength;
    }
    return CLocalText(pszDescription);
}

// Shows a report of a method, a code and the code's description, decimal or as ReportWin32Error has it. The buffer
// is sized from the texts, so that no description is ever cut.
void ShowReport(PCWSTR pszMethod, DWORD dwCode, bool bWin32Error, HWND hwndOwner)
{
    const CLocalText pDescription = DescribeError(dwCode);
    const PCWSTR pszDescription = pDescription ? pDescription.get() : L"";
    const SIZE_T cchNeeded = wcslen(pszMethod) + wcslen(pszDescription) + kReportOverhead;
    const CLocalText pText(static_cast<PWSTR>(LocalAlloc(LMEM_ZEROINIT, cchNeeded * sizeof(WCHAR))));
    const SIZE_T cchText = LocalSize(pText.get()) / sizeof(WCHAR);
    if (bWin32Error) {
        StringCchPrintfW(pText.get(), cchText, L"%s failed with error 0x%08X: %s\r\n", pszMethod, dwCode,
                         pszDescription);
    } else {
        StringCchPrintfW(pText.get(), cchText, L"%s failed with error %d: %s", pszMethod, dwCode, pszDescription);
    }
    MessageBoxW(hwndOwner, pText.get(), bWin32Error ? L"Win32 Error" : L"Error", MB_OK);
}

// Removes all white space at the end and then one full stop.
void TrimDescription(PWSTR pszDescription, DWORD cchLength)
{
    while (cchLength > 0) {
        WCHAR& ch = pszDescription[--cchLength];
        if (!iswspace(ch)) {
            if (ch == L'.') {
                ch = L'\0';
            }
            return;
        }
        ch = L'\0';
    }
}

void ShowComError(HRESULT hrCode, PCWSTR pszMethod)
{
    DWORD cchDescription = 0;
    const CLocalText pDescription = DescribeError(static_cast<DWORD>(hrCode), &cchDescription);
    if (cchDescription > 0) {
        TrimDescription(pDescription.get(), cchDescription);
        MessageBoxW(nullptr, pDescription.get(), pszMethod, MB_OK);
    } else {
        CStringW szText;
        szText.Format(L"Unknown error: %ld", hrCode);
        MessageBoxW(nullptr, szText, L"COM Error", MB_OK);
    }
}

} // namespace

DWORD ReportLastError(PCWSTR pszMethod)
{
    const DWORD dwCode = GetLastError();
    ShowReport(pszMethod, dwCode, false, nullptr);
    return dwCode;
}

void ReportLastErrorAndExit(PCWSTR pszMethod)
{
    ExitProcess(ReportLastError(pszMethod));
}

void ReportFatalError(PCWSTR pszContext, PCWSTR pszDetail)
{
    CStringW szText;
    szText.Format(L"%s\n%s", pszContext, pszDetail);
    MessageBoxW(nullptr, szText, L"Error", MB_OK);
    ExitProcess(1);
}

void ReportComErrorAndExit(HRESULT hrCode, PCWSTR pszMethod)
{
    ShowComError(hrCode, pszMethod);
    ExitProcess(static_cast<UINT>(hrCode));
}

void ReportWin32Error(PCWSTR pszMethod, bool bEndProcess, HWND hwndOwner, DWORD dwCode)
{
    ShowReport(pszMethod != nullptr ? pszMethod : L"Unknown Method", dwCode, true, hwndOwner);
    if (bEndProcess) {
        ExitProcess(dwCode);
    }
}
