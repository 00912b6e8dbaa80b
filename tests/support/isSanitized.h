#pragma once

namespace test
{

/// Whether this is a build with the thread sanitizer.
#ifdef __SANITIZE_THREAD__
constexpr bool isThreadSanitized = true;
#else
constexpr bool isThreadSanitized = false;
#endif

/// Whether this is a build with a sanitizer that takes the address space for itself.
#ifdef __SANITIZE_ADDRESS__
constexpr bool isSanitized = true;
#else
constexpr bool isSanitized = isThreadSanitized;
#endif

} // namespace test
