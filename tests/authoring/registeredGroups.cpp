#include <qix/CTestItemGroup.h>
#include <qix/ITestRunner.h>
#include <qix/test.h>
#include <zel/CBase.h>

#include <gmock/gmock.h>

#include <string>
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

/// Notes what it is asked to run.
class CNotingRunner : public zel::CBase, public virtual qix::ITestRunner
{
public:
    void runTestItem(qix::ITestItem* item) override { m_names.push_back(item->getName()); }

    bool beginSubTest(std::string const&, qix::ITestItem::Duration, bool, bool) override
    {
        return false;
    }

    void endSubTest_Failed(std::exception const&) override {}
    void endSubTest_Aborted() override {}
    void endSubTest_Skipped() override {}
    void endSubTest_Success() override {}

    std::vector<std::string> const& getNames() const noexcept { return m_names; }

private:
    std::vector<std::string> m_names;
};

TEST(RegisteredGroups, makeTheirChildrenWhenTheyAreRunUnasked)
{
    std::vector<zel::P<qix::ITestItem>> groups;
    qix::CTestItemGroup::global()->getSubItems(groups);
    ASSERT_EQ(groups.size(), 1U);

    CNotingRunner runner;
    groups[0]->run(&runner);
    EXPECT_THAT(runner.getNames(), testing::ElementsAre("first", "inner", "third"));
}

} // namespace
