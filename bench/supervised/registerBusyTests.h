#pragma once

#include "../run/count.h"
#include "busy.h"

#include <qix/test.h>

namespace bench
{

/// Registers the tests, each by what the macro QIX_TEST expands to.
inline void registerBusyTests()
{
    int const count = testCount();
    for (int i = 0; i < count; ++i)
    {
        qix::detail::CRegistration const registration(
            __FILE__, i, "bench", keptTestName(i), [] { beBusy(); }, qix::detail::Attributes());
    }
}

} // namespace bench
