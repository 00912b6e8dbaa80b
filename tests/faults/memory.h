#pragma once

#include <cstddef>
#include <limits>

/// The replaced operator new of this executable, which can be made to fail.
namespace faults::memory
{

constexpr std::size_t unlimited = std::numeric_limits<std::size_t>::max();

/// Lets the calls from number \p first on fail, \p count of them. The next call is number 0.
void failCalls(std::size_t first, std::size_t count) noexcept;

/// Lets every call succeed again.
void failNothing() noexcept;

/// How many calls have been made since failCalls().
std::size_t calls() noexcept;

/// How many objects are allocated now.
std::size_t objects() noexcept;

} // namespace faults::memory
