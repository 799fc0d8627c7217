#include "check/Progress.h"

#include "check/Stopping.h"
#include "check/resource.h"

#include <commctrl.h>

namespace {

// The close box and Esc come as Cancel.
INT_PTR CALLBACK ProgressProc(HWND hwnd, UINT nMessage, WPARAM wParam, LPARAM /*lParam*/)
{
    if (nMessage != WM_COMMAND || LOWORD(wParam) != IDCANCEL) {
        return FALSE;
    }
    Stop();
    SetDlgItemTextW(hwnd, IDC_STEP_NAME, L"Tidying up \x2026");
    EnableWindow(GetDlgItem(hwnd, IDCANCEL), FALSE);
    return TRUE;
}

} // namespace

CProgress::CProgress(int nSteps)
    : m_hwnd(CreateDialogParamW(nullptr, MAKEINTRESOURCEW(IDD_PROGRESS), nullptr, ProgressProc, 0))
{
    SendDlgItemMessageW(m_hwnd, IDC_STEPS, PBM_SETRANGE32, 0, nSteps);
    ShowWindow(m_hwnd, SW_SHOWNORMAL);
    SetForegroundWindow(m_hwnd);
}

CProgress::~CProgress()
{
    DestroyWindow(m_hwnd);
}

void CProgress::Tell(int nStep, const std::wstring& szName)
{
    SetDlgItemTextW(m_hwnd, IDC_STEP_NAME, szName.c_str());
    SendDlgItemMessageW(m_hwnd, IDC_STEPS, PBM_SETPOS, static_cast<WPARAM>(nStep), 0);
}

void CProgress::RunUntil(HANDLE hEnd) const
{
    while (MsgWaitForMultipleObjects(1, &hEnd, FALSE, INFINITE, QS_ALLINPUT) != WAIT_OBJECT_0) {
        MSG message;
        while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
            if (!IsDialogMessageW(m_hwnd, &message)) {
                TranslateMessage(&message);
                DispatchMessageW(&message);
            }
        }
    }
}
