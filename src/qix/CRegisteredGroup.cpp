#include "CRegisteredGroup.h"

#include "CRegistry.h"

#include <utility>

namespace qix::detail
{

CRegisteredGroup::CRegisteredGroup(CRegisteredGroup* parent, std::string const& path)
    : CTestItemGroup(path.substr(path.rfind('.') + 1)), m_parent(parent), m_path(path)
{
}

void CRegisteredGroup::addTest(RegisteredTest const& test)
{
    m_pending.emplace_back(&test);
    if (test.attributes.interactive)
    {
        for (CRegisteredGroup* group = this; group != nullptr; group = group->m_parent)
        {
            group->m_containsInteractive = true;
        }
    }
}

void CRegisteredGroup::addGroup(zel::P<CRegisteredGroup> const& group)
{
    m_pending.emplace_back(group);
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

/// A child that cannot be made stays pending, and all behind it.
void CRegisteredGroup::makePendingChildren()
{
    if (!m_pending.empty())
    {
        CRegistry::get().throwRefusals();
        m_subItems.reserve(m_subItems.size() + m_pending.size());
    }
    while (!m_pending.empty())
    {
        // Making a child may ask this group for its children again.
        PendingChild child = std::move(m_pending.front());
        m_pending.pop_front();
        try
        {
            m_subItems.push_back(makeChild(child));
        }
        catch (...)
        {
            m_pending.push_front(std::move(child));
            throw;
        }
    }
}

zel::P<ITestItem> CRegisteredGroup::makeChild(PendingChild const& child)
{
    if (auto const* const group = std::get_if<zel::P<CRegisteredGroup>>(&child))
    {
        return *group;
    }
    return CRegistry::makeItem(*std::get<RegisteredTest const*>(child));
}

} // namespace qix::detail
