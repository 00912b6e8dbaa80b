#include <qix/CTestItemGroup.h>
#include <qix/test.h>

#include "CNotingRunner.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <vector>

QIX_TEST(registered, first)
{
}

QIX_TEST(registered.inner, second)
{
}

QIX_TEST(registered, third)
{
}

namespace
{

TEST(RegisteredGroups, makeTheirChildrenWhenTheyAreRunUnasked)
{
    std::vector<zel::P<qix::ITestItem>> groups;
    qix::CTestItemGroup::global()->getSubItems(groups);
    ASSERT_EQ(groups.size(), 1U);

    test::CNotingRunner runner;
    groups[0]->run(&runner);
    EXPECT_THAT(runner.m_names, testing::ElementsAre("first", "inner", "third"));
}

} // namespace
