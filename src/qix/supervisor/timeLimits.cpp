#include "supervisor/timeLimits.h"

#include <cstdint>

namespace qix
{

namespace
{

/// Three times what the class says, in seconds: machines differ.
std::optional<std::uint64_t> longestTimeOf(ITestItem::Duration duration)
{
    switch (duration)
    {
    case ITestItem::Short:
        return 60;
    case ITestItem::Long:
        return 9 * 60;
    case ITestItem::VeryLong:
        return 9 * 60 * 60;
    default:
        return std::nullopt;
    }
}

} // namespace

std::optional<std::chrono::nanoseconds> timeLimitOf(ITestItem const& test,
                                                    RunOptions const& options)
{
    using Seconds = std::chrono::duration<double>;
    std::optional<std::uint64_t> const limit =
        options.timeLimit ? options.timeLimit : longestTimeOf(test.getDuration());
    if (!options.hasTimeLimits || test.isInteractive() || !limit)
    {
        return std::nullopt;
    }
    return std::chrono::duration_cast<std::chrono::nanoseconds>(
        Seconds(static_cast<double>(*limit) * options.timeLimitFactor));
}

std::optional<std::chrono::nanoseconds> timeLimitOf(NodeIndex node, CTestPlan const& plan,
                                                    RunOptions const& options)
{
    CTestTree const& tree = plan.tree();
    std::chrono::nanoseconds sum(0);
    for (NodeIndex test = node; test < tree[node].end; ++test)
    {
        if (!tree.isLeaf(test) || tree[test].item == nullptr || !plan.isWanted(test))
        {
            continue;
        }
        auto const limit = timeLimitOf(*tree[test].item, options);
        if (!limit)
        {
            return std::nullopt;
        }
        sum += *limit;
    }
    return sum.count() > 0 ? std::optional(sum) : std::nullopt;
}

} // namespace qix
