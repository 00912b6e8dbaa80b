#pragma once

#include <atomic>

namespace qix
{

namespace detail
{

/// The number of this process, or 0 where it has none yet.
extern std::atomic<unsigned>* processGeneration;

unsigned takeProcessGeneration() noexcept;

} // namespace detail

/// A number that this process has and none of its ancestors, whatever it was forked by. The same
/// for the whole life of the process. It costs no system call.
inline unsigned processGeneration() noexcept
{
    unsigned const number = detail::processGeneration->load(std::memory_order_relaxed);
    return number != 0 ? number : detail::takeProcessGeneration();
}

} // namespace qix
