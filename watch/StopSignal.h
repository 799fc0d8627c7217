// Tells every waiting thread of the watch to end.
#pragma once

#include "FileDescriptor.h"

#include <atomic>

// A descriptor that becomes readable once and stays so. Threads poll it beside their sockets, which lets a blocked
// read end without signals and without closing a descriptor that another thread uses.
class CStopSignal
{
public:
    CStopSignal();

    void Raise();

    bool IsRaised() const
    {
        return m_bRaised;
    }

    int Descriptor() const
    {
        return m_fd.Get();
    }

private:
    CFileDescriptor m_fd;
    std::atomic<bool> m_bRaised = false;
};
