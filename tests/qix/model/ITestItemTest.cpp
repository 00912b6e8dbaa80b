#include <qix/ITestItem.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <type_traits>

namespace
{

using qix::ITestItem;

static_assert(std::is_same_v<std::underlying_type_t<ITestItem::Duration>, std::int32_t>);

TEST(ITestItem, durationsHaveTheirValues)
{
    EXPECT_EQ(ITestItem::None, 0);
    EXPECT_EQ(ITestItem::Short, 1);
    EXPECT_EQ(ITestItem::Long, 2);
    EXPECT_EQ(ITestItem::VeryLong, 3);
    EXPECT_EQ(ITestItem::Hours, 4);
}

} // namespace
