#include "CRegistry.h"

#include <qix/ITestItemFactory.h>
#include <zel/CError.h>

#include "decodedText.h"
#include "refusals.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <exception>
#include <functional>
#include <memory_resource>
#include <mutex>
#include <utility>
#include <vector>

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
std::pmr::monotonic_buffer_resource testMemory;

/// A test whose body is a function.
class CFunctionTest : public CTestItem
{
public:
    explicit CFunctionTest(RegisteredTest const& test)
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

/// Stands for a group that exists already. Among the factories of the root the group keeps its
/// place, where an item would be put in front of all items that are still to be made.
class CGroupFactory : public zel::CBase, public virtual ITestItemFactory
{
public:
    explicit CGroupFactory(zel::P<CRegisteredGroup> const& group) : m_group(group) {}

    zel::P<ITestItem> createTestItem() override
    {
        CRegistry::get().throwRefusals();
        return m_group;
    }

private:
    zel::P<CRegisteredGroup> m_group;
};

/// Tells whether all children of groups differ: by hashes, so that it may say no by mistake, which
/// is seldom, but never yes. Small, for it is the cache misses that take time.
class CDifferentChildren
{
public:
    /// \param count  how many children there are
    explicit CDifferentChildren(std::size_t count)
    {
        std::size_t size = 1;
        while (size < 2 * count)
        {
            size *= 2;
        }
        m_slots.resize(size);
    }

    /// False when there seems to be such a child already.
    bool add(CRegisteredGroup const* parent, std::string_view name)
    {
        std::uint64_t const hash = hashOf(parent, name);
        std::uint32_t const mark = static_cast<std::uint32_t>(hash >> 32U) | 1U;
        std::size_t const last = m_slots.size() - 1;
        std::size_t slot = hash & last;
        while (m_slots[slot] != 0 && m_slots[slot] != mark)
        {
            slot = (slot + 1) & last;
        }
        return std::exchange(m_slots[slot], mark) != mark;
    }

private:
    static std::uint64_t hashOf(CRegisteredGroup const* parent, std::string_view name)
    {
        constexpr std::uint64_t mixing = 0x9E3779B97F4A7C15U;
        return (std::hash<std::string_view>()(name) + std::hash<void const*>()(parent)) * mixing;
    }

    std::vector<std::uint32_t> m_slots; ///< marks, each behind the place that its hash tells
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
    CRegistry::get().add(group, {{file, line}, name, body, nullptr, attributes});
}

CRegistration::CRegistration(char const* file, int line, char const* group, char const* name,
                             CTestItem* (*make)(), Attributes attributes)
{
    CRegistry::get().add(group, {{file, line}, name, nullptr, make, attributes});
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

void CRegistry::add(std::string_view group, RegisteredTest const& test)
{
    CRegisteredGroup& itsGroup = groupOf(group);
    RegisteredTest& kept = m_tests.emplace_back(test);
    kept.group = &itsGroup;
    itsGroup.addTest(kept);
}

void CRegistry::throwRefusals()
{
    if (m_acceptedCount == m_tests.size())
    {
        return;
    }
    if (mayBeRefused())
    {
        std::vector<std::string> const refusals = listRefusals(m_tests);
        std::string text;
        for (std::string const& refusal : refusals)
        {
            text += (text.empty() ? "tests are refused: " : "; ") + refusal;
        }
        if (!text.empty())
        {
            throw zel::CError(decodedText(text));
        }
    }
    m_acceptedCount = m_tests.size();
}

/// Quick, and seldom wrong: compares hashes where all names would be.
bool CRegistry::mayBeRefused() const
{
    CDifferentChildren children(m_tests.size() + m_groups.size());
    for (auto const& [path, group] : m_groups)
    {
        if (isGroupNameRefused(path) || !children.add(group->getParent(), group->getName()))
        {
            return true;
        }
    }
    return !std::all_of(m_tests.begin(), m_tests.end(),
                        [&children](RegisteredTest const& test)
                        { return children.add(test.group, test.name); });
}

CRegisteredGroup& CRegistry::groupOf(std::string_view text)
{
    if (m_lastGroup == nullptr || text != m_lastText)
    {
        m_lastGroup = &groupAt(withoutBlanks(text));
        m_lastText = text;
    }
    return *m_lastGroup;
}

/// The group of the path; all groups above it are made as well, when they are missing.
CRegisteredGroup& CRegistry::groupAt(std::string const& path)
{
    auto const known = m_groups.find(path);
    return known == m_groups.end() ? *(m_groups[path] = makeGroup(path)) : *known->second;
}

zel::P<CRegisteredGroup> CRegistry::makeGroup(std::string const& path)
{
    std::size_t const dot = path.rfind('.');
    if (dot == std::string::npos)
    {
        auto group = zel::newObj<CRegisteredGroup>(nullptr, path);
        m_root->addFactory(zel::newObj<CGroupFactory>(group));
        return group;
    }
    CRegisteredGroup& parent = groupAt(path.substr(0, dot));
    auto group = zel::newObj<CRegisteredGroup>(&parent, path);
    parent.addGroup(group);
    return group;
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
