#pragma once

#include <qix/CTestItem.h>

#include "registration/CRegisteredGroup.h"
#include "registration/RegisteredTest.h"

#include <atomic>
#include <cstddef>
#include <map>
#include <string>
#include <string_view>

namespace qix::detail
{

/// All tests of the process that are registered by macros. They are put below the root group.
///
/// Before main() a test is only noted: its object is made, and names are compared, when they are
/// needed. What should not have been registered is refused then: instead of giving its children to
/// a runner, the root group throws an error that tells of all invalidNames.
class CRegistry
{
public:
    static CRegistry& get();

    /// \param group  the dotted path of the test's group; the text is kept
    template <typename Test>
    void add(std::string_view group, Test const& test)
    {
        groupOf(group, test.getLocation()).addTest(test);
        ++m_testCount;
    }

    /// Throws the error that tells of all invalidNames, if there are any.
    void throwInvalidNames();

    static zel::P<ITestItem> makeItem(RegisteredFunction const& test);

    /// If the class cannot be constructed, the item is a test that fails for that reason.
    static zel::P<ITestItem> makeItem(RegisteredFixture const& test);

    static zel::P<ITestItem> makeItem(zel::P<CRegisteredGroup> const& group);

private:
    CRegistry();

    static zel::P<ITestItem> constructTest(RegisteredFixture const& test);

    std::string listAllInvalidNames() const;
    CRegisteredGroup& groupOf(std::string_view text, SourceLocation const& location);
    CRegisteredGroup& groupAt(std::string const& path, SourceLocation const& location);
    zel::P<CRegisteredGroup> makeGroup(std::string const& path, SourceLocation const& location);

    zel::P<CTestItemGroup> m_root;
    std::map<std::string, zel::P<CRegisteredGroup>> m_groups; ///< by path
    std::size_t m_testCount = 0;

    /// How many tests there were when nothing was refused. Atomic, since the groups that ask may
    /// belong to different threads.
    std::atomic<std::size_t> m_acceptedCount{0};

    // Tests of one group stand together, mostly.
    std::string_view m_lastText;
    CRegisteredGroup* m_lastGroup = nullptr;
};

} // namespace qix::detail
