#pragma once

#include <utility>

#include <unistd.h>

namespace qix
{

/// Closes a descriptor.
class CDescriptor
{
public:
    explicit CDescriptor(int descriptor = -1) noexcept : m_descriptor(descriptor) {}
    CDescriptor(CDescriptor&& other) noexcept : m_descriptor(std::exchange(other.m_descriptor, -1))
    {
    }
    CDescriptor& operator=(CDescriptor&& other) noexcept
    {
        std::swap(m_descriptor, other.m_descriptor);
        return *this;
    }
    CDescriptor(CDescriptor const&) = delete;
    CDescriptor& operator=(CDescriptor const&) = delete;
    ~CDescriptor() { reset(); }

    int get() const noexcept { return m_descriptor; }

    void reset() noexcept
    {
        if (m_descriptor != -1)
        {
            close(std::exchange(m_descriptor, -1));
        }
    }

private:
    int m_descriptor;
};

/// Both ends of a pipe; the ends are closed in programs that are started.
struct Pipe
{
    CDescriptor reader;
    CDescriptor writer;
};

/// Throws std::system_error when the system has no more descriptors.
Pipe makePipe();

} // namespace qix
