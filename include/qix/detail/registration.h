#pragma once

#include <qix/CTestItem.h>
#include <qix/attributes.h>
#include <qix/export.h>

namespace qix::detail
{

/// The attributes of one test: one of each kind at most, in any order.
struct Attributes
{
    constexpr Attributes(ITestItem::Duration d = ITestItem::Short) noexcept
        : duration(d), interactive(false)
    {
    }
    constexpr Attributes(attributes::Interactivity) noexcept
        : Attributes(ITestItem::Short, attributes::Interactive)
    {
    }
    constexpr Attributes(ITestItem::Duration d, attributes::Interactivity) noexcept
        : duration(d), interactive(true)
    {
    }
    constexpr Attributes(attributes::Interactivity, ITestItem::Duration d) noexcept
        : Attributes(d, attributes::Interactive)
    {
    }

    // Packed, since a run may have a million tests.
    ITestItem::Duration duration : 8;
    bool interactive : 1;
};

/// Registers one test while the module that contains it is loaded.
///
/// The item is made when its group is first asked for its children. The texts are not copied, so
/// that a module that has registered tests must not be unloaded.
class QIX_EXPORT CRegistration
{
public:
    /// \param file, line  where the test is written
    /// \param group       the dotted path of its group
    /// \param body        what the test does
    CRegistration(char const* file, int line, char const* group, char const* name, void (*body)(),
                  Attributes attributes);

    /// \param make  makes the test, whose name and attributes are set afterwards; the caller owns
    ///              the first reference
    CRegistration(char const* file, int line, char const* group, char const* name,
                  CTestItem* (*make)(), Attributes attributes);
};

template <typename T>
CTestItem* makeTest()
{
    return new T;
}

} // namespace qix::detail
