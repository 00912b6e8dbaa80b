#include "selection/shards.h"

#include <algorithm>
#include <functional>
#include <map>
#include <queue>
#include <utility>

namespace qix
{

namespace
{

ITestItem::Duration durationOf(TestNode const& node)
{
    return node.item == nullptr ? ITestItem::None : node.item->getDuration();
}

/// In microseconds: about the middle of what the class allows.
std::uint64_t guessedTime(ITestItem::Duration duration) noexcept
{
    constexpr std::uint64_t second = 1000000;
    switch (duration)
    {
    case ITestItem::Long:
        return 30 * second;
    case ITestItem::VeryLong:
        return 900 * second;
    case ITestItem::Hours:
        return 7200 * second;
    case ITestItem::None:
    case ITestItem::Short:
        break;
    }
    return second;
}

/// What the tests will take, as far as can be told.
class CEstimate
{
public:
    CEstimate(CTestTree const& tree, std::vector<NodeIndex> const& tests,
              KnownTime const& knownTime)
        : m_tree(tree), m_knownTime(knownTime)
    {
        for (NodeIndex const test : tests)
        {
            if (std::uint64_t const time = knownTime(test))
            {
                Known& known = m_knownOfClass[durationOf(tree[test])];
                known.sum += time;
                ++known.count;
            }
        }
    }

    std::uint64_t timeOf(NodeIndex test) const
    {
        std::uint64_t const time = m_knownTime(test);
        if (time > 0)
        {
            return time;
        }
        ITestItem::Duration const duration = durationOf(m_tree[test]);
        auto const known = m_knownOfClass.find(duration);
        return known == m_knownOfClass.end()
                   ? guessedTime(duration)
                   : std::max<std::uint64_t>(1, known->second.sum / known->second.count);
    }

private:
    struct Known
    {
        std::uint64_t sum = 0;
        std::uint64_t count = 0;
    };

    CTestTree const& m_tree;
    KnownTime const& m_knownTime;
    std::map<ITestItem::Duration, Known> m_knownOfClass;
};

struct Cost
{
    std::uint64_t time;
    std::uint64_t idHash;
    NodeIndex test;
};

/// The hash of the id spreads tests of equal cost, so that those of one group are not all in one
/// part.
bool isDearer(Cost const& left, Cost const& right) noexcept
{
    return left.time != right.time       ? left.time > right.time
           : left.idHash != right.idHash ? left.idHash < right.idHash
                                         : left.test < right.test;
}

std::vector<Cost> costsOf(CTestTree const& tree, std::vector<NodeIndex> const& tests,
                          KnownTime const& knownTime)
{
    CEstimate const estimate(tree, tests, knownTime);
    std::vector<Cost> costs;
    costs.reserve(tests.size());
    for (NodeIndex const test : tests)
    {
        costs.push_back({estimate.timeOf(test), tree[test].idHash.get(), test});
    }
    std::sort(costs.begin(), costs.end(), isDearer);
    return costs;
}

} // namespace

/// The dearest test that is left goes to the part that has least so far.
std::vector<NodeIndex> shardOf(CTestTree const& tree, std::vector<NodeIndex> const& tests,
                               KnownTime const& knownTime, std::uint64_t number,
                               std::uint64_t count)
{
    using Load = std::pair<std::uint64_t, std::uint64_t>; // time, number of the part
    std::priority_queue<Load, std::vector<Load>, std::greater<Load>> parts;
    // Parts beyond the number of tests stay empty.
    for (std::uint64_t i = 1; i <= std::min<std::uint64_t>(count, tests.size()); ++i)
    {
        parts.push({0, i});
    }
    std::vector<NodeIndex> shard;
    for (Cost const& cost : costsOf(tree, tests, knownTime))
    {
        Load part = parts.top();
        parts.pop();
        if (part.second == number)
        {
            shard.push_back(cost.test);
        }
        part.first += cost.time;
        parts.push(part);
    }
    std::sort(shard.begin(), shard.end());
    return shard;
}

} // namespace qix
