#pragma once

#include <qix/SourceLocation.h>

namespace qix::detail
{

/// An object that the tests of a group share. The text belongs to the macro's caller.
struct GroupFixture
{
    SourceLocation location;
    char const* type;
    void (*make)();
    void (*release)();
};

} // namespace qix::detail
