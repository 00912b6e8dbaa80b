#pragma once

#include <utility>

#include <unistd.h>

namespace zel
{

/// Owns an open file descriptor, or none, which is -1.
class CFileDescriptor
{
public:
    explicit CFileDescriptor(int descriptor = -1) noexcept : m_descriptor(descriptor) {}
    CFileDescriptor(CFileDescriptor&& other) noexcept
        : m_descriptor(std::exchange(other.m_descriptor, -1))
    {
    }
    CFileDescriptor& operator=(CFileDescriptor&& other) noexcept
    {
        std::swap(m_descriptor, other.m_descriptor);
        return *this;
    }
    ~CFileDescriptor()
    {
        if (m_descriptor >= 0)
        {
            close(m_descriptor);
        }
    }

    int get() const noexcept { return m_descriptor; }
    bool isOpen() const noexcept { return m_descriptor >= 0; }
    int release() noexcept { return std::exchange(m_descriptor, -1); }

private:
    int m_descriptor;
};

} // namespace zel
