#include "CRegistry.h"

#include <qix/ITestItemFactory.h>
#include <zel/CError.h>

#include "decodedText.h"
#include "failureText.h"

#include <algorithm>
#include <exception>
#include <utility>

namespace qix::detail
{

namespace
{

ITestItem::Duration durationOf(RegisteredTest const& test)
{
    return static_cast<ITestItem::Duration>(test.attributes.duration);
}

/// A test whose body is a function.
class CFunctionTest : public CTestItem
{
public:
    explicit CFunctionTest(RegisteredTest const& test)
        : CTestItem(test.name, durationOf(test), test.attributes.interactive), m_body(test.body)
    {
    }

protected:
    void body() override { m_body(); }

private:
    void (*m_body)();
};

/// Stands for a test whose object could not be made, and fails as that did.
class CBrokenTest : public CTestItem
{
public:
    CBrokenTest(RegisteredTest const& test, std::exception_ptr reason)
        : CTestItem(test.name, durationOf(test), test.attributes.interactive),
          m_reason(std::move(reason))
    {
    }

protected:
    void body() override { std::rethrow_exception(m_reason); }

private:
    std::exception_ptr m_reason;
};

class CTestFactory : public zel::CBase, public virtual ITestItemFactory
{
public:
    explicit CTestFactory(RegisteredTest const& test) : m_test(test) {}

    zel::P<ITestItem> createTestItem() override { return CRegistry::makeItem(m_test); }

private:
    RegisteredTest m_test;
};

/// Stands for a group that exists already. Among the factories of its parent the group keeps its
/// place, where an item would be put in front of all tests that are still to be made.
class CGroupFactory : public zel::CBase, public virtual ITestItemFactory
{
public:
    explicit CGroupFactory(zel::P<CRegisteredGroup> const& group) : m_group(group) {}

    zel::P<ITestItem> createTestItem() override { return m_group; }

private:
    zel::P<CRegisteredGroup> m_group;
};

class CRefusingFactory : public zel::CBase, public virtual ITestItemFactory
{
public:
    zel::P<ITestItem> createTestItem() override { CRegistry::get().throwRefusals(); }
};

/// The path as it is meant: "a . b" is what a macro makes of blanks between the components.
std::string withoutBlanks(std::string path)
{
    path.erase(std::remove(path.begin(), path.end(), ' '), path.end());
    return path;
}

bool hasEmptyComponent(std::string const& path)
{
    return ("." + path + ".").find("..") != std::string::npos;
}

std::string parentOf(std::string const& path)
{
    std::size_t const dot = path.rfind('.');
    return dot == std::string::npos ? std::string() : path.substr(0, dot);
}

std::string textOf(Place const& place)
{
    return placeText(place.file, place.line);
}

std::string lastComponentOf(std::string const& path)
{
    return path.substr(path.rfind('.') + 1);
}

} // namespace

bool CRegisteredGroup::containsAnyInteractive() const
{
    return m_containsInteractive || CTestItemGroup::containsAnyInteractive();
}

CRegistration::CRegistration(char const* file, int line, char const* group, char const* name,
                             void (*body)(), Attributes attributes)
{
    CRegistry::get().add(withoutBlanks(group), {{file, line}, name, body, nullptr, attributes});
}

CRegistration::CRegistration(char const* file, int line, char const* group, char const* name,
                             CTestItem* (*make)(), Attributes attributes)
{
    CRegistry::get().add(withoutBlanks(group), {{file, line}, name, nullptr, make, attributes});
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

void CRegistry::add(std::string const& group, RegisteredTest const& test)
{
    std::string const path = group + "." + test.name;
    if (!isGroupAccepted(group, test.place) || !isTestAccepted(path, test.place))
    {
        return;
    }
    groupAt(group, test.place).addFactory(zel::newObj<CTestFactory>(test));
    if (test.attributes.interactive)
    {
        markInteractive(group);
    }
}

/// Keeps the path of a test that is accepted.
bool CRegistry::isTestAccepted(std::string const& path, Place const& place)
{
    if (auto const group = m_groups.find(path); group != m_groups.end())
    {
        refuse(path + " is a group at " + textOf(group->second.place) + " and a test at " +
               textOf(place));
        return false;
    }
    auto const [other, isNew] = m_tests.emplace(path, place);
    if (!isNew)
    {
        refuse("two tests are named " + path + ", at " + textOf(other->second) + " and " +
               textOf(place));
    }
    return isNew;
}

bool CRegistry::isGroupAccepted(std::string const& group, Place const& place)
{
    if (m_groups.find(group) != m_groups.end())
    {
        return true;
    }
    // The header of a group is printed with its name as part of a format.
    if (group.find('%') != std::string::npos)
    {
        refuse("the name of the group " + group + " contains a %, at " + textOf(place));
        return false;
    }
    if (hasEmptyComponent(group))
    {
        refuse("the name of a group is empty in \"" + group + "\", at " + textOf(place));
        return false;
    }
    for (std::string path = group; !path.empty(); path = parentOf(path))
    {
        if (auto const other = m_tests.find(path); other != m_tests.end())
        {
            refuse(path + " is a test at " + textOf(other->second) + " and a group at " +
                   textOf(place));
            return false;
        }
    }
    return true;
}

void CRegistry::refuse(std::string const& reason)
{
    if (m_refusals.empty())
    {
        m_root->addFactory(zel::newObj<CRefusingFactory>());
    }
    m_refusals.push_back(reason);
}

void CRegistry::throwRefusals() const
{
    std::string text = "tests are refused: ";
    for (std::string const& reason : m_refusals)
    {
        text += (&reason == &m_refusals.front() ? "" : "; ") + reason;
    }
    throw zel::CError(decodedText(text));
}

/// The group of the path; all groups above it are made as well, when they are missing.
CTestItemGroup& CRegistry::groupAt(std::string const& path, Place const& place)
{
    if (path.empty())
    {
        return *m_root;
    }
    auto const known = m_groups.find(path);
    return known == m_groups.end() ? *makeGroup(path, place).item : *known->second.item;
}

CRegistry::Group const& CRegistry::makeGroup(std::string const& path, Place const& place)
{
    auto const item = zel::newObj<CRegisteredGroup>(lastComponentOf(path));
    groupAt(parentOf(path), place).addFactory(zel::newObj<CGroupFactory>(item));
    return m_groups[path] = {item, place};
}

void CRegistry::markInteractive(std::string const& path)
{
    for (std::string group = path; !group.empty(); group = parentOf(group))
    {
        m_groups[group].item->setContainsInteractive();
    }
}

zel::P<ITestItem> CRegistry::makeItem(RegisteredTest const& test)
{
    if (test.make == nullptr)
    {
        return zel::newObj<CFunctionTest>(test);
    }
    try
    {
        return makeFixtureTest(test);
    }
    catch (std::exception const&)
    {
        return zel::newObj<CBrokenTest>(test, std::current_exception());
    }
}

zel::P<ITestItem> CRegistry::makeFixtureTest(RegisteredTest const& test)
{
    zel::P<CTestItem> const item(test.make());
    item->m_name = test.name;
    item->m_duration = durationOf(test);
    item->m_interactive = test.attributes.interactive;
    return item;
}

} // namespace qix::detail
