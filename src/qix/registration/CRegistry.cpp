#include "registration/CRegistry.h"

#include <qix/ITestItemFactory.h>
#include <zel/CError.h>

#include "guards/posix/CForkLock.h"
#include "registration/invalidNames.h"
#include "text/decodedText.h"
#include "text/forcedUnwind.h"

#include <algorithm>
#include <cstddef>
#include <exception>
#include <memory_resource>
#include <mutex>
#include <utility>

namespace qix::detail
{

namespace
{

ITestItem::Duration durationOf(RegisteredTest const& test)
{
    return static_cast<ITestItem::Duration>(test.attributes.duration);
}

/// Where the tests of functions lie, side by side, which is quicker than a piece of the heap for
/// each. They live as long as the process, and this longer: it is made while the library is loaded,
/// before any group can be. Different groups may belong to different threads.
std::mutex testMemoryMutex;
CForkLock const testMemoryLockedWhileForking(testMemoryMutex);
std::pmr::monotonic_buffer_resource testMemory;

/// A test whose body is a function.
class CFunctionTest : public CTestItem
{
public:
    explicit CFunctionTest(RegisteredFunction const& test)
        : CTestItem(test.name, durationOf(test), test.attributes.interactive), m_body(test.body)
    {
    }

    static void* operator new(std::size_t size)
    {
        std::lock_guard<std::mutex> const lock(testMemoryMutex);
        return testMemory.allocate(size);
    }

    static void operator delete(void* /*test*/) noexcept {}

protected:
    void body() override { m_body(); }

private:
    void (*m_body)();
};

/// Stands for a test whose object could not be made, and fails as that did.
class CBrokenTest : public CTestItem
{
public:
    CBrokenTest(RegisteredFixture const& test, std::exception_ptr reason)
        : CTestItem(test.name, durationOf(test), test.attributes.interactive),
          m_reason(std::move(reason))
    {
    }

protected:
    void body() override { std::rethrow_exception(m_reason); }

private:
    std::exception_ptr m_reason;
};

/// Stands for a group that exists already. Among the factories of the root the group keeps its
/// place, where an item would be put in front of all items that are still to be made.
class CGroupFactory : public zel::CBase, public virtual ITestItemFactory
{
public:
    explicit CGroupFactory(zel::P<CRegisteredGroup> const& group) : m_group(group) {}

    zel::P<ITestItem> createTestItem() override
    {
        CRegistry::get().throwInvalidNames();
        return m_group;
    }

private:
    zel::P<CRegisteredGroup> m_group;
};

/// The path as it is meant: "a . b" is what a macro makes of blanks between the components.
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
    if (m_acceptedCount == m_testCount)
    {
        return;
    }
    std::string const invalidNames = listAllInvalidNames();
    if (!invalidNames.empty())
    {
        throw zel::CError(decodedText("tests are refused: " + invalidNames));
    }
    m_acceptedCount = m_testCount;
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

/// The group of the path; all groups above it are made as well, when they are missing.
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
        auto group = zel::newObj<CRegisteredGroup>(nullptr, path, location);
        m_root->addFactory(zel::newObj<CGroupFactory>(group));
        return group;
    }
    CRegisteredGroup& parent = groupAt(path.substr(0, dot), location);
    auto group = zel::newObj<CRegisteredGroup>(&parent, path, location);
    parent.addGroup(group);
    return group;
}

zel::P<ITestItem> CRegistry::makeItem(RegisteredFunction const& test)
{
    return zel::newObj<CFunctionTest>(test);
}

QIX_CATCHES_FORCED_UNWIND zel::P<ITestItem> CRegistry::makeItem(RegisteredFixture const& test)
{
    try
    {
        return constructTest(test);
    }
    catch (abi::__forced_unwind const&)
    {
        // The thread is being cancelled, which nobody may stop.
        throw;
    }
    catch (...)
    {
        return zel::newObj<CBrokenTest>(test, std::current_exception());
    }
}

zel::P<ITestItem> CRegistry::makeItem(zel::P<CRegisteredGroup> const& group)
{
    return group;
}

zel::P<ITestItem> CRegistry::constructTest(RegisteredFixture const& test)
{
    zel::P<CTestItem> const item(test.make());
    item->m_name = test.name;
    item->m_duration = durationOf(test);
    item->m_interactive = test.attributes.interactive;
    return item;
}

} // namespace qix::detail
