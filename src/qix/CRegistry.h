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

/// What is told about a test where it is written.
struct RegisteredTest
{
    std::string place; ///< file:line
    std::string group; ///< the dotted path
    std::string name;
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

    void add(RegisteredTest const& test);

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
        std::string place; ///< where the first test of the group is written
    };

    bool isAccepted(RegisteredTest const& test);
    bool isGroupAccepted(RegisteredTest const& test);
    void refuse(std::string const& reason);
    Group const& makeGroup(std::string const& path, std::string const& place);
    CTestItemGroup& groupAt(std::string const& path, std::string const& place);
    void markInteractive(std::string const& path);

    zel::P<CTestItemGroup> m_root;
    std::map<std::string, Group> m_groups;      ///< by path
    std::map<std::string, std::string> m_tests; ///< their places, by path
    std::vector<std::string> m_refusals;
};

} // namespace qix::detail
