#include "registration/CRegistry.h"

#include <qix/ITestItemFactory.h>
#include <zel/CError.h>

#include "registration/invalidNames.h"
#include "registration/literalText.h"
#include "text/decodedText.h"
#include "text/shownName.h"

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

AllAttributes withoutRareOnes(Attributes attributes)
{
    AllAttributes all;
    all.basic = attributes;
    return all;
}

void addSpecial(RegisteredTest test, char const* group, AllAttributes const& attributes,
                void (*body)(), CTestItem* (*make)(), ListTests* list, char const* types)
{
    CRegistry& registry = CRegistry::get();
    test.name = registry.nameOf(test.name);
    registry.add(group, RegisteredSpecial{test, attributes, body, make, list, types});
}

} // namespace

CRegistration::CRegistration(char const* file, int line, char const* group, char const* name,
                             void (*body)(), Attributes attributes)
{
    CRegistry& registry = CRegistry::get();
    registry.add(group, RegisteredFunction{{file, registry.nameOf(name), line, attributes}, body});
}

CRegistration::CRegistration(char const* file, int line, char const* group, char const* name,
                             void (*body)(), AllAttributes const& attributes)
{
    addSpecial({file, name, line, attributes.basic}, group, attributes, body, nullptr, nullptr,
               nullptr);
}

CRegistration::CRegistration(char const* file, int line, char const* group, char const* name,
                             CTestItem* (*make)(), Attributes attributes)
{
    CRegistry& registry = CRegistry::get();
    registry.add(group, RegisteredFixture{{file, registry.nameOf(name), line, attributes}, make});
}

CRegistration::CRegistration(char const* file, int line, char const* group, char const* name,
                             CTestItem* (*make)(), AllAttributes const& attributes)
{
    addSpecial({file, name, line, attributes.basic}, group, attributes, nullptr, make, nullptr,
               nullptr);
}

CRegistration::CRegistration(char const* file, int line, char const* group, char const* name,
                             ListTests* list, char const* types, AllAttributes const& attributes)
{
    addSpecial({file, name, line, attributes.basic}, group, attributes, nullptr, nullptr, list,
               types);
}

CRegistration::CRegistration(char const* file, int line, char const* group, char const* name,
                             ListTests* list, char const* types, Attributes attributes)
    : CRegistration(file, line, group, name, list, types, withoutRareOnes(attributes))
{
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

char const* CRegistry::nameOf(char const* name)
{
    return isLiteral(name) ? m_names.emplace_back(shownName(literalText(name))).c_str() : name;
}

/// The group keeps the place that its first test has in the order of declaration.
void CRegistry::add(std::string_view group, GroupFixture const& fixture)
{
    std::string const path = withoutBlanks(group);
    auto const known = m_groups.find(path);
    if (known == m_groups.end())
    {
        m_fixtures[path].push_back(fixture);
    }
    else
    {
        known->second->addFixture(fixture);
    }
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
    CRegisteredGroup* const parent =
        dot == std::string::npos ? nullptr : &groupAt(path.substr(0, dot), location);
    auto group = zel::newObj<CRegisteredGroup>(parent, path, location, &throwIfNamesAreInvalid);
    if (parent == nullptr)
    {
        m_root->addFactory(zel::newObj<CGroupFactory>(group));
    }
    else
    {
        parent->addGroup(group);
    }
    addFixtures(*group);
    return group;
}

void CRegistry::addFixtures(CRegisteredGroup& group)
{
    auto const found = m_fixtures.find(group.getPath());
    if (found == m_fixtures.end())
    {
        return;
    }
    for (GroupFixture const& fixture : found->second)
    {
        group.addFixture(fixture);
    }
    m_fixtures.erase(found);
}

} // namespace qix::detail
