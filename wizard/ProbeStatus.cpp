#include "wizard/ProbeStatus.h"

CProbeStatus::CProbeStatus(HWND hwndStatus, PCWSTR pszDoing, PCWSTR pszAddress)
    : m_hwndStatus(hwndStatus), m_pszDoing(pszDoing), m_pszAddress(pszAddress)
{
}

void CProbeStatus::OnAttempt(int nAttempt, int nAttempts)
{
    CStringW szStatus;
    szStatus.Format(L"%s %s (%d of %d)", m_pszDoing, m_pszAddress, nAttempt, nAttempts);
    SetWindowTextW(m_hwndStatus, szStatus);
}
