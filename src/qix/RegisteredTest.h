#pragma once

#include <qix/detail/registration.h>

namespace qix::detail
{

class CRegisteredGroup;

/// Where something is written. Its text is made when it is needed, which is seldom.
struct Place
{
    char const* file;
    int line;
};

/// What is told about a test where it is written. The texts belong to the macro's caller.
struct RegisteredTest
{
    Place place;
    char const* name;
    void (*body)();       ///< null when make is set
    CTestItem* (*make)(); ///< null when body is set
    Attributes attributes;
    CRegisteredGroup const* group = nullptr; ///< the registry's
};

} // namespace qix::detail
