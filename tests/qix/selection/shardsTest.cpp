#include "selection/shards.h"

#include "Tree.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <numeric>

namespace
{

using qix::CTestTree;
using qix::NodeIndex;
using qix::shardOf;
using test::leaf;

std::vector<NodeIndex> leavesOf(CTestTree const& tree)
{
    std::vector<NodeIndex> tests;
    for (NodeIndex node = 0; node < tree.size(); ++node)
    {
        if (tree.isLeaf(node))
        {
            tests.push_back(node);
        }
    }
    return tests;
}

std::uint64_t nothingKnown(NodeIndex)
{
    return 0;
}

TEST(Shards, areDisjointAndCompleteInThousandRandomTrees)
{
    std::mt19937 random(1);
    for (int i = 0; i < 1000; ++i)
    {
        CTestTree const tree(test::randomItems(random, 3));
        std::vector<std::uint64_t> times(tree.size());
        std::generate(times.begin(), times.end(), [&] { return random() % 3 * 1000; });
        auto const knownTime = [&times](NodeIndex node) { return times[node]; };
        std::vector<NodeIndex> together;
        for (std::uint64_t number = 1; number <= 5; ++number)
        {
            std::vector<NodeIndex> const shard =
                shardOf(tree, leavesOf(tree), knownTime, number, 5);
            EXPECT_EQ(shard, shardOf(tree, leavesOf(tree), knownTime, number, 5));
            together.insert(together.end(), shard.begin(), shard.end());
        }
        std::sort(together.begin(), together.end());
        ASSERT_EQ(together, leavesOf(tree));
    }
}

TEST(Shards, weighClasses)
{
    test::Items items(60, nullptr);
    std::generate(items.begin(), items.end(), [] { return leaf("short"); });
    items.push_back(leaf("long", qix::ITestItem::Long));
    CTestTree const tree(items);
    std::vector<std::size_t> sizes;
    for (std::uint64_t number = 1; number <= 3; ++number)
    {
        sizes.push_back(shardOf(tree, leavesOf(tree), nothingKnown, number, 3).size());
    }
    std::sort(sizes.begin(), sizes.end());
    EXPECT_THAT(sizes, testing::ElementsAre(1, 30, 30));
}

TEST(Shards, weighKnownTimesAndTakeTheirAverageForOthers)
{
    CTestTree const tree({leaf("a"), leaf("b"), leaf("c"), leaf("d")});
    // The average of 9 and 1 is 5, so that the two unknown ones are together as long as 9 + 1.
    auto const knownTime = [](NodeIndex node) -> std::uint64_t {
        return node == 0 ? 9 : node == 1 ? 1 : 0;
    };
    std::vector<NodeIndex> const withDearest = shardOf(tree, leavesOf(tree), knownTime, 1, 2);
    EXPECT_THAT(withDearest, testing::ElementsAre(0, 1));
}

TEST(Shards, areEmptyBeyondTheNumberOfTests)
{
    CTestTree const tree({leaf("a")});
    EXPECT_EQ(shardOf(tree, leavesOf(tree), nothingKnown, 1, UINT64_MAX).size(), 1U);
    EXPECT_TRUE(shardOf(tree, leavesOf(tree), nothingKnown, UINT64_MAX, UINT64_MAX).empty());
}

} // namespace
