#pragma once

#include <qix/CTestItemGroup.h>
#include <qix/ILocatedItem.h>

#include "registration/GroupFixture.h"
#include "registration/RegisteredTest.h"

#include <cstddef>
#include <deque>
#include <string>
#include <variant>
#include <vector>

namespace qix::detail
{

/// A group of tests that are registered by macros.
///
/// It makes its children itself, in registration order: a factory for each test would be one more
/// object, made before main() and whether or not the test runs.
class CRegisteredGroup : public CTestItemGroup, public virtual ILocatedItem
{
public:
    using Child = std::variant<RegisteredFunction, RegisteredFixture, RegisteredSpecialPtr,
                               zel::P<CRegisteredGroup>>;

    /// \param parent      null when the group is a child of the root; outlives this group
    /// \param location    where the first test in the group, or below it, is written
    /// \param checkNames  called before children are made; throws when a name is invalid
    CRegisteredGroup(CRegisteredGroup* parent, std::string const& path,
                     SourceLocation const& location, void (*checkNames)());

    /// The dotted path of the group, whose last component is its name.
    std::string const& getPath() const noexcept { return m_path; }

    SourceLocation getLocation() const noexcept override { return m_location; }

    /// The children in registration order, whether or not their items are made.
    std::deque<Child> const& getRegistered() const noexcept { return m_registered; }

    template <typename Test>
    void addTest(Test const& test)
    {
        m_registered.emplace_back(test);
        if (test.attributes.interactive)
        {
            noteInteractiveTest();
        }
    }

    void addTest(RegisteredSpecial const& test);

    void addFixture(GroupFixture const& fixture) { m_fixtures.push_back(fixture); }
    std::vector<GroupFixture> const& getFixtures() const noexcept { return m_fixtures; }

    void addGroup(zel::P<CRegisteredGroup> const& group);

    /// Counts registered tests below it whose items are not made yet, too.
    bool containsAnyInteractive() const override;

    void run(ITestRunner* runner) override;

    /// Records a line. It is not printed when it comes from what the tests of the group share.
    void log(zel::String const& line) override;

    void getSubItems(std::vector<zel::P<ITestItem>>& out) override;

private:
    void noteInteractiveTest() noexcept;
    void makePendingChildren();

    CRegisteredGroup* m_parent;
    std::string m_path;
    SourceLocation m_location;
    void (*m_checkNames)();
    std::deque<Child> m_registered;
    std::size_t m_madeCount = 0; ///< how many of the registered children are made
    bool m_isMaking = false;
    bool m_containsInteractive = false;
    std::vector<GroupFixture> m_fixtures;
};

} // namespace qix::detail
