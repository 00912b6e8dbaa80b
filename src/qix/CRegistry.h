#pragma once

#include <qix/CTestItem.h>
#include <qix/CTestItemGroup.h>
#include <qix/detail/registration.h>

#include <map>
#include <string>
#include <vector>

namespace qix::detail
{

/// A group that tests are registered with by their macros.
class CRegisteredGroup : public CTestItemGroup
{
public:
    using CTestItemGroup::CTestItemGroup;

    /// Knows of the tests that are registered below it, made or not.
    bool containsAnyInteractive() const override;

    void setContainsInteractive() noexcept { m_containsInteractive = true; }

private:
    bool m_containsInteractive = false;
};

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
};

/// All tests of the process that are registered by macros. They are put below the root group.
///
/// What cannot be registered is refused: from then on the root group throws an error that tells
/// of all refusals, instead of giving its children to a runner.
class CRegistry
{
public:
    static CRegistry& get();

    /// \param group  the dotted path of the test's group
    void add(std::string const& group, RegisteredTest const& test);

    /// The item that a registered test stands for. If its class cannot be constructed, it is a
    /// test that fails for that reason.
    static zel::P<ITestItem> makeItem(RegisteredTest const& test);

    /// Throws the error that tells of all refusals.
    [[noreturn]] void throwRefusals() const;

private:
    CRegistry();

    static zel::P<ITestItem> makeFixtureTest(RegisteredTest const& test);

    struct Group
    {
        zel::P<CRegisteredGroup> item;
        Place place; ///< where the first test of the group is written
    };

    bool isTestAccepted(std::string const& path, Place const& place);
    bool isGroupAccepted(std::string const& group, Place const& place);
    void refuse(std::string const& reason);
    Group const& makeGroup(std::string const& path, Place const& place);
    CTestItemGroup& groupAt(std::string const& path, Place const& place);
    void markInteractive(std::string const& path);

    zel::P<CTestItemGroup> m_root;
    std::map<std::string, Group> m_groups; ///< by path
    std::map<std::string, Place> m_tests;  ///< their places, by path
    std::vector<std::string> m_refusals;
};

} // namespace qix::detail
