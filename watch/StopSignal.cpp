#include "StopSignal.h"

#include <cerrno>
#include <sys/eventfd.h>
#include <system_error>

CStopSignal::CStopSignal() : m_fd(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK))
{
    if (m_fd.Get() < 0) {
        throw std::system_error(errno, std::generic_category(), "eventfd");
    }
}

void CStopSignal::Raise()
{
    m_bRaised = true;
    // Fails only when the counter is full, and then the descriptor is readable already.
    eventfd_write(m_fd.Get(), 1);
}
