#pragma once

#include <qix/CTestItem.h>

#include "registration/CRegisteredGroup.h"
#include "registration/RegisteredTest.h"

#include <atomic>
#include <cstddef>
#include <deque>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace qix::detail
{

/// All tests of the process that are registered by macros, in groups below the root group.
///
/// Before main() a test is only recorded: its item is made, and names are compared, when a group is
/// asked for its children. If a name is invalid, the group throws an error that lists all invalid
/// names instead.
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

    /// Gives the group an object that its tests share.
    void add(std::string_view group, GroupFixture const& fixture);

    /// The name that a macro was given: an identifier as it is, a literal as its text, which lives
    /// as long as the registry.
    char const* nameOf(char const* name);

    /// Throws a CError that lists all invalid names, if there are any.
    void throwInvalidNames();

private:
    CRegistry();

    std::string listAllInvalidNames() const;
    CRegisteredGroup& groupOf(std::string_view text, SourceLocation const& location);
    CRegisteredGroup& groupAt(std::string const& path, SourceLocation const& location);
    void addFixtures(CRegisteredGroup& group);
    zel::P<CRegisteredGroup> makeGroup(std::string const& path, SourceLocation const& location);

    zel::P<CTestItemGroup> m_root;
    std::map<std::string, zel::P<CRegisteredGroup>> m_groups;    ///< by path
    std::map<std::string, std::vector<GroupFixture>> m_fixtures; ///< of groups without a test yet
    std::deque<std::string> m_names;                             ///< those of literals
    std::size_t m_testCount = 0;

    /// How many tests there were when all names were valid. Atomic, since groups may belong to
    /// different threads.
    std::atomic<std::size_t> m_validCount{0};

    // A cache: consecutive tests mostly belong to the same group.
    std::string_view m_lastText;
    CRegisteredGroup* m_lastGroup = nullptr;
};

} // namespace qix::detail
