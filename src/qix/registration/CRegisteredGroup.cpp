#include "registration/CRegisteredGroup.h"

#include "guards/posix/CForkLock.h"
#include "model/CFlagWhileAlive.h"
#include "registration/CGroupRun.h"
#include "registration/CTestLister.h"
#include "registration/CTestMaker.h"

#include <memory>
#include <mutex>
#include <variant>

namespace qix::detail
{

namespace
{

/// Fixtures of groups log from threads of their own.
std::mutex logMutex;
CForkLock const logLockedWhileForking(logMutex);

using Items = std::vector<zel::P<ITestItem>>;

void addItems(zel::P<CRegisteredGroup> const& group, Items& items)
{
    items.push_back(group);
}

void addItems(RegisteredSpecialPtr const& test, Items& items)
{
    Items const made = CTestLister(*test).list();
    items.insert(items.end(), made.begin(), made.end());
}

template <typename Test>
void addItems(Test const& test, Items& items)
{
    items.push_back(CTestMaker::make(test));
}

} // namespace

CRegisteredGroup::CRegisteredGroup(CRegisteredGroup* parent, std::string const& path,
                                   SourceLocation const& location, void (*checkNames)())
    : CTestItemGroup(path.substr(path.rfind('.') + 1)),
      m_parent(parent),
      m_path(path),
      m_location(location),
      m_checkNames(checkNames)
{
}

void CRegisteredGroup::addGroup(zel::P<CRegisteredGroup> const& group)
{
    m_registered.emplace_back(group);
}

void CRegisteredGroup::addTest(RegisteredSpecial const& test)
{
    m_registered.emplace_back(std::make_unique<RegisteredSpecial const>(test));
    if (test.attributes.interactive)
    {
        noteInteractiveTest();
    }
}

void CRegisteredGroup::noteInteractiveTest() noexcept
{
    for (CRegisteredGroup* group = this; group != nullptr; group = group->m_parent)
    {
        group->m_containsInteractive = true;
    }
}

bool CRegisteredGroup::containsAnyInteractive() const
{
    return m_containsInteractive || CTestItemGroup::containsAnyInteractive();
}

void CRegisteredGroup::run(ITestRunner* runner)
{
    makePendingChildren();
    if (m_fixtures.empty())
    {
        CTestItemGroup::run(runner);
        return;
    }
    m_logLines.clear();
    CGroupRun run(*this, runner);
    CTestItemGroup::run(runner);
    run.end();
}

void CRegisteredGroup::log(zel::String const& line)
{
    if (m_fixtures.empty())
    {
        CTestItemGroup::log(line);
        return;
    }
    std::lock_guard<std::mutex> const lock(logMutex);
    m_logLines.push_back(line);
}

void CRegisteredGroup::getSubItems(std::vector<zel::P<ITestItem>>& out)
{
    makePendingChildren();
    CTestItemGroup::getSubItems(out);
}

/// A child that could not be made stays pending.
void CRegisteredGroup::makePendingChildren()
{
    // The values of tests may ask for the group: they get those children that are made already.
    if (m_isMaking || m_madeCount == m_registered.size())
    {
        return;
    }
    m_checkNames();
    if (m_subItems.empty())
    {
        m_subItems.reserve(m_registered.size());
    }
    CFlagWhileAlive const making(m_isMaking);
    for (; m_madeCount < m_registered.size(); ++m_madeCount)
    {
        std::visit([this](auto const& child) { addItems(child, m_subItems); },
                   m_registered[m_madeCount]);
    }
}

} // namespace qix::detail
