#include "registration/CRegisteredGroup.h"

#include "registration/CRegistry.h"

#include <variant>

namespace qix::detail
{

namespace
{

class CFlagWhileAlive
{
public:
    explicit CFlagWhileAlive(bool& flag) noexcept : m_flag(flag) { m_flag = true; }
    ~CFlagWhileAlive() { m_flag = false; }
    CFlagWhileAlive(CFlagWhileAlive const&) = delete;
    CFlagWhileAlive& operator=(CFlagWhileAlive const&) = delete;

private:
    bool& m_flag;
};

} // namespace

CRegisteredGroup::CRegisteredGroup(CRegisteredGroup* parent, std::string const& path,
                                   SourceLocation const& location)
    : CTestItemGroup(path.substr(path.rfind('.') + 1)),
      m_parent(parent),
      m_path(path),
      m_location(location)
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

/// A child that cannot be made stays pending.
void CRegisteredGroup::makePendingChildren()
{
    // The making of a child may ask for its siblings, and gets those in front of it.
    if (m_isMaking || m_madeCount == m_registered.size())
    {
        return;
    }
    CRegistry::get().throwInvalidNames();
    if (m_subItems.empty())
    {
        m_subItems.reserve(m_registered.size());
    }
    CFlagWhileAlive const making(m_isMaking);
    for (; m_madeCount < m_registered.size(); ++m_madeCount)
    {
        m_subItems.push_back(std::visit([](auto const& child)
                                        { return CRegistry::makeItem(child); },
                                        m_registered[m_madeCount]));
    }
}

} // namespace qix::detail
