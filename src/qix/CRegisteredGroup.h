#pragma once

#include <qix/CTestItemGroup.h>

#include "RegisteredTest.h"

#include <deque>
#include <string>
#include <variant>

namespace qix::detail
{

/// A group that tests are registered with by their macros.
///
/// It makes its children itself, in the order of their registration: a factory for each test would
/// be one object more, before main() and whether the test is run or not.
class CRegisteredGroup : public CTestItemGroup
{
public:
    /// \param parent  null when the group is a child of the root; outlives this group
    CRegisteredGroup(CRegisteredGroup* parent, std::string const& path);

    /// The dotted path of the group, whose last component is its name.
    std::string const& getPath() const noexcept { return m_path; }

    CRegisteredGroup const* getParent() const noexcept { return m_parent; }

    /// \param test  outlives the pending children
    void addTest(RegisteredTest const& test);
    void addGroup(zel::P<CRegisteredGroup> const& group);

    /// Knows of the tests that are registered below it, made or not.
    bool containsAnyInteractive() const override;

    void run(ITestRunner* runner) override;
    void getSubItems(std::vector<zel::P<ITestItem>>& out) override;

private:
    using PendingChild = std::variant<RegisteredTest const*, zel::P<CRegisteredGroup>>;

    void makePendingChildren();
    static zel::P<ITestItem> makeChild(PendingChild const& child);

    CRegisteredGroup* m_parent;
    std::string m_path;
    std::deque<PendingChild> m_pending;
    bool m_containsInteractive = false;
};

} // namespace qix::detail
