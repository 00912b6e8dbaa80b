#pragma once

#include <cstddef>

namespace bench
{

/// How often operator new, which this executable replaces, has been called.
std::size_t allocations() noexcept;

} // namespace bench
