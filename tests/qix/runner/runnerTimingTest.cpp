#include "CFakeClock.h"
#include "runner/RunnerTest.h"

#include <qix/CTestSkippedException.h>

#include <stdexcept>
#include <string>

namespace
{

using qix::ITestItem;
using test::Duration;

constexpr Duration beyondTheEnumeration = static_cast<Duration>(5);

class RunnerTiming : public test::RunnerTest
{
protected:
    RunnerTiming() { runner().m_maxDuration = beyondTheEnumeration; }

    void begin(Duration duration, bool interactive = false)
    {
        runner().beginSubTest("group", ITestItem::None, false, false);
        runner().beginSubTest("test", duration, interactive, interactive);
    }

    /// What is printed for a test that succeeds after some seconds, without the progress.
    std::string succeedAfter(std::time_t seconds, Duration duration, bool interactive = false)
    {
        test::COutputCapture const mine;
        runner().enableInteractiveTests();
        begin(duration, interactive);
        m_clock.advance(seconds);
        runner().endSubTest_Success();
        std::string const text = mine.getFlushedText();
        runner().endSubTest_Success();
        EXPECT_THAT(runner().m_running, testing::IsEmpty());
        return text.substr(text.find_first_not_of('.') == std::string::npos
                               ? text.size()
                               : text.find_first_not_of('.'));
    }

    test::CFakeClock m_clock;
};

std::string tooQuick(int seconds)
{
    return "\n\nTOO QUICK: test group.test was quicker than expected (only " +
           std::to_string(seconds) + " seconds).\n";
}

std::string tooSlow(int seconds)
{
    return "\n\nTOO SLOW: test group.test was slower than expected (" + std::to_string(seconds) +
           " seconds).\n";
}

TEST_F(RunnerTiming, recordsTheStart)
{
    m_clock.advance(5);
    begin(ITestItem::Short);
    EXPECT_EQ(runner().m_running.back().startTime, m_clock.getNow());
}

TEST_F(RunnerTiming, shortTestsTakeUpTo20Seconds)
{
    EXPECT_EQ(succeedAfter(-1, ITestItem::Short), tooQuick(-1));
    EXPECT_EQ(succeedAfter(0, ITestItem::Short), "");
    EXPECT_EQ(succeedAfter(20, ITestItem::Short), "");
    EXPECT_EQ(succeedAfter(21, ITestItem::Short), tooSlow(21));
}

TEST_F(RunnerTiming, longTestsTake5To180Seconds)
{
    EXPECT_EQ(succeedAfter(4, ITestItem::Long), tooQuick(4));
    EXPECT_EQ(succeedAfter(5, ITestItem::Long), "");
    EXPECT_EQ(succeedAfter(180, ITestItem::Long), "");
    EXPECT_EQ(succeedAfter(181, ITestItem::Long), tooSlow(181));
}

TEST_F(RunnerTiming, veryLongTestsTake60To10800Seconds)
{
    EXPECT_EQ(succeedAfter(59, ITestItem::VeryLong), tooQuick(59));
    EXPECT_EQ(succeedAfter(60, ITestItem::VeryLong), "");
    EXPECT_EQ(succeedAfter(10800, ITestItem::VeryLong), "");
    EXPECT_EQ(succeedAfter(10801, ITestItem::VeryLong), tooSlow(10801));
}

TEST_F(RunnerTiming, testsOfHoursHaveNoUpperLimit)
{
    EXPECT_EQ(succeedAfter(3599, ITestItem::Hours), tooQuick(3599));
    EXPECT_EQ(succeedAfter(3600, ITestItem::Hours), "");
    EXPECT_EQ(succeedAfter(1000000, ITestItem::Hours), "");
}

TEST_F(RunnerTiming, otherDurationsAreNotChecked)
{
    for (Duration const duration :
         {ITestItem::None, beyondTheEnumeration, static_cast<Duration>(-1)})
    {
        EXPECT_EQ(succeedAfter(-1, duration), "");
        EXPECT_EQ(succeedAfter(1000000, duration), "");
    }
}

TEST_F(RunnerTiming, interactiveTestsAreNotChecked)
{
    EXPECT_EQ(succeedAfter(21, ITestItem::Short, true), "");
}

TEST_F(RunnerTiming, onlySuccessesAreChecked)
{
    begin(ITestItem::Short);
    m_clock.advance(21);
    runner().endSubTest_Skipped();
    begin(ITestItem::Short);
    m_clock.advance(21);
    runner().endSubTest_Aborted();
    begin(ITestItem::Short);
    m_clock.advance(21);
    runner().endSubTest_Failed(std::runtime_error("boom"));
    EXPECT_THAT(output(), testing::Not(testing::HasSubstr("TOO")));
}

TEST_F(RunnerTiming, warningsChangeNoOutcome)
{
    add("slow", [this](test::CFunctionTestItem&, qix::ITestRunner&) { m_clock.advance(21); });
    test::COpenRunner fresh(m_root.get());
    fresh.toggleAll();
    EXPECT_TRUE(fresh.go());
    EXPECT_THAT(fresh.getCounts(), testing::ElementsAre(1, 0, 0, 0));
    EXPECT_THAT(output(), testing::HasSubstr(
                              ".\n\nTOO SLOW: test slow was slower than expected (21 seconds).\n"));
}

} // namespace
