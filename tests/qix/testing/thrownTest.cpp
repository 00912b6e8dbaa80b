// What is told of an exception that leaves a test, a section or a row.

#include "checks/bodyTest.h"
#include "runner/CNotingListener.h"
#include "runner/RunnerTest.h"

#include <qix/CTestFailedException.h>

#include <exception>
#include <stdexcept>
#include <string>

namespace
{

using qix::TestOutcome;

/// A test that knows where it is written, as those of macros do.
class CLocatedTest : public test::CBodyTest
{
public:
    using CBodyTest::CBodyTest;
    qix::SourceLocation getLocation() const noexcept override { return {"folder/file.cpp", 7}; }
};

class CUnusualError : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

void throwNested()
{
    try
    {
        throw std::out_of_range("no line 7");
    }
    catch (std::out_of_range const&)
    {
        std::throw_with_nested(CUnusualError("cannot read"));
    }
}

class Thrown : public test::RunnerTest
{
protected:
    /// The outcomes of a test and its sub-tests, in the order of their ends.
    std::vector<TestOutcome> outcomesOf(std::function<void()> body)
    {
        m_root->addSubItem(zel::newObj<CLocatedTest>(std::move(body)));
        runAll();
        return m_listener->m_outcomes;
    }

    test::CScopedListener m_listener;
};

TEST_F(Thrown, isToldWithItsTypeAndThePlaceOfTheTest)
{
    TestOutcome const outcome = outcomesOf([] { throw CUnusualError("two\nlines"); }).at(0);
    EXPECT_EQ(outcome.message, "two\nlines\n"
                               "    folder/file.cpp:7: the body threw (anonymous namespace)::"
                               "CUnusualError");
    ASSERT_EQ(outcome.failures.size(), 1u);
    EXPECT_EQ(outcome.failures[0].file, "folder/file.cpp");
    EXPECT_EQ(outcome.failures[0].line, 7);
    EXPECT_EQ(outcome.failures[0].values,
              "the body threw (anonymous namespace)::CUnusualError: two\nlines");
}

TEST_F(Thrown, isToldWithItsCauses)
{
    TestOutcome const outcome = outcomesOf(&throwNested).at(0);
    EXPECT_EQ(outcome.message, "cannot read\n"
                               "    folder/file.cpp:7: the body threw (anonymous namespace)::"
                               "CUnusualError\n"
                               "    caused by std::out_of_range: no line 7");
    EXPECT_THAT(outcome.failures.at(0).values,
                testing::EndsWith(": cannot read\ncaused by std::out_of_range: no line 7"));
}

TEST_F(Thrown, isToldWithTheLastCheckThatPassed)
{
    int const begin = __LINE__;
    TestOutcome const outcome = outcomesOf(
                                    []
                                    {
                                        QIX_CHECK(1 == 1);
                                        QIX_CHECK_NOTHROW(1);
                                        throw std::runtime_error("boom");
                                    })
                                    .at(0);
    std::string const last = "\nthe last check that passed is at " + std::string(__FILE__) + ":" +
                             std::to_string(begin + 5);
    EXPECT_THAT(outcome.failures.at(0).values, testing::EndsWith(last));
    EXPECT_THAT(outcome.message, testing::HasSubstr("\n    the last check that passed is at "));
}

TEST_F(Thrown, isToldOfTextsWithThePlaceToo)
{
    TestOutcome const outcome = outcomesOf([] { throw "why it is so"; }).at(0);
    EXPECT_EQ(outcome.message, "folder/file.cpp:7: the body threw char const*: why it is so");
    EXPECT_EQ(outcome.failures.at(0).line, 7);
}

TEST_F(Thrown, isToldOfStringsByTheNameOfTheirType)
{
    TestOutcome const outcome = outcomesOf([] { throw std::string("why"); }).at(0);
    EXPECT_EQ(outcome.message, "folder/file.cpp:7: the body threw std::string: why");
}

TEST_F(Thrown, isToldOfARowWithThePlaceOfTheRow)
{
    int const row = __LINE__ + 1;
    auto const body = [] { qix::subTest("row", [] { throw std::runtime_error("boom"); }); };
    TestOutcome const outcome = outcomesOf(body).at(0);
    EXPECT_EQ(outcome.message, "boom\n    " + std::string(__FILE__) + ":" + std::to_string(row) +
                                   ": it threw std::runtime_error");
    EXPECT_EQ(outcome.failures.at(0).line, row);
}

TEST_F(Thrown, isToldOfASectionWithoutTheChecksOfOtherSections)
{
    int section = 0;
    auto const outcomes = outcomesOf(
        [&section]
        {
            QIX_SECTION("passes")
            {
                QIX_CHECK(1 == 1);
            }
            section = __LINE__ + 1;
            QIX_SECTION("throws")
            {
                throw std::runtime_error("boom");
            }
        });
    ASSERT_EQ(outcomes.size(), 3u);
    EXPECT_EQ(outcomes[1].message, "boom\n    " + std::string(__FILE__) + ":" +
                                       std::to_string(section) + ": it threw std::runtime_error");
}

/// Keeps the type of the exception that is nested in a failure.
class CAskingRunner : public test::COpenRunner
{
public:
    using COpenRunner::COpenRunner;
    void endSubTest_Failed(std::exception const& e) override
    {
        try
        {
            std::rethrow_if_nested(e);
        }
        catch (CUnusualError const& thrown)
        {
            m_thrown = thrown.what();
        }
        COpenRunner::endSubTest_Failed(e);
    }

    std::string m_thrown = {};
};

TEST_F(Thrown, isNestedInTheFailure)
{
    m_root->addSubItem(zel::newObj<CLocatedTest>([] { throw CUnusualError("boom"); }));
    CAskingRunner runner(m_root.get());
    runner.toggleAll();
    runner.go();
    EXPECT_EQ(runner.m_thrown, "boom");
}

TEST_F(Thrown, isKeptByCopiesOfTheFailure)
{
    zel::P<CLocatedTest> const item =
        zel::newObj<CLocatedTest>([] { throw CUnusualError("boom"); });
    try
    {
        item->run(nullptr);
        FAIL() << "nothing was thrown";
    }
    catch (qix::CTestFailedException const& e)
    {
        zel::P<zel::CError> const copy = e.clone();
        EXPECT_STREQ(copy->what(), e.what());
        EXPECT_THROW(std::rethrow_if_nested(*copy), CUnusualError);
        EXPECT_THROW(copy->throwClone(), qix::CTestFailedException);
    }
}

} // namespace
