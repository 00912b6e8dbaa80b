#include "allocations.h"

#include <atomic>
#include <cstdlib>
#include <new>

namespace
{

std::atomic<std::size_t> g_allocations = 0;

} // namespace

namespace bench
{

std::size_t allocations() noexcept
{
    return g_allocations;
}

} // namespace bench

// Exported, so that the libraries call it too. The array forms call these.
#define BENCH_REPLACED __attribute__((visibility("default")))

BENCH_REPLACED void* operator new(std::size_t size)
{
    g_allocations.fetch_add(1, std::memory_order_relaxed);
    if (void* const memory = std::malloc(size == 0 ? 1 : size))
    {
        return memory;
    }
    throw std::bad_alloc();
}

BENCH_REPLACED void operator delete(void* memory) noexcept
{
    std::free(memory);
}

BENCH_REPLACED void operator delete(void* memory, std::size_t) noexcept
{
    std::free(memory);
}
