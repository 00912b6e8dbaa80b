#include "selection/testOrder.h"

#include <algorithm>

namespace qix
{

namespace
{

/// The output of the generator SplitMix64 for a state.
std::uint64_t mixed(std::uint64_t state) noexcept
{
    state += 0x9E3779B97F4A7C15U;
    state = (state ^ (state >> 30U)) * 0xBF58476D1CE4E5B9U;
    state = (state ^ (state >> 27U)) * 0x94D049BB133111EBU;
    return state ^ (state >> 31U);
}

/// The children of each parent, those with a lower key first.
TestOrder orderByKey(CTestTree const& tree, std::vector<std::uint64_t> const& keys)
{
    TestOrder order;
    for (NodeIndex node = 0; node < tree.size(); ++node)
    {
        order[tree[node].parent].push_back(node);
    }
    for (auto& [parent, children] : order)
    {
        std::stable_sort(children.begin(), children.end(),
                         [&keys](NodeIndex left, NodeIndex right)
                         { return keys[left] < keys[right]; });
    }
    return order;
}

} // namespace

TestOrder randomOrder(CTestTree const& tree, std::uint64_t seed)
{
    std::vector<std::uint64_t> keys(tree.size());
    for (NodeIndex node = 0; node < tree.size(); ++node)
    {
        keys[node] = mixed(mixed(seed) ^ tree[node].idHash.get());
    }
    return orderByKey(tree, keys);
}

TestOrder orderByWeight(CTestTree const& tree, std::vector<std::uint64_t> weights)
{
    for (NodeIndex node = tree.size(); node-- > 0;)
    {
        if (tree[node].parent != noNode)
        {
            weights[tree[node].parent] += weights[node];
        }
    }
    for (std::uint64_t& weight : weights)
    {
        weight = ~weight;
    }
    return orderByKey(tree, weights);
}

} // namespace qix
