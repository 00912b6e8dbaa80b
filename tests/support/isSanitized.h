#pragma once

namespace test
{

/// Whether this is a build with a sanitizer that takes the address space for itself.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool isSanitized = true;
#else
constexpr bool isSanitized = false;
#endif

} // namespace test
