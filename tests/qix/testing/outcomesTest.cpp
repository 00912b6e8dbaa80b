// What listeners are told of tests that are written with the macros.

#include "checks/bodyTest.h"
#include "runner/CNotingListener.h"
#include "runner/RunnerTest.h"

#include <qix/CTestFailedException.h>

#include <stdexcept>

namespace
{

using qix::CheckFailure;
using qix::CTestItemGroup;
using qix::TestInfo;
using qix::TestOutcome;
using test::CBodyTest;
using test::CScopedListener;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::StrEq;

class Outcomes : public test::RunnerTest
{
protected:
    /// Runs one test, and tells how it and its sub-tests ended, in the order of their ends.
    std::vector<TestOutcome> outcomesOf(std::function<void()> body)
    {
        m_test = zel::newObj<CBodyTest>(std::move(body));
        m_root->addSubItem(m_test);
        runAll();
        return m_listener->m_outcomes;
    }

    std::vector<CheckFailure> failuresOf(std::function<void()> body)
    {
        TestOutcome const outcome = outcomesOf(std::move(body)).back();
        EXPECT_EQ(outcome.kind, TestOutcome::Failed);
        return outcome.failures;
    }

    CScopedListener m_listener;
    zel::P<CBodyTest> m_test;
};

MATCHER_P3(IsFailure, line, check, values, "")
{
    return arg.file == __FILE__ && arg.line == line && arg.check == check && arg.values == values;
}

TEST_F(Outcomes, haveTheFailedChecksApart)
{
    int const begin = __LINE__;
    auto const failures = failuresOf(
        []
        {
            QIX_CHECK(1 == 2);
            QIX_CHECK(1 == 1);
            QIX_CHECK_THROWS(1);
            QIX_REQUIRE_NOTHROW(throw std::runtime_error("two\nlines\n"));
            QIX_CHECK(3 == 4);
        });
    EXPECT_THAT(
        failures,
        ElementsAre(IsFailure(begin + 4, "QIX_CHECK(1 == 2)", "with 1 == 2"),
                    IsFailure(begin + 6, "QIX_CHECK_THROWS(1)", "nothing was thrown"),
                    IsFailure(begin + 7,
                              "QIX_REQUIRE_NOTHROW(throw std::runtime_error(\"two\\nlines\\n\"))",
                              "it threw std::runtime_error: two\nlines\n")));
}

TEST_F(Outcomes, haveTheMessagesOfFailures)
{
    int const begin = __LINE__;
    auto const failures = failuresOf(
        []
        {
            qix::noteFailure(__FILE__, 7, "two\nlines\n\n");
            qix::noteFailure(nullptr, 0, "nowhere");
            QIX_FAIL("stop");
        });
    ASSERT_EQ(failures.size(), 3u);
    EXPECT_THAT(failures[0], IsFailure(7, "", "two\nlines"));
    EXPECT_EQ(failures[1].file, "");
    EXPECT_EQ(failures[1].line, 0);
    EXPECT_EQ(failures[1].values, "nowhere");
    EXPECT_THAT(failures[2], IsFailure(begin + 6, "", "stop"));
}

TEST_F(Outcomes, haveTheOnlyExceptionOfATest)
{
    TestOutcome const outcome = outcomesOf([] { throw std::runtime_error("two\nlines"); }).at(0);
    EXPECT_EQ(outcome.message, "two\nlines");
    ASSERT_EQ(outcome.failures.size(), 1u);
    EXPECT_EQ(outcome.failures[0].file, "");
    EXPECT_EQ(outcome.failures[0].check, "");
    EXPECT_EQ(outcome.failures[0].values, "std::runtime_error: two\nlines");
}

TEST_F(Outcomes, tellWhichStepHasThrownWhenMoreFailed)
{
    auto const failures = failuresOf(
        []
        {
            QIX_CHECK(false);
            throw std::runtime_error("two\nlines");
        });
    ASSERT_EQ(failures.size(), 2u);
    EXPECT_EQ(failures[1].file, "");
    EXPECT_EQ(failures[1].values, "the body threw std::runtime_error: two\nlines");
}

TEST_F(Outcomes, listAHundredFailures)
{
    TestOutcome const outcome = outcomesOf(
                                    []
                                    {
                                        for (int i = 0; i < 102; ++i)
                                        {
                                            QIX_CHECK(false);
                                        }
                                    })
                                    .at(0);
    EXPECT_EQ(outcome.failures.size(), 100u);
    EXPECT_THAT(outcome.message, testing::EndsWith("\n  and 2 more"));
}

TEST_F(Outcomes, haveTheReasonOfASkip)
{
    TestOutcome const outcome = outcomesOf([] { QIX_SKIP("no printer: caf\xc3\xa9"); }).at(0);
    EXPECT_EQ(outcome.kind, TestOutcome::Skipped);
    EXPECT_EQ(outcome.message, "Test skipped");
    EXPECT_EQ(outcome.reason, zel::String(L"no printer: caf\u00e9"));
    EXPECT_THAT(m_test->getLog(), ElementsAre(zel::String(L"Skipped: no printer: caf\u00e9")));
}

TEST_F(Outcomes, takeReasonsOfAllKindsOfText)
{
    auto const outcomes = outcomesOf(
        []
        {
            qix::subTest("bytes", [] { QIX_SKIP(std::string("text")); });
            qix::subTest("text", [] { QIX_SKIP(zel::String(L"\u20ac")); });
        });
    EXPECT_EQ(outcomes.at(0).reason, "text");
    EXPECT_EQ(outcomes.at(1).reason, zel::String(L"\u20ac"));
}

TEST_F(Outcomes, needNoReasonForASkip)
{
    TestOutcome const outcome = outcomesOf([] { QIX_SKIP(); }).at(0);
    EXPECT_EQ(outcome.kind, TestOutcome::Skipped);
    EXPECT_TRUE(outcome.reason.empty());
    EXPECT_THAT(m_test->getLog(), IsEmpty());
}

TEST_F(Outcomes, haveTheReasonOfAnAbort)
{
    TestOutcome const outcome = outcomesOf([] { QIX_ABORT("no server"); }).at(0);
    EXPECT_EQ(outcome.kind, TestOutcome::Aborted);
    EXPECT_EQ(outcome.reason, "no server");
    EXPECT_THAT(m_test->getLog(), ElementsAre(zel::String("Aborted: no server")));
}

TEST_F(Outcomes, ofSubTestsHaveTheirFailuresAndReasons)
{
    int const begin = __LINE__;
    auto const outcomes = outcomesOf(
        []
        {
            qix::subTest("good", [] {});
            qix::subTest("bad", [] { QIX_CHECK(1 == 2); });
            qix::subTest("throws", [] { throw std::runtime_error("boom"); });
            qix::subTest("skipped", [] { QIX_SKIP("no printer"); });
            qix::subTest("aborted", [] { QIX_ABORT("no server"); });
        });
    ASSERT_EQ(outcomes.size(), 6u);
    EXPECT_EQ(outcomes[0].kind, TestOutcome::Ok);
    EXPECT_EQ(outcomes[1].kind, TestOutcome::Failed);
    EXPECT_THAT(outcomes[1].failures,
                ElementsAre(IsFailure(begin + 5, "QIX_CHECK(1 == 2)", "with 1 == 2")));
    EXPECT_EQ(outcomes[2].message, "boom\n    testing/outcomesTest.cpp:" +
                                       std::to_string(begin + 6) + ": it threw std::runtime_error");
    EXPECT_EQ(outcomes[2].failures.at(0).values, "it threw std::runtime_error: boom");
    EXPECT_EQ(outcomes[3].kind, TestOutcome::Skipped);
    EXPECT_EQ(outcomes[3].reason, "no printer");
    EXPECT_EQ(outcomes[4].kind, TestOutcome::Aborted);
    EXPECT_EQ(outcomes[4].reason, "no server");
    // What is around it has not failed: one failure is told once.
    EXPECT_EQ(outcomes[5].kind, TestOutcome::Ok);
    EXPECT_THAT(m_test->getLog(),
                ElementsAre(zel::String("Skipped: no printer"), zel::String("Aborted: no server")));
}

/// Runs a test of its own while it reports a skip.
class CNestingRunner : public test::COpenRunner
{
public:
    using COpenRunner::COpenRunner;
    void endSubTest_Skipped() override
    {
        CTestItemGroup root("");
        root.addSubItem(zel::newObj<test::CFunctionTestItem>("inner", &skipRow));
        COpenRunner inner(&root);
        inner.toggleAll();
        inner.go();
        COpenRunner::endSubTest_Skipped();
    }

private:
    static void skipRow(test::CFunctionTestItem& /*item*/, qix::ITestRunner& run)
    {
        run.beginSubTest("row", qix::ITestItem::Short, false, false);
        run.endSubTest_Skipped();
    }
};

TEST_F(Outcomes, doNotReachRunsThatADerivedRunnerStartsMeanwhile)
{
    m_root->addSubItem(zel::newObj<CBodyTest>([] { QIX_SKIP("no printer"); }));
    CNestingRunner nesting(m_root.get());
    nesting.toggleAll();

    nesting.go();

    auto const& outcomes = m_listener->m_outcomes;
    ASSERT_EQ(outcomes.size(), 3u);
    EXPECT_EQ(outcomes[0].kind, TestOutcome::Skipped);
    EXPECT_TRUE(outcomes[0].reason.empty());
    EXPECT_EQ(outcomes[2].reason, "no printer");
}

TEST_F(Outcomes, tellWhereASubTestIsWritten)
{
    int line = 0;
    outcomesOf(
        [&line]
        {
            line = __LINE__ + 1;
            qix::subTest("row", [] {});
        });
    ASSERT_EQ(m_listener->m_tests.size(), 2u);
    TestInfo const& row = m_listener->m_tests[1];
    EXPECT_EQ(row.kind, TestInfo::SubTest);
    ASSERT_TRUE(row.location);
    EXPECT_STREQ(row.location->file, __FILE__);
    EXPECT_EQ(row.location->line, line);
}

TEST(FailuresOutsideOfTests, areKeptWithTheException)
{
    try
    {
        QIX_CHECK(1 == 2);
        FAIL() << "nothing was thrown";
    }
    catch (qix::CTestFailedException const& e)
    {
        ASSERT_EQ(e.getFailures().size(), 1u);
        EXPECT_THAT(e.getFailures()[0], IsFailure(__LINE__ - 6, "QIX_CHECK(1 == 2)",
                                                  "with 1 == 2\noutside of any running test"));
    }
}

} // namespace
