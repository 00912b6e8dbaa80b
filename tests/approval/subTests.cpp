// Tests that report sub-tests themselves, and tests that leave theirs open. The clock stands still.
#include "suite.h"

#include <CFakeClock.h>

#include <stdexcept>

using namespace suite;

namespace
{

test::CFakeClock clockOfTests;

bool begin(ITestRunner& runner, std::string const& name,
           ITestItem::Duration duration = ITestItem::Short)
{
    return runner.beginSubTest(name, duration, false, false);
}

void reportEveryOutcome(Self& self, ITestRunner& runner)
{
    begin(runner, "ok");
    runner.endSubTest_Success();
    begin(runner, "failed");
    runner.endSubTest_Failed(std::runtime_error("reported"));
    begin(runner, "aborted");
    runner.endSubTest_Aborted();
    begin(runner, "skipped");
    runner.endSubTest_Skipped();
    begin(runner, "silent", ITestItem::None);
    runner.endSubTest_Success();
    self.log(begin(runner, "long", ITestItem::Long) ? "long ones run" : "long ones are refused");
}

void reportNested(Self& self, ITestRunner& runner)
{
    begin(runner, "outer");
    begin(runner, "inner");
    begin(runner, "innermost");
    runner.endSubTest_Failed(std::runtime_error("deep down"));
    runner.endSubTest_Skipped();
    runner.endSubTest_Success();
    self.log("all is reported");
}

void leaveOpen(Self& self, ITestRunner& runner)
{
    begin(runner, "finished");
    runner.endSubTest_Success();
    begin(runner, "open");
    begin(runner, "innermost");
    self.log("leaving two open");
}

void leaveOpenAndFail(Self& self, ITestRunner& runner)
{
    leaveOpen(self, runner);
    throw std::runtime_error("left open");
}

void leaveOpenAndAbort(Self& self, ITestRunner& runner)
{
    leaveOpen(self, runner);
    throw qix::CTestAbortedException("left open");
}

void leaveOpenAndSkip(Self& self, ITestRunner& runner)
{
    leaveOpen(self, runner);
    throw qix::CTestSkippedException();
}

void runAnItem(Self&, ITestRunner& runner)
{
    begin(runner, "around");
    runner.runTestItem(leaf("an item").get());
    runner.endSubTest_Success();
}

/// The test and what comes behind it, which shows whether names and indents are right again.
Item andNext(Self::Work const& work)
{
    return group("g", {leaf("test", work),
                       group("next", {leaf("leaf", [](Self&, ITestRunner&)
                                           { throw std::runtime_error("on purpose"); })})});
}

} // namespace

int main(int argc, char** argv)
{
    return run(argc, argv,
               {leaf("every outcome", reportEveryOutcome), leaf("nested", reportNested),
                andNext(leaveOpenAndFail), andNext(leaveOpenAndAbort), andNext(leaveOpenAndSkip),
                andNext(leaveOpen), leaf("runs an item", runAnItem)});
}
