#pragma once

#include <qix/ITestItem.h>
#include <qix/ITestItemFactory.h>
#include <qix/ITestRunner.h>
#include <qix/export.h>
#include <zel/CBase.h>
#include <zel/CInvalidArgError.h>
#include <zel/P.h>
#include <zel/String.h>

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <string>
#include <utility>
#include <vector>

namespace qix
{

class CTestItemGroup;

namespace detail
{

/// What CTestItemGroup::global() returns.
QIX_EXPORT zel::P<CTestItemGroup> globalRoot();

} // namespace detail

/// A named container of test items.
///
/// Children are registered as factories and made when they are first needed: when the group is
/// asked for them or run. The group owns its children and its pending factories. It belongs to
/// one thread at a time; only global() may be called from several.
class QIX_EXPORT CTestItemGroup : public zel::CBase, public virtual ITestItem
{
public:
    /// A group without children.
    explicit CTestItemGroup(std::string const& name)
        : m_subItems(), m_factories(), m_name(name), m_logLines()
    {
    }

    std::string getName() const override { return m_name; }

    /// None: a group has no expected duration.
    Duration getDuration() const override { return None; }

    bool isInteractive() const override { return false; }

    /// Looks at the children that have been made; pending factories stay pending.
    bool containsAnyInteractive() const override
    {
        for (zel::P<ITestItem> const& item : m_subItems)
        {
            if (item != nullptr && item->containsAnyInteractive())
            {
                return true;
            }
        }
        return false;
    }

    /// Makes the pending children and hands each child to \p runner. Children that are added
    /// meanwhile are run too, and one that is taken out while it runs lives until it has run.
    /// Throws what a factory throws.
    void run(ITestRunner* runner) override
    {
        createPendingItems();
        for (std::size_t i = 0; i < m_subItems.size(); ++i)
        {
            zel::P<ITestItem> const item = m_subItems[i];
            runner->runTestItem(item.get());
        }
    }

    /// Makes the pending children and returns all of them. Throws what a factory throws.
    void getSubItems(std::vector<zel::P<ITestItem>>& out) override
    {
        createPendingItems();
        out = m_subItems;
    }

    /// Records the line and prints it on standard output at once, with an empty line behind it.
    void log(zel::String const& line) override
    {
        m_logLines.push_back(line);
        std::puts((line + "\n").toCPSafe().c_str());
        std::fflush(stdout);
    }

    std::vector<zel::String> const& getLog() const override { return m_logLines; }

    /// A hook for derived classes; neither the group nor the runner calls it.
    virtual void setUp() {}

    /// A hook for derived classes; neither the group nor the runner calls it.
    virtual void tearDown() {}

    /// A hook for derived classes; neither the group nor the runner calls it.
    virtual void clean() {}

    /// Registers a factory: its item becomes a child behind all that exist when children are next
    /// needed. Throws zel::CInvalidArgError when \p factory is null.
    void addFactory(zel::P<ITestItemFactory> const& factory)
    {
        if (factory == nullptr)
        {
            throw zel::CInvalidArgError("CTestItemGroup::addFactory",
                                        "the factory must not be null", zel::CProps());
        }
        m_factories.push_back(factory);
    }

    /// Adds a finished item. It stands before the items of factories that are still pending.
    /// Throws zel::CInvalidArgError when \p item is null.
    void addSubItem(zel::P<ITestItem> const& item)
    {
        if (item == nullptr)
        {
            throw zel::CInvalidArgError("CTestItemGroup::addSubItem", "the item must not be null",
                                        zel::CProps());
        }
        m_subItems.push_back(item);
    }

    /// The root group of the process: its name is empty, and console runners offer its children.
    /// It is one object for the executable, the library and every plug-in, whatever those are
    /// linked with. Made on first use, from any thread; released at exit, and before the objects
    /// of the base library that destructors of tests use.
    // Not inlined: a program that has a root of its own, as earlier headers made it, replaces this
    // function for the library, too.
    QIX_EXPORT __attribute__((noinline)) static zel::P<CTestItemGroup> global()
    {
        return detail::globalRoot();
    }

private:
    void createPendingItems()
    {
        while (!m_factories.empty())
        {
            std::vector<zel::P<ITestItemFactory>> pending;
            pending.swap(m_factories);
            createItems(pending);
        }
    }

    /// At least doubles the capacity when it grows, since each factory may register the next one.
    void makeRoomFor(std::size_t count)
    {
        std::size_t const needed = m_subItems.size() + count;
        if (needed > m_subItems.capacity())
        {
            m_subItems.reserve(std::max(needed, 2 * m_subItems.capacity()));
        }
    }

    /// Makes one item after the other. If a factory throws, it and those behind it stay pending.
    void createItems(std::vector<zel::P<ITestItemFactory>>& pending)
    {
        std::size_t next = 0;
        try
        {
            makeRoomFor(pending.size());
            for (; next < pending.size(); ++next)
            {
                m_subItems.push_back(pending[next]->createTestItem());
                pending[next] = nullptr;
            }
        }
        catch (...)
        {
            pending.erase(pending.begin(), pending.begin() + static_cast<std::ptrdiff_t>(next));
            pending.insert(pending.end(), m_factories.begin(), m_factories.end());
            pending.swap(m_factories);
            throw;
        }
    }

protected:
    std::vector<zel::P<ITestItem>> m_subItems;         ///< made, in the order of their making
    std::vector<zel::P<ITestItemFactory>> m_factories; ///< pending, in the order of registration
    std::string m_name;                                ///< what getName() returns
    std::vector<zel::String> m_logLines;               ///< what getLog() returns
};

} // namespace qix
