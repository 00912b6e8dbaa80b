#pragma once

#include <qix/CTestItemGroup.h>

#include "selection/CTestTree.h"

#include "CFunctionTestItem.h"

#include <random>
#include <string>
#include <vector>

namespace test
{

using Items = std::vector<zel::P<qix::ITestItem>>;

inline zel::P<qix::ITestItem> leaf(std::string const& name,
                                   qix::ITestItem::Duration duration = qix::ITestItem::Short)
{
    return zel::newObj<CFunctionTestItem>(name, CFunctionTestItem::Work(), duration);
}

inline zel::P<qix::ITestItem> group(std::string const& name, Items const& items)
{
    auto result = zel::newObj<qix::CTestItemGroup>(name);
    for (auto const& item : items)
    {
        result->addSubItem(item);
    }
    return result;
}

/// Children with short names, so that there are siblings of one name, down to a few levels.
inline Items randomItems(std::mt19937& random, int levels)
{
    Items items;
    std::size_t const count = random() % 5;
    for (std::size_t i = 0; i < count; ++i)
    {
        std::string name;
        for (std::size_t length = random() % 3; length > 0; --length)
        {
            name += "ab.#%"[random() % 5];
        }
        auto const duration = static_cast<qix::ITestItem::Duration>(random() % 5);
        items.push_back(levels > 0 && random() % 2 == 0
                            ? group(name, randomItems(random, levels - 1))
                            : leaf(name, duration));
    }
    return items;
}

inline std::vector<std::string> idsOf(qix::CTestTree const& tree)
{
    std::vector<std::string> ids;
    for (qix::NodeIndex node = 0; node < tree.size(); ++node)
    {
        ids.push_back(tree.idOf(node));
    }
    return ids;
}

} // namespace test
