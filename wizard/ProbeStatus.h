// The status line of a probe.
#pragma once

#include "app/ground/Platform.h"
#include "net/Progress.h"

class CProbeStatus final : public CProgress
{
public:
    // Both texts must live as long as the object.
    CProbeStatus(HWND hwndStatus, PCWSTR pszDoing, PCWSTR pszAddress);

    // Writes the texts into the status control, as in "Pinging 192.168.1.100 (1 of 6)".
    void OnAttempt(int nAttempt, int nAttempts) override;

private:
    HWND m_hwndStatus;
    PCWSTR m_pszDoing;
    PCWSTR m_pszAddress;
};
