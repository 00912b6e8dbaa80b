#pragma once

namespace test
{

/// How often the process has asked operator new for memory.
long countAllocations() noexcept;

} // namespace test
