#pragma once

#include <cstddef>

namespace test
{

/// How often operator new has been called, which each executable replaces that links this.
std::size_t countAllocations() noexcept;

} // namespace test
