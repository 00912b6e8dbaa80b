#include <qix/CTestItemGroup.h>

#include "CFunctionTestItem.h"
#include "CNotingRunner.h"
#include "COutputCapture.h"
#include "errorOf.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace
{

using qix::CTestItemGroup;
using qix::ITestItem;
using test::CFunctionFactory;
using test::CFunctionTestItem;
using test::CNotingRunner;
using testing::ElementsAre;
using zel::P;

class COpenGroup : public CTestItemGroup
{
public:
    using CTestItemGroup::CTestItemGroup;
    using CTestItemGroup::m_factories;
    using CTestItemGroup::m_subItems;

    void setUp() override { ++m_hooks; }
    void tearDown() override { ++m_hooks; }
    void clean() override { ++m_hooks; }

    int m_hooks = 0;
};

P<CFunctionFactory> makeFactory(std::string const& name)
{
    return zel::newObj<CFunctionFactory>([name] { return zel::newObj<CFunctionTestItem>(name); });
}

std::vector<std::string> namesOf(std::vector<P<ITestItem>> const& items)
{
    std::vector<std::string> names;
    for (P<ITestItem> const& item : items)
    {
        names.push_back(item == nullptr ? "null" : item->getName());
    }
    return names;
}

std::vector<P<ITestItem>> subItemsOf(ITestItem& item)
{
    std::vector<P<ITestItem>> items(3);
    item.getSubItems(items);
    return items;
}

TEST(CTestItemGroup, isANamedItemWithoutExpectations)
{
    CTestItemGroup const group("name");
    EXPECT_EQ(group.getName(), "name");
    EXPECT_EQ(group.getDuration(), ITestItem::None);
    EXPECT_FALSE(group.isInteractive());
    EXPECT_FALSE(group.containsAnyInteractive());
    EXPECT_TRUE(group.getLog().empty());
    EXPECT_EQ(group.getRefCount(), 1);
}

TEST(CTestItemGroup, withoutChildrenReplacesTheResultByNothing)
{
    CTestItemGroup group("");
    EXPECT_TRUE(subItemsOf(group).empty());
}

TEST(CTestItemGroup, makesChildrenOnceInTheOrderOfRegistration)
{
    COpenGroup group("");
    P<CFunctionFactory> const first = makeFactory("first");
    P<CFunctionFactory> const second = makeFactory("second");
    group.addFactory(first);
    group.addFactory(second);
    EXPECT_EQ(first->m_calls, 0);

    auto const items = subItemsOf(group);

    EXPECT_THAT(namesOf(items), ElementsAre("first", "second"));
    EXPECT_TRUE(group.m_factories.empty());
    EXPECT_EQ(subItemsOf(group), items);
    EXPECT_EQ(first->m_calls, 1);
    EXPECT_EQ(second->m_calls, 1);
}

TEST(CTestItemGroup, dropsAFactoryThatHasDoneItsWork)
{
    CTestItemGroup group("");
    P<CFunctionFactory> const factory = makeFactory("item");
    group.addFactory(factory);
    EXPECT_EQ(factory->getRefCount(), 2);
    auto const items = subItemsOf(group);
    EXPECT_EQ(factory->getRefCount(), 1);
}

TEST(CTestItemGroup, dropsEachFactoryBeforeTheNextIsCalled)
{
    CTestItemGroup group("");
    P<CFunctionFactory> const first = makeFactory("first");
    int referencesToFirst = 0;
    group.addFactory(first);
    group.addFactory(zel::newObj<CFunctionFactory>(
        [&]
        {
            referencesToFirst = first->getRefCount();
            return zel::newObj<CFunctionTestItem>("second");
        }));
    subItemsOf(group);
    EXPECT_EQ(referencesToFirst, 1);
}

TEST(CTestItemGroup, finishedItemsStandBeforePendingOnes)
{
    COpenGroup group("");
    group.addFactory(makeFactory("pending"));
    group.addSubItem(zel::newObj<CFunctionTestItem>("finished"));
    EXPECT_EQ(group.m_factories.size(), 1u);
    EXPECT_THAT(namesOf(group.m_subItems), ElementsAre("finished"));
    EXPECT_THAT(namesOf(subItemsOf(group)), ElementsAre("finished", "pending"));
}

TEST(CTestItemGroup, laterFactoriesStandBehindExistingChildren)
{
    CTestItemGroup group("");
    group.addFactory(makeFactory("a"));
    EXPECT_THAT(namesOf(subItemsOf(group)), ElementsAre("a"));
    group.addFactory(makeFactory("b"));
    EXPECT_THAT(namesOf(subItemsOf(group)), ElementsAre("a", "b"));
}

TEST(CTestItemGroup, factoriesMayRegisterFactories)
{
    CTestItemGroup group("");
    group.addFactory(zel::newObj<CFunctionFactory>(
        [&group]
        {
            group.addFactory(makeFactory("c"));
            return zel::newObj<CFunctionTestItem>("a");
        }));
    group.addFactory(makeFactory("b"));
    EXPECT_THAT(namesOf(subItemsOf(group)), ElementsAre("a", "b", "c"));
}

/// Registers the next one of its kind when it is called, as long as \p count lasts.
P<CFunctionFactory> makeChain(COpenGroup& group, int count, std::set<std::size_t>& capacities)
{
    return zel::newObj<CFunctionFactory>(
        [&group, count, &capacities]
        {
            capacities.insert(group.m_subItems.capacity());
            if (count > 1)
            {
                group.addFactory(makeChain(group, count - 1, capacities));
            }
            return zel::newObj<CFunctionTestItem>("link");
        });
}

TEST(CTestItemGroup, chainOfFactoriesMovesItsItemsRarely)
{
    COpenGroup group("");
    std::set<std::size_t> capacities;
    group.addFactory(makeChain(group, 1000, capacities));
    EXPECT_EQ(subItemsOf(group).size(), 1000U);
    EXPECT_LE(capacities.size(), 11U);
}

TEST(CTestItemGroup, throwingFactoryStaysInFrontAndIsCalledAgain)
{
    COpenGroup group("");
    bool works = false;
    P<CFunctionFactory> const good = makeFactory("good");
    P<CFunctionFactory> const bad = zel::newObj<CFunctionFactory>(
        [&]
        {
            group.addFactory(makeFactory("registered meanwhile"));
            if (!works)
            {
                throw std::runtime_error("not now");
            }
            return zel::newObj<CFunctionTestItem>("bad");
        });
    group.addFactory(good);
    group.addFactory(bad);
    group.addFactory(makeFactory("last"));

    std::vector<P<ITestItem>> items;
    EXPECT_THROW(group.getSubItems(items), std::runtime_error);
    EXPECT_THAT(namesOf(group.m_subItems), ElementsAre("good"));
    ASSERT_EQ(group.m_factories.size(), 3u);
    EXPECT_EQ(group.m_factories.front(), bad);

    works = true;
    EXPECT_THAT(namesOf(subItemsOf(group)),
                ElementsAre("good", "bad", "last", "registered meanwhile", "registered meanwhile"));
    EXPECT_EQ(good->m_calls, 1);
    EXPECT_EQ(bad->m_calls, 2);
}

TEST(CTestItemGroup, nullFromAFactoryIsANullEntry)
{
    CTestItemGroup group("");
    group.addFactory(zel::newObj<CFunctionFactory>([] { return nullptr; }));
    group.addFactory(makeFactory("next"));
    EXPECT_THAT(namesOf(subItemsOf(group)), ElementsAre("null", "next"));
    EXPECT_FALSE(group.containsAnyInteractive());
}

TEST(CTestItemGroup, refusesNull)
{
    COpenGroup group("");
    EXPECT_THROW(group.addFactory(nullptr), zel::CInvalidArgError);
    EXPECT_THROW(group.addSubItem(nullptr), zel::CInvalidArgError);
    EXPECT_EQ(test::errorOf([&group] { group.addFactory(nullptr); }),
              "Invalid argument passed to 'CTestItemGroup::addFactory': the factory must not be "
              "null.");
    EXPECT_EQ(
        test::errorOf([&group] { group.addSubItem(nullptr); }),
        "Invalid argument passed to 'CTestItemGroup::addSubItem': the item must not be null.");
    EXPECT_TRUE(group.m_factories.empty());
    EXPECT_TRUE(group.m_subItems.empty());
}

TEST(CTestItemGroup, looksForInteractiveChildrenAmongThoseThatExist)
{
    CTestItemGroup group("");
    group.addFactory(zel::newObj<CFunctionFactory>(
        []
        {
            P<CFunctionTestItem> const item = zel::newObj<CFunctionTestItem>("interactive");
            item->m_interactive = true;
            return item;
        }));
    EXPECT_FALSE(group.containsAnyInteractive());
    subItemsOf(group);
    EXPECT_TRUE(group.containsAnyInteractive());
}

TEST(CTestItemGroup, containsWhatItsGroupsContain)
{
    CTestItemGroup outer("outer");
    P<CTestItemGroup> const inner = zel::newObj<CTestItemGroup>("inner");
    P<CFunctionTestItem> const item = zel::newObj<CFunctionTestItem>("item");
    inner->addSubItem(item);
    outer.addSubItem(inner);
    EXPECT_FALSE(outer.containsAnyInteractive());
    item->m_interactive = true;
    EXPECT_TRUE(outer.containsAnyInteractive());
    EXPECT_FALSE(outer.isInteractive());
}

TEST(CTestItemGroup, runHandsEachChildToTheRunner)
{
    COpenGroup group("");
    group.addFactory(makeFactory("a"));
    group.addFactory(zel::newObj<CFunctionFactory>([] { return nullptr; }));
    group.addFactory(makeFactory("b"));
    CNotingRunner runner;

    group.run(&runner);

    EXPECT_THAT(runner.m_names, ElementsAre("a", "null", "b"));
    EXPECT_EQ(group.m_hooks, 0);
}

TEST(CTestItemGroup, runSeesChildrenThatAreAddedMeanwhile)
{
    CTestItemGroup group("");
    group.addFactory(makeFactory("a"));
    CNotingRunner runner;
    runner.m_whenRun = [&]
    {
        if (runner.m_names.size() == 1)
        {
            group.addSubItem(zel::newObj<CFunctionTestItem>("b"));
        }
    };
    group.run(&runner);
    EXPECT_THAT(runner.m_names, ElementsAre("a", "b"));
}

TEST(CTestItemGroup, childThatIsTakenOutWhileItRunsLivesUntilItHasRun)
{
    COpenGroup group("");
    group.addSubItem(zel::newObj<CFunctionTestItem>("a"));
    CNotingRunner runner;
    int referencesDuringRun = 0;
    runner.m_whenRun = [&]
    {
        P<ITestItem> const item = group.m_subItems[0];
        group.m_subItems.clear();
        referencesDuringRun = dynamic_cast<CFunctionTestItem&>(*item).getRefCount();
    };
    group.run(&runner);
    // One is the test's own.
    EXPECT_EQ(referencesDuringRun, 2);
}

TEST(CTestItemGroup, ownsChildrenAndPendingFactories)
{
    P<CFunctionTestItem> const item = zel::newObj<CFunctionTestItem>("item");
    P<CFunctionFactory> const factory = makeFactory("pending");
    {
        P<COpenGroup> const group = zel::newObj<COpenGroup>("");
        group->addSubItem(item);
        group->addFactory(factory);
        EXPECT_EQ(item->getRefCount(), 2);
        EXPECT_EQ(factory->getRefCount(), 2);
    }
    EXPECT_EQ(item->getRefCount(), 1);
    EXPECT_EQ(factory->getRefCount(), 1);
    EXPECT_EQ(factory->m_calls, 0);
}

TEST(CTestItemGroup, logRecordsAndEchoesEachLine)
{
    test::COutputCapture const output;
    CTestItemGroup group("");
    group.log("one");
    group.log(L"f\u00fcr");
    EXPECT_EQ(output.getText(), "one\n\n"
                                "f\xc3\xbcr\n\n");
    EXPECT_THAT(group.getLog(), ElementsAre(zel::String("one"), zel::String(L"f\u00fcr")));
}

TEST(CTestItemGroup, hooksDoNothing)
{
    CTestItemGroup group("a");
    group.log("line");
    group.setUp();
    group.tearDown();
    group.clean();
    EXPECT_EQ(group.getLog().size(), 1U);
}

TEST(CTestItemGroup, rootGroupIsOneWithoutAName)
{
    EXPECT_EQ(CTestItemGroup::global()->getName(), "");
    EXPECT_EQ(CTestItemGroup::global(), CTestItemGroup::global());
}

TEST(CTestItemGroup, rootGroupIsOneForThreadsThatComeTogether)
{
    std::vector<P<CTestItemGroup>> seen(4);
    std::vector<std::thread> threads;
    for (P<CTestItemGroup>& mine : seen)
    {
        threads.emplace_back([&mine] { mine = CTestItemGroup::global(); });
    }
    for (std::thread& thread : threads)
    {
        thread.join();
    }
    for (P<CTestItemGroup> const& group : seen)
    {
        EXPECT_EQ(group, CTestItemGroup::global());
    }
}

} // namespace
