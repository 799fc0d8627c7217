// What start-up holds while the program runs. Each object takes its thing in Acquire or Start and
// gives it back in its destructor, so that leaving wWinMain at any point unwinds exactly what was set
// up: sockets, then COM, then the instance lock.
#pragma once

#include "app/ground/Platform.h"

// The lock that keeps a second instance out. It is never waited on: existing is all it does.
class CInstanceLock
{
public:
    CInstanceLock() = default;
    CInstanceLock(const CInstanceLock&) = delete;
    CInstanceLock& operator=(const CInstanceLock&) = delete;
    ~CInstanceLock();

    // True when this is the only instance. A lock that cannot be made counts as another instance.
    bool Acquire();

private:
    HANDLE m_hMutex = nullptr;
};

// COM for this thread, single-threaded apartment.
class CComLibrary
{
public:
    CComLibrary() = default;
    CComLibrary(const CComLibrary&) = delete;
    CComLibrary& operator=(const CComLibrary&) = delete;
    // Leaves COM, also when Start failed.
    ~CComLibrary();

    // False, and nothing is reported, when the system refuses.
    bool Start();
};

// Windows Sockets 2.2.
class CWinSockLibrary
{
public:
    CWinSockLibrary() = default;
    CWinSockLibrary(const CWinSockLibrary&) = delete;
    CWinSockLibrary& operator=(const CWinSockLibrary&) = delete;
    ~CWinSockLibrary();

    // False, and nothing is reported, when the system refuses.
    bool Start();

private:
    bool m_bStarted = false;
};

// Whether this is Windows 10 version 2004 or newer. Needs the compatibility entry of the manifest:
// without it the system passes itself off as an older one.
bool IsSupportedWindows();

// Brings the window with this title to the front, if there is one.
void BringToFront(PCWSTR pszTitle);
