#include "memory.h"

#include <cstdlib>
#include <new>

namespace
{

std::size_t g_calls = 0;
std::size_t g_firstFailing = faults::memory::unlimited;
std::size_t g_failing = 0;
std::size_t g_objects = 0;

bool mayAllocate() noexcept
{
    std::size_t const call = g_calls++;
    return call < g_firstFailing || call - g_firstFailing >= g_failing;
}

} // namespace

namespace faults::memory
{

void failCalls(std::size_t first, std::size_t count) noexcept
{
    g_calls = 0;
    g_firstFailing = first;
    g_failing = count;
}

void failNothing() noexcept
{
    failCalls(unlimited, 0);
}

std::size_t calls() noexcept
{
    return g_calls;
}

std::size_t objects() noexcept
{
    return g_objects;
}

} // namespace faults::memory

// The libraries and the C++ runtime call these too, and so do the array forms.

void* operator new(std::size_t size)
{
    void* const memory = mayAllocate() ? std::malloc(size == 0 ? 1 : size) : nullptr;
    if (memory == nullptr)
    {
        throw std::bad_alloc();
    }
    ++g_objects;
    return memory;
}

void operator delete(void* memory) noexcept
{
    g_objects -= memory == nullptr ? 0 : 1;
    std::free(memory);
}

void operator delete(void* memory, std::size_t) noexcept
{
    operator delete(memory);
}
