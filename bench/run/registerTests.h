#pragma once

#include "count.h"

#include <qix/test.h>

namespace bench
{

/// Registers tests that do nothing, each by what the macro QIX_TEST expands to.
inline void registerTests(int count)
{
    for (int i = 0; i < count; ++i)
    {
        qix::detail::CRegistration const registration(
            __FILE__, i, "bench", keptTestName(i), [] {}, qix::detail::Attributes());
    }
}

} // namespace bench
