#pragma once

#include <qix/CTestItem.h>

#include "CRegisteredGroup.h"
#include "RegisteredTest.h"

#include <cstddef>
#include <deque>
#include <map>
#include <string>
#include <string_view>

namespace qix::detail
{

/// All tests of the process that are registered by macros. They are put below the root group.
///
/// Before main() a test is only noted: its object is made, and names are compared, when they are
/// needed. What should not have been registered is refused then: instead of giving its children to
/// a runner, the root group throws an error that tells of all refusals.
class CRegistry
{
public:
    static CRegistry& get();

    /// \param group  the dotted path of the test's group; the text is kept
    void add(std::string_view group, RegisteredTest const& test);

    /// Throws the error that tells of all refusals, if there are any.
    void throwRefusals();

    /// The item that a registered test stands for. If its class cannot be constructed, it is a
    /// test that fails for that reason.
    static zel::P<ITestItem> makeItem(RegisteredTest const& test);

private:
    CRegistry();

    static zel::P<ITestItem> makeFixtureTest(RegisteredTest const& test);

    bool mayBeRefused() const;
    CRegisteredGroup& groupOf(std::string_view text);
    CRegisteredGroup& groupAt(std::string const& path);
    zel::P<CRegisteredGroup> makeGroup(std::string const& path);

    zel::P<CTestItemGroup> m_root;
    std::map<std::string, zel::P<CRegisteredGroup>> m_groups; ///< by path
    std::deque<RegisteredTest> m_tests;                       ///< in the order of registration
    std::size_t m_acceptedCount = 0;                          ///< how many of them are checked

    // Tests of one group stand together, mostly.
    std::string_view m_lastText;
    CRegisteredGroup* m_lastGroup = nullptr;
};

} // namespace qix::detail
