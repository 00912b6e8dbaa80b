#pragma once

#include <qix/log.h>
#include <qix/subTest.h>

#include <string_view>

namespace qix
{

/// What the body of a QIX_TEST can call without naming the library.
class CTestScope
{
public:
    /// See qix::log().
    template <typename T>
    static void log(T const& line)
    {
        qix::log(line);
    }

    /// See qix::subTest().
    template <typename Row>
    static void subTest(std::string_view name, Row&& row, char const* file = __builtin_FILE(),
                        int line = __builtin_LINE())
    {
        detail::runSubTest(name, row, file, line);
    }
};

} // namespace qix
