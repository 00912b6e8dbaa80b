#include "registration/CRegistry.h"

#include <qix/ITestItemFactory.h>
#include <zel/CError.h>

#include "registration/invalidNames.h"
#include "text/decodedText.h"

#include <algorithm>
#include <cstddef>

namespace qix::detail
{

namespace
{

void throwIfNamesAreInvalid()
{
    CRegistry::get().throwInvalidNames();
}

/// Adding a group through a factory keeps registration order: addSubItem() would put it before
/// pending factories.
class CGroupFactory : public zel::CBase, public virtual ITestItemFactory
{
public:
    explicit CGroupFactory(zel::P<CRegisteredGroup> const& group) : m_group(group) {}

    zel::P<ITestItem> createTestItem() override
    {
        throwIfNamesAreInvalid();
        return m_group;
    }

private:
    zel::P<CRegisteredGroup> m_group;
};

/// The path without the blanks that QIX_TEST allows: "a . b" means "a.b".
std::string withoutBlanks(std::string_view text)
{
    std::string path(text);
    path.erase(std::remove(path.begin(), path.end(), ' '), path.end());
    return path;
}

} // namespace

CRegistration::CRegistration(char const* file, int line, char const* group, char const* name,
                             void (*body)(), Attributes attributes)
{
    CRegistry::get().add(group, RegisteredFunction{{file, name, line, attributes}, body});
}

CRegistration::CRegistration(char const* file, int line, char const* group, char const* name,
                             CTestItem* (*make)(), Attributes attributes)
{
    CRegistry::get().add(group, RegisteredFixture{{file, name, line, attributes}, make});
}

CRegistry& CRegistry::get()
{
    static CRegistry registry;
    return registry;
}

// The root group is made first, so that it outlives the registry.
CRegistry::CRegistry() : m_root(CTestItemGroup::global())
{
}

void CRegistry::throwInvalidNames()
{
    if (m_validCount == m_testCount)
    {
        return;
    }
    std::string const invalidNames = listAllInvalidNames();
    if (!invalidNames.empty())
    {
        throw zel::CError(decodedText("invalid test names: " + invalidNames));
    }
    m_validCount = m_testCount;
}

std::string CRegistry::listAllInvalidNames() const
{
    std::string list;
    for (auto const& [path, group] : m_groups)
    {
        for (std::string const& invalidName : listInvalidNames(*group))
        {
            list += (list.empty() ? "" : "; ") + invalidName;
        }
    }
    return list;
}

CRegisteredGroup& CRegistry::groupOf(std::string_view text, SourceLocation const& location)
{
    if (m_lastGroup == nullptr || text != m_lastText)
    {
        m_lastGroup = &groupAt(withoutBlanks(text), location);
        m_lastText = text;
    }
    return *m_lastGroup;
}

/// The group of the path. Missing groups above it are made as well.
CRegisteredGroup& CRegistry::groupAt(std::string const& path, SourceLocation const& location)
{
    auto const known = m_groups.find(path);
    return known == m_groups.end() ? *(m_groups[path] = makeGroup(path, location)) : *known->second;
}

zel::P<CRegisteredGroup> CRegistry::makeGroup(std::string const& path,
                                              SourceLocation const& location)
{
    std::size_t const dot = path.rfind('.');
    if (dot == std::string::npos)
    {
        auto group =
            zel::newObj<CRegisteredGroup>(nullptr, path, location, &throwIfNamesAreInvalid);
        m_root->addFactory(zel::newObj<CGroupFactory>(group));
        return group;
    }
    CRegisteredGroup& parent = groupAt(path.substr(0, dot), location);
    auto group = zel::newObj<CRegisteredGroup>(&parent, path, location, &throwIfNamesAreInvalid);
    parent.addGroup(group);
    return group;
}

} // namespace qix::detail
