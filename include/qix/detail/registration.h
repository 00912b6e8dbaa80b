#pragma once

#include <qix/CTestItem.h>
#include <qix/attributes.h>
#include <qix/export.h>

#include <string_view>
#include <type_traits>

namespace qix::detail
{

/// The attributes that most tests have: one of each kind at most.
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

/// All attributes that a test may have.
struct AllAttributes
{
    constexpr void set(ITestItem::Duration duration) noexcept { basic.duration = duration; }
    constexpr void set(attributes::Interactivity) noexcept { basic.interactive = true; }
    constexpr void set(attributes::Expectation) noexcept { shouldFail = true; }
    constexpr void set(attributes::Disabled disabled) noexcept { disabledFor = disabled.reason; }
    constexpr void set(attributes::Tags list) noexcept { tags = list; }

    Attributes basic = {};
    char const* disabledFor = nullptr; ///< null when it is not
    bool shouldFail = false;
    attributes::Tags tags = attributes::Tags();
};

template <typename T, typename... All>
constexpr bool isOnceAmong = ((std::is_same_v<T, All> ? 1 : 0) + ... + 0) == 1;

template <typename T>
constexpr bool isBasicAttribute =
    std::is_same_v<T, ITestItem::Duration> || std::is_same_v<T, attributes::Interactivity>;

/// The attributes in the smallest form that has them.
template <typename... Attribute>
constexpr auto makeAttributes(Attribute... attribute) noexcept
{
    static_assert((isOnceAmong<Attribute, Attribute...> && ...),
                  "a test has one attribute of each kind");
    AllAttributes all;
    (all.set(attribute), ...);
    if constexpr ((isBasicAttribute<Attribute> && ...))
    {
        return all.basic;
    }
    else
    {
        return all;
    }
}

/// The tests that one macro defines, while they are listed.
class QIX_EXPORT CTestList
{
public:
    /// The source text of the types that the macro was given, with commas; null without any.
    virtual char const* getTypes() const noexcept = 0;

    /// Adds a test whose body is a function.
    /// \param name   the suffix in brackets of the name that the macro was given
    /// \param about  the value or type, added to each failure of the test; may be empty
    /// \param param  what the body is called with; outlives the test
    virtual void add(std::string_view name, std::string_view about, void (*body)(void const*),
                     void const* param) = 0;

    /// Adds a test whose object is made for each run. The caller of \p make owns the first
    /// reference.
    virtual void add(std::string_view name, std::string_view about, CTestItem* (*make)(void const*),
                     void const* param) = 0;

protected:
    CTestList() = default;
    CTestList(CTestList const&) = delete;
    CTestList& operator=(CTestList const&) = delete;
    virtual ~CTestList();
};

/// Lists the tests of a macro when their group is asked for its children.
using ListTests = void(CTestList& list);

/// Registers one test, or those of one macro, while the module that contains them is loaded.
///
/// The item is made when its group is first asked for its children. The texts are not copied, so
/// that a module that has registered tests must not be unloaded.
class QIX_EXPORT CRegistration
{
public:
    /// \param file, line  where the test is written
    /// \param group       the dotted path of its group
    /// \param name        an identifier, or a string literal as it is written
    /// \param body        what the test does
    CRegistration(char const* file, int line, char const* group, char const* name, void (*body)(),
                  Attributes attributes);
    /// \copydoc CRegistration
    CRegistration(char const* file, int line, char const* group, char const* name, void (*body)(),
                  AllAttributes const& attributes);

    /// \param make  makes the test, whose name and attributes are set afterwards; the caller owns
    ///              the first reference
    CRegistration(char const* file, int line, char const* group, char const* name,
                  CTestItem* (*make)(), Attributes attributes);
    /// \copydoc CRegistration
    CRegistration(char const* file, int line, char const* group, char const* name,
                  CTestItem* (*make)(), AllAttributes const& attributes);

    /// \param list   lists the tests
    /// \param types  what CTestList::getTypes() returns
    CRegistration(char const* file, int line, char const* group, char const* name, ListTests* list,
                  char const* types, AllAttributes const& attributes);
    /// \copydoc CRegistration
    CRegistration(char const* file, int line, char const* group, char const* name, ListTests* list,
                  char const* types, Attributes attributes);
};

template <typename T>
CTestItem* makeTest()
{
    return new T;
}

} // namespace qix::detail
