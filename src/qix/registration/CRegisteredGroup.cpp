#include "registration/CRegisteredGroup.h"

#include "registration/CTestMaker.h"

#include <variant>

namespace qix::detail
{

namespace
{

zel::P<ITestItem> makeItem(zel::P<CRegisteredGroup> const& group)
{
    return group;
}

template <typename Test>
zel::P<ITestItem> makeItem(Test const& test)
{
    return CTestMaker::make(test);
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
    CTestItemGroup::run(runner);
}

void CRegisteredGroup::getSubItems(std::vector<zel::P<ITestItem>>& out)
{
    makePendingChildren();
    CTestItemGroup::getSubItems(out);
}

void CRegisteredGroup::makePendingChildren()
{
    if (m_madeCount == m_registered.size())
    {
        return;
    }
    m_checkNames();
    if (m_subItems.empty())
    {
        m_subItems.reserve(m_registered.size());
    }
    for (; m_madeCount < m_registered.size(); ++m_madeCount)
    {
        m_subItems.push_back(std::visit([](auto const& child) { return makeItem(child); },
                                        m_registered[m_madeCount]));
    }
}

} // namespace qix::detail
