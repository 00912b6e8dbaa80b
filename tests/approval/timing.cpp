// Tests that take the shortest and the longest time of their class, and one second more or less.
#include "suite.h"

#include <CFakeClock.h>

#include <stdexcept>

using namespace suite;

namespace
{

test::CFakeClock clockOfTests;

std::string nameOf(std::string const& duration, std::time_t seconds)
{
    return duration + " " + std::to_string(seconds) + " s";
}

Items testsLasting(std::string const& name, ITestItem::Duration duration,
                   std::vector<std::time_t> const& times)
{
    Items items;
    for (std::time_t const seconds : times)
    {
        items.push_back(leaf(
            nameOf(name, seconds),
            [seconds](Self&, ITestRunner&) { clockOfTests.advance(seconds); }, duration));
    }
    return items;
}

void takeAMinuteAndFail(Self&, ITestRunner&)
{
    clockOfTests.advance(60);
    throw std::runtime_error("late");
}

void takeAMinuteAndSkip(Self&, ITestRunner&)
{
    clockOfTests.advance(60);
    throw qix::CTestSkippedException();
}

void takeAMinuteAndAbort(Self&, ITestRunner&)
{
    clockOfTests.advance(60);
    throw qix::CTestAbortedException("stopped");
}

void takeAMinute(Self&, ITestRunner&)
{
    clockOfTests.advance(60);
}

/// The slow part is warned about, and so is the test around it.
void reportASlowPart(Self&, ITestRunner& runner)
{
    if (runner.beginSubTest("part", ITestItem::Short, false, false))
    {
        clockOfTests.advance(21);
        runner.endSubTest_Success();
    }
}

} // namespace

int main(int argc, char** argv)
{
    std::time_t const farAway = 1'000'000;
    return run(
        argc, argv,
        {group("none", testsLasting("none", ITestItem::None, {-1, 0, farAway})),
         group("short", testsLasting("short", ITestItem::Short, {-1, 0, 20, 21})),
         group("long", testsLasting("long", ITestItem::Long, {4, 5, 180, 181})),
         group("very long", testsLasting("very long", ITestItem::VeryLong, {59, 60, 10800, 10801})),
         group("hours", testsLasting("hours", ITestItem::Hours, {3599, 3600, farAway})),
         group("below", testsLasting("below", static_cast<ITestItem::Duration>(-1), {-1, farAway})),
         group("unchecked", {leaf("fails", takeAMinuteAndFail), leaf("skips", takeAMinuteAndSkip),
                             leaf("aborts", takeAMinuteAndAbort),
                             interactive("waits for a human", takeAMinute)}),
         leaf("with a slow part", reportASlowPart)});
}
