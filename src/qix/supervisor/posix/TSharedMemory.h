#pragma once

#include <cstddef>
#include <new>
#include <system_error>

#include <cerrno>
#include <sys/mman.h>

namespace qix
{

/// An object, and room behind it, that this process and those forked from it have in common.
template <typename T>
class TSharedMemory
{
public:
    /// Throws std::system_error when there is no memory.
    explicit TSharedMemory(std::size_t room = 0) : m_size(sizeof(T) + room)
    {
        void* const memory =
            mmap(nullptr, m_size, PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
        if (memory == MAP_FAILED)
        {
            throw std::system_error(errno, std::generic_category(), "memory for test processes");
        }
        m_object = new (memory) T();
    }

    TSharedMemory(TSharedMemory const&) = delete;
    TSharedMemory& operator=(TSharedMemory const&) = delete;
    ~TSharedMemory() { munmap(m_object, m_size); }

    T& operator*() const noexcept { return *m_object; }
    T* operator->() const noexcept { return m_object; }
    char* room() const noexcept { return reinterpret_cast<char*>(m_object + 1); }

private:
    std::size_t m_size;
    T* m_object;
};

} // namespace qix
