#include "selection/testOrder.h"

#include "Tree.h"

#include <gmock/gmock.h>

#include <algorithm>

namespace
{

using qix::CTestTree;
using qix::noNode;
using qix::randomOrder;
using test::group;
using test::leaf;
using testing::ElementsAre;

test::Items leaves(int count)
{
    test::Items items;
    for (int i = 0; i < count; ++i)
    {
        items.push_back(leaf(std::to_string(i)));
    }
    return items;
}

TEST(RandomOrder, isAnOrderOfEachGroup)
{
    CTestTree const tree({group("a", leaves(20)), group("b", leaves(20))});
    auto order = randomOrder(tree, 7);
    EXPECT_THAT(order.at(noNode), testing::UnorderedElementsAre(0, 21));
    for (qix::NodeIndex const parent : {0U, 21U})
    {
        std::vector<qix::NodeIndex>& children = order.at(parent);
        EXPECT_FALSE(std::is_sorted(children.begin(), children.end()));
        std::sort(children.begin(), children.end());
        ASSERT_EQ(children.size(), 20U);
        EXPECT_EQ(children.front(), parent + 1);
        EXPECT_EQ(children.back(), parent + 20);
    }
}

TEST(RandomOrder, differsWithTheSeed)
{
    CTestTree const tree(leaves(20));
    EXPECT_EQ(randomOrder(tree, 7), randomOrder(tree, 7));
    EXPECT_NE(randomOrder(tree, 7), randomOrder(tree, 8));
}

/// All orders of three tests come about equally often.
TEST(RandomOrder, prefersNone)
{
    CTestTree const tree(leaves(3));
    std::map<std::vector<qix::NodeIndex>, int> counts;
    for (std::uint64_t seed = 0; seed < 6000; ++seed)
    {
        ++counts[randomOrder(tree, seed).at(noNode)];
    }
    EXPECT_EQ(counts.size(), 6U);
    for (auto const& entry : counts)
    {
        EXPECT_NEAR(entry.second, 1000, 150);
    }
}

TEST(OrderByWeight, putsTheHeaviestFirstAndKeepsOthers)
{
    CTestTree const tree({leaf("a"), group("b", {leaf("c"), leaf("d")}), leaf("e"), leaf("f")});
    auto const order = qix::orderByWeight(tree, {1, 0, 2, 3, 0, 4});
    EXPECT_THAT(order.at(noNode), ElementsAre(1, 5, 0, 4));
    EXPECT_THAT(order.at(1), ElementsAre(3, 2));
}

} // namespace
