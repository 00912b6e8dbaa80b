#include <qix/CTestItem.h>
#include <qix/CTestSkippedException.h>
#include <zel/P.h>
#include <zel/String.h>

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

namespace
{

using Steps = std::vector<std::string>;

/// Its virtual table refers to what the library defines of the base class.
class CHookedTest : public qix::CTestItem
{
public:
    explicit CHookedTest(std::string const& throwingStep)
        : CTestItem("hooked", Long, true), m_throwingStep(throwingStep)
    {
    }

    Steps const& steps() const { return m_steps; }

protected:
    void clean() override { step("clean"); }
    void setUp() override { step("setUp"); }
    void body() override { step("body"); }
    void tearDown() override { step("tearDown"); }

private:
    void step(std::string const& name)
    {
        m_steps.push_back(name);
        if (name == m_throwingStep)
        {
            throw std::runtime_error(name);
        }
    }

    std::string m_throwingStep;
    Steps m_steps;
};

class CSkippedTest : public qix::CTestItem
{
public:
    explicit CSkippedTest(bool failsBehind) : CTestItem("skipped"), m_failsBehind(failsBehind) {}

protected:
    void body() override { throw qix::CTestSkippedException(); }

    void tearDown() override
    {
        if (m_failsBehind)
        {
            throw std::runtime_error("behind the skip");
        }
    }

private:
    bool m_failsBehind;
};

Steps stepsWhenThrowing(std::string const& throwingStep)
{
    zel::P<CHookedTest> const test = zel::newObj<CHookedTest>(throwingStep);
    EXPECT_THROW(test->run(nullptr), std::runtime_error);
    return test->steps();
}

TEST(CTestItem, isDerivedFromInAnotherModule)
{
    zel::P<qix::ITestItem> const test = zel::newObj<CHookedTest>("");

    test->log("line");

    EXPECT_EQ(test->getName(), "hooked");
    EXPECT_EQ(test->getDuration(), qix::ITestItem::Long);
    EXPECT_TRUE(test->isInteractive());
    EXPECT_TRUE(test->containsAnyInteractive());
    EXPECT_EQ(test->getLog(), std::vector<zel::String>{"line"});
}

TEST(CTestItem, callsTheHooksAroundTheBody)
{
    zel::P<CHookedTest> const test = zel::newObj<CHookedTest>("");

    test->run(nullptr);

    EXPECT_EQ(test->steps(), (Steps{"clean", "setUp", "body", "tearDown", "clean"}));
}

TEST(CTestItem, cleansUpAlsoBehindAStepThatThrows)
{
    EXPECT_EQ(stepsWhenThrowing("clean"), Steps{"clean"});
    EXPECT_EQ(stepsWhenThrowing("setUp"), (Steps{"clean", "setUp", "tearDown", "clean"}));
    EXPECT_EQ(stepsWhenThrowing("body"), (Steps{"clean", "setUp", "body", "tearDown", "clean"}));
    EXPECT_EQ(stepsWhenThrowing("tearDown"),
              (Steps{"clean", "setUp", "body", "tearDown", "clean"}));
}

TEST(CTestItem, failureOutweighsASkip)
{
    EXPECT_THROW(zel::newObj<CSkippedTest>(false)->run(nullptr), qix::CTestSkippedException);
    EXPECT_THROW(zel::newObj<CSkippedTest>(true)->run(nullptr), std::runtime_error);
}

} // namespace
