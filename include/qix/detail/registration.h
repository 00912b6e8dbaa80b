#pragma once

#include <qix/CTestItem.h>
#include <qix/export.h>

namespace qix
{

/// The names that stand for the attributes of a test in QIX_TEST and QIX_TEST_F.
namespace attributes
{

/// See ITestItem::Duration. Small, since a run may have a million tests.
enum Duration : unsigned char
{
    None = ITestItem::None,
    Short = ITestItem::Short,
    Long = ITestItem::Long,
    VeryLong = ITestItem::VeryLong,
    Hours = ITestItem::Hours
};

/// The test needs a human at the console.
enum Interactivity
{
    Interactive
};

} // namespace attributes

namespace detail
{

/// The attributes of one test: one of each kind at most, in any order.
struct Attributes
{
    constexpr Attributes() noexcept = default;
    constexpr Attributes(attributes::Duration d) noexcept : duration(d) {}
    constexpr Attributes(attributes::Interactivity) noexcept : interactive(true) {}
    constexpr Attributes(attributes::Duration d, attributes::Interactivity) noexcept
        : duration(d), interactive(true)
    {
    }
    constexpr Attributes(attributes::Interactivity, attributes::Duration d) noexcept
        : duration(d), interactive(true)
    {
    }

    attributes::Duration duration = attributes::Short;
    bool interactive = false;
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

/// Records a line of the running test; see CTestItem::log().
QIX_EXPORT void logBytes(std::string_view line);
QIX_EXPORT void logText(zel::String const& line);

} // namespace detail

/// Records one line of the running test's output: text as CTestItem::log() takes it. Safe to call
/// from threads that the test has started. Throws zel::CError outside of tests.
template <typename T>
void log(T const& line)
{
    if constexpr (detail::isNarrowText<T>)
    {
        detail::logBytes(detail::viewOf(line));
    }
    else
    {
        detail::logText(line);
    }
}

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
