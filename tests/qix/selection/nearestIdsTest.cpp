#include "Tree.h"

#include "selection/nearestIds.h"

#include <gmock/gmock.h>

namespace
{

using qix::CTestTree;
using qix::nearestIds;
using test::group;
using test::leaf;
using testing::ElementsAre;
using testing::IsEmpty;

TEST(NearestIds, threeAreListedTheNearestFirst)
{
    CTestTree const tree({leaf("totals"), leaf("totally"), leaf("toted"), leaf("total")});
    EXPECT_THAT(nearestIds(tree, "total_"), ElementsAre("totals", "total", "totally"));
}

TEST(NearestIds, ofTwoThatAreEquallyNearTheFirstInTheTreeComesFirst)
{
    CTestTree const tree({leaf("case1"), leaf("case2"), leaf("case3"), leaf("case4")});
    EXPECT_THAT(nearestIds(tree, "case0"), ElementsAre("case1", "case2", "case3"));
}

TEST(NearestIds, aTestOfTheSameNameCountsWhereverItIs)
{
    CTestTree const tree({group("ledger", {group("export", {leaf("isWritten")})})});
    EXPECT_THAT(nearestIds(tree, "isWritten"), ElementsAre("ledger.export.isWritten"));
    EXPECT_THAT(nearestIds(tree, "isRead"), IsEmpty());
}

} // namespace
