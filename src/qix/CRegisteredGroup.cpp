#include "CRegisteredGroup.h"

#include "CRegistry.h"

#include <variant>

namespace qix::detail
{

CRegisteredGroup::CRegisteredGroup(CRegisteredGroup* parent, std::string const& path,
                                   Place const& place)
    : CTestItemGroup(path.substr(path.rfind('.') + 1)),
      m_parent(parent),
      m_path(path),
      m_place(place)
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
    CRegistry::get().throwRefusals();
    if (m_subItems.empty())
    {
        m_subItems.reserve(m_registered.size());
    }
    while (m_madeCount < m_registered.size())
    {
        makeNextChild();
    }
}

/// A child that cannot be made stays pending.
void CRegisteredGroup::makeNextChild()
{
    // Counted before, since making a child may ask this group for its children again.
    std::size_t const number = m_madeCount++;
    try
    {
        m_subItems.push_back(std::visit(
            [](auto const& child) { return CRegistry::makeItem(child); }, m_registered[number]));
    }
    catch (...)
    {
        m_madeCount = number;
        throw;
    }
}

} // namespace qix::detail
