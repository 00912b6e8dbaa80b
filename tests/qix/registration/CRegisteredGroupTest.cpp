#include <qix/CTestItemGroup.h>
#include <qix/ILocatedItem.h>
#include <qix/test.h>

#include "CFunctionTestItem.h"
#include "CNotingRunner.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <cstddef>
#include <stdexcept>
#include <string>
#include <thread>
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

using Items = std::vector<zel::P<qix::ITestItem>>;

Items childrenOf(qix::ITestItem& group)
{
    Items children;
    group.getSubItems(children);
    return children;
}

std::vector<std::string> namesOfChildren(qix::ITestItem& group)
{
    std::vector<std::string> names;
    for (zel::P<qix::ITestItem> const& child : childrenOf(group))
    {
        names.push_back(child->getName());
    }
    return names;
}

/// A child of the root. Throws when there is none of that name.
zel::P<qix::ITestItem> groupNamed(std::string const& name)
{
    for (zel::P<qix::ITestItem> const& group : childrenOf(*qix::CTestItemGroup::global()))
    {
        if (group->getName() == name)
        {
            return group;
        }
    }
    throw std::invalid_argument(name);
}

class CCannotBeMade : public qix::CTestItem
{
public:
    CCannotBeMade() { throw std::runtime_error("cannot be made"); }
};

class CFixture : public qix::CTestItem
{
};

/// The line on which an item is written in this file.
int lineOf(qix::ITestItem const& item)
{
    auto const* const located = dynamic_cast<qix::ILocatedItem const*>(&item);
    if (located == nullptr)
    {
        return -1;
    }
    EXPECT_STREQ(located->getLocation().file, __FILE__);
    return located->getLocation().line;
}

void registerLate(char const* group, char const* name, qix::detail::Attributes attributes = {})
{
    qix::detail::CRegistration(
        __FILE__, __LINE__, group, name, +[] {}, attributes);
}

} // namespace

constexpr int lineOfFirst = __LINE__ + 1;
QIX_TEST(located.inner, function)
{
}

constexpr int lineOfSecond = __LINE__ + 1;
QIX_TEST_F(CFixture, located.inner, fixture)
{
}

constexpr int lineOfThird = __LINE__ + 1;
QIX_TEST_F(CCannotBeMade, located.inner, broken)
{
}

QIX_TEST(mixed, first)
{
}

QIX_TEST(late, first)
{
}

QIX_TEST(ofOneThread, first)
{
}

QIX_TEST(ofAnotherThread, first)
{
}

namespace
{

TEST(RegisteredGroups, makeTheirChildrenWhenTheyAreRunUnasked)
{
    test::CNotingRunner runner;
    groupNamed("registered")->run(&runner);
    EXPECT_THAT(runner.m_names, testing::ElementsAre("first", "inner", "third"));
}

TEST(RegisteredGroups, takeWhatIsRegisteredAfterTheyWereAsked)
{
    zel::P<qix::ITestItem> const group = groupNamed("late");
    EXPECT_THAT(namesOfChildren(*group), testing::ElementsAre("first"));
    EXPECT_FALSE(group->containsAnyInteractive());

    registerLate("late.inner", "deep", qix::attributes::Interactive);
    registerLate("late", "second");
    registerLate("later", "first");
    EXPECT_TRUE(group->containsAnyInteractive());
    EXPECT_THAT(namesOfChildren(*group), testing::ElementsAre("first", "inner", "second"));
    EXPECT_THAT(namesOfChildren(*groupNamed("later")), testing::ElementsAre("first"));
}

TEST(RegisteredGroups, knowOfInteractiveItemsThatAreAddedByHand)
{
    zel::P<qix::ITestItem> const group = groupNamed("mixed");
    EXPECT_FALSE(group->containsAnyInteractive());
    auto const item = zel::newObj<test::CFunctionTestItem>("asks");
    item->m_interactive = true;
    dynamic_cast<qix::CTestItemGroup&>(*group).addSubItem(item);
    EXPECT_TRUE(group->containsAnyInteractive());
}

TEST(RegisteredGroups, makeTheirTestsOnDifferentThreadsAtTheSameTime)
{
    constexpr std::size_t count = 200;
    static std::vector<std::string> const names = []
    {
        std::vector<std::string> made;
        for (std::size_t i = 0; i < count; ++i)
        {
            made.push_back("test" + std::to_string(i));
        }
        return made;
    }();
    zel::P<qix::ITestItem> groups[2];
    for (std::size_t i = 0; i < 2; ++i)
    {
        static char const* const paths[] = {"oneHalf", "otherHalf"};
        for (std::string const& name : names)
        {
            registerLate(paths[i], name.c_str());
        }
        groups[i] = groupNamed(paths[i]);
    }
    std::atomic<int> waiting{2};
    std::vector<std::string> found[2];
    auto const ask = [&](std::size_t i)
    {
        --waiting;
        while (waiting > 0)
        {
            std::this_thread::yield();
        }
        found[i] = namesOfChildren(*groups[i]);
    };
    std::thread thread(ask, 0);
    ask(1);
    thread.join();
    EXPECT_EQ(found[0], names);
    EXPECT_EQ(found[1], names);
}

TEST(RegisteredGroups, mayBelongToDifferentThreads)
{
    zel::P<qix::ITestItem> const groups[] = {groupNamed("ofOneThread"),
                                             groupNamed("ofAnotherThread")};
    registerLate("ofOneThread", "second");
    registerLate("ofAnotherThread", "second");
    std::vector<std::string> names;
    std::thread thread([&] { names = namesOfChildren(*groups[0]); });
    EXPECT_THAT(namesOfChildren(*groups[1]), testing::ElementsAre("first", "second"));
    thread.join();
    EXPECT_THAT(names, testing::ElementsAre("first", "second"));
}

TEST(RegisteredGroups, andTheirTestsKnowWhereTheyAreWritten)
{
    zel::P<qix::ITestItem> const outer = groupNamed("located");
    zel::P<qix::ITestItem> const inner = childrenOf(*outer).at(0);
    Items const tests = childrenOf(*inner);

    EXPECT_EQ(lineOf(*outer), lineOfFirst);
    EXPECT_EQ(lineOf(*inner), lineOfFirst);
    ASSERT_EQ(tests.size(), 3U);
    EXPECT_EQ(lineOf(*tests[0]), lineOfFirst);
    EXPECT_EQ(lineOf(*tests[1]), lineOfSecond);
    EXPECT_EQ(lineOf(*tests[2]), lineOfThird);
}

} // namespace
