#pragma once

#include "count.h"

#include <qix/test.h>

#include <deque>

namespace bench
{

/// Registers tests that do nothing, each by what the macro QIX_TEST expands to.
inline void registerTests(int count)
{
    static std::deque<std::string> names; // the registrations keep pointers to them
    for (int i = 0; i < count; ++i)
    {
        names.push_back(testName(i));
        qix::detail::CRegistration const registration(__FILE__, i, "bench", names.back().c_str(),
                                                      [] {}, {});
    }
}

} // namespace bench
