// The small window that tells how far the check is, and lets the user cancel it.
#pragma once

#include <windows.h>

#include <string>

class CProgress
{
public:
    // Made and shown on the calling thread, which then runs its messages; from other threads only Tell may be called.
    explicit CProgress(int nSteps);
    ~CProgress();
    CProgress(const CProgress&) = delete;
    CProgress& operator=(const CProgress&) = delete;

    // The step that begins now, counted from 0.
    void Tell(int nStep, const std::wstring& szName);

    // Until that object is signaled. Cancel, Esc and the close box stop the check, see Stopping.h.
    void RunUntil(HANDLE hEnd) const;

private:
    HWND m_hwnd;
};
