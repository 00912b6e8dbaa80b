// The operators stand in a file of their own, where no optimizer can mix them with their callers.
// The libraries call them too; the array forms call these.

#include "allocations.h"

#include <atomic>
#include <cstdlib>
#include <new>

namespace
{

std::atomic<std::size_t> g_allocations = 0;

} // namespace

std::size_t test::countAllocations() noexcept
{
    return g_allocations;
}

void* operator new(std::size_t size)
{
    g_allocations.fetch_add(1, std::memory_order_relaxed);
    if (void* const memory = std::malloc(size == 0 ? 1 : size))
    {
        return memory;
    }
    throw std::bad_alloc();
}

void operator delete(void* memory) noexcept
{
    std::free(memory);
}

void operator delete(void* memory, std::size_t) noexcept
{
    std::free(memory);
}
