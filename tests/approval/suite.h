#pragma once

#include <CFunctionTestItem.h>

#include <qix/qix.h>
#include <zel/P.h>

#include <string>
#include <vector>

/// Short words to write down a small tree of tests.
namespace suite
{

using qix::ITestItem;
using qix::ITestRunner;
using Item = zel::P<ITestItem>;
using Items = std::vector<Item>;
using Self = test::CFunctionTestItem;

inline void succeed(Self&, ITestRunner&)
{
}

inline Item leaf(std::string const& name, Self::Work const& work = succeed,
                 ITestItem::Duration duration = ITestItem::Short)
{
    return zel::newObj<Self>(name, work, duration);
}

inline Item interactive(std::string const& name, Self::Work const& work = succeed,
                        ITestItem::Duration duration = ITestItem::Short)
{
    auto item = zel::newObj<Self>(name, work, duration);
    item->m_interactive = true;
    return item;
}

inline zel::P<qix::CTestItemGroup> group(std::string const& name, Items const& items = {})
{
    auto result = zel::newObj<qix::CTestItemGroup>(name);
    for (Item const& item : items)
    {
        result->addSubItem(item);
    }
    return result;
}

/// A group whose items are made when they are needed.
inline zel::P<qix::CTestItemGroup>
lazyGroup(std::string const& name, std::vector<test::CFunctionFactory::Create> const& creators)
{
    auto result = zel::newObj<qix::CTestItemGroup>(name);
    for (auto const& create : creators)
    {
        result->addFactory(zel::newObj<test::CFunctionFactory>(create));
    }
    return result;
}

inline void addToRoot(Items const& items)
{
    for (Item const& item : items)
    {
        qix::CTestItemGroup::global()->addSubItem(item);
    }
}

/// Registers the items and does what a ready-made main does.
inline int run(int argc, char** argv, Items const& items)
{
    addToRoot(items);
    return qix::runMain(argc, argv);
}

} // namespace suite
