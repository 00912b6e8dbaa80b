#pragma once

#include <qix/detail/registration.h>

namespace qix::detail
{

/// Where something is written. Its text is made when it is needed, which is seldom.
struct Place
{
    char const* file;
    int line;
};

/// What is told about a test where it is written. The texts belong to the macro's caller.
struct RegisteredTest
{
    Place getPlace() const noexcept { return {file, line}; }

    char const* file;
    char const* name;
    int line;
    Attributes attributes;
};

/// A test whose body is a function.
struct RegisteredFunction : RegisteredTest
{
    void (*body)();
};

/// A test whose class is to be constructed.
struct RegisteredFixture : RegisteredTest
{
    CTestItem* (*make)();
};

} // namespace qix::detail
