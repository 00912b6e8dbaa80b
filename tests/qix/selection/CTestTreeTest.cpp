#include "Tree.h"

#include "errorOf.h"

#include <gmock/gmock.h>

#include <set>

namespace
{

using qix::CTestTree;
using test::group;
using test::Items;
using test::leaf;
using testing::ElementsAre;

TEST(CTestTree, holdsEachItemBehindItsParent)
{
    CTestTree const tree({group("a", {leaf("b"), group("c", {leaf("d")})}), leaf("e")});
    EXPECT_THAT(test::idsOf(tree), ElementsAre("a", "a.b", "a.c", "a.c.d", "e"));
    EXPECT_EQ(tree.endOf(0), 4U);
    EXPECT_TRUE(tree.isLeaf(1));
    EXPECT_FALSE(tree.isLeaf(2));
    EXPECT_THAT(tree.namesOf(3), ElementsAre("a", "c", "d"));
}

TEST(CTestTree, numbersSiblingsOfOneName)
{
    CTestTree const tree({leaf("x"), leaf("x"), leaf("y"), leaf("x#2"), leaf("x"), leaf("")});
    EXPECT_THAT(test::idsOf(tree), ElementsAre("x", "x#2", "y", "x%232", "x#3", "%"));
}

TEST(CTestTree, namesWhatCouldNotBeMade)
{
    CTestTree const tree(Items{zel::P<qix::ITestItem>()});
    EXPECT_THAT(test::idsOf(tree), ElementsAre("%28null%29"));
}

/// Holds no reference to itself, by which it would live for ever.
class CGroupInItself : public qix::CTestItemGroup
{
public:
    using CTestItemGroup::CTestItemGroup;

    void getSubItems(Items& out) override
    {
        out = {group("inner", {zel::P<qix::ITestItem>::share(this)})};
    }
};

TEST(CTestTree, refusesAnItemThatContainsItself)
{
    auto const outer = zel::newObj<CGroupInItself>("outer");
    EXPECT_EQ(test::errorOf([&outer] { CTestTree tree({outer}); }),
              "the test item \"outer\" contains itself");
}

TEST(CTestTree, takesTheSameItemInTwoPlaces)
{
    auto const shared = group("shared", {leaf("test")});
    CTestTree const tree({group("a", {shared}), group("b", {shared})});
    EXPECT_THAT(test::idsOf(tree),
                ElementsAre("a", "a.shared", "a.shared.test", "b", "b.shared", "b.shared.test"));
}

TEST(CTestTree, isBuiltWithoutRecursion)
{
    constexpr int depth = 20000;
    Items nested = {leaf("leaf")};
    for (int i = 0; i < depth; ++i)
    {
        nested.push_back(group("g", {nested.back()}));
    }
    {
        CTestTree const tree({nested.back()});
        EXPECT_EQ(tree.size(), depth + 1U);
        EXPECT_EQ(tree.idOf(depth).size(), 2U * depth + 4U);
    }
    // From the outermost on: one that released what it alone holds would do that recursively.
    while (!nested.empty())
    {
        nested.pop_back();
    }
}

TEST(CTestTree, idsAreUniqueAndMoveToFindsThem)
{
    std::mt19937 random(1);
    for (int i = 0; i < 300; ++i)
    {
        CTestTree const tree(test::randomItems(random, 3));
        std::vector<std::string> const ids = test::idsOf(tree);
        EXPECT_EQ(std::set<std::string>(ids.begin(), ids.end()).size(), ids.size());
        std::string id;
        for (qix::NodeIndex node = 0; node < tree.size(); ++node)
        {
            tree.moveTo(node, id);
            ASSERT_EQ(id, ids[node]);
            ASSERT_TRUE(tree.hasId(node, id));
        }
    }
}

} // namespace
