// Owner of a Unix file descriptor.
#pragma once

#include <unistd.h>
#include <utility>

// Closes its descriptor when it goes. -1 means that it owns none.
class CFileDescriptor
{
public:
    CFileDescriptor() = default;

    explicit CFileDescriptor(int fd) : m_fd(fd) {}

    CFileDescriptor(CFileDescriptor&& other) noexcept : m_fd(std::exchange(other.m_fd, -1)) {}

    CFileDescriptor& operator=(CFileDescriptor&& other) noexcept
    {
        std::swap(m_fd, other.m_fd);
        return *this;
    }

    ~CFileDescriptor()
    {
        if (m_fd >= 0) {
            close(m_fd);
        }
    }

    int Get() const
    {
        return m_fd;
    }

private:
    int m_fd = -1;
};
