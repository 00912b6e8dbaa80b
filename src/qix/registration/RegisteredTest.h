#pragma once

#include <qix/SourceLocation.h>
#include <qix/detail/registration.h>

#include <memory>

namespace qix::detail
{

/// What is told about a test where it is written. The texts belong to the macro's caller.
struct RegisteredTest
{
    SourceLocation getLocation() const noexcept { return {file, line}; }

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

/// What only few tests are: one with rare attributes, or several of one macro. One of the three
/// functions is not null.
struct RegisteredSpecial : RegisteredTest
{
    AllAttributes all;
    void (*body)();
    CTestItem* (*make)();
    ListTests* list;
    char const* types; ///< for the list
};

using RegisteredSpecialPtr = std::unique_ptr<RegisteredSpecial const>;

} // namespace qix::detail
