#include "runner/RunnerTest.h"

#include "CChildProcess.h"

#include <qix/CTestAbortedException.h>
#include <qix/CTestSkippedException.h>

#include <csignal>
#include <stdexcept>
#include <type_traits>

#include <sys/ptrace.h>
#include <sys/wait.h>

namespace
{

using qix::CConsoleTestRunner;
using qix::CTestAbortedException;
using qix::CTestItemGroup;
using qix::CTestSkippedException;
using qix::ITestItem;
using qix::ITestRunner;
using test::CFunctionTestItem;
using test::COpenRunner;
using test::Duration;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

static_assert(!std::is_copy_constructible_v<CConsoleTestRunner>);
static_assert(!std::is_copy_assignable_v<CConsoleTestRunner>);

class RunnerRun : public test::RunnerTest
{
};

template <typename Exception>
CFunctionTestItem::Work throwing(Exception const& exception)
{
    return [exception](CFunctionTestItem&, ITestRunner&) { throw exception; };
}

std::runtime_error const boom("boom");

TEST_F(RunnerRun, startsWithNothingSelectedAndShortTestsOnly)
{
    add("a");
    addNull();
    COpenRunner& fresh = runner();
    EXPECT_EQ(fresh.m_items.size(), 2u);
    EXPECT_THAT(fresh.m_selected, ElementsAre(false, false));
    EXPECT_EQ(fresh.m_maxDuration, 1);
    EXPECT_FALSE(fresh.m_runInteractive);
    EXPECT_FALSE(fresh.m_onlyInteractive);
    EXPECT_THAT(fresh.getCounts(), ElementsAre(0, 0, 0, 0));
    EXPECT_EQ(fresh.m_beginCount, 0u);
    EXPECT_EQ(fresh.m_log, nullptr);
    EXPECT_EQ(fresh.m_indent, "");
    EXPECT_THAT(fresh.m_running, IsEmpty());
    EXPECT_THAT(fresh.m_failures, IsEmpty());
}

TEST_F(RunnerRun, holdsTheItemsForItsLifeButNotTheRoot)
{
    CFunctionTestItem const& item = add("a");
    {
        COpenRunner const local(m_root.get());
        EXPECT_EQ(m_root->getRefCount(), 1);
        EXPECT_EQ(item.getRefCount(), 2);
    }
    EXPECT_EQ(item.getRefCount(), 1);
}

TEST_F(RunnerRun, passesOnWhatTheRootThrows)
{
    m_root->addFactory(zel::newObj<test::CFunctionFactory>(
        []() -> zel::P<ITestItem> { throw std::runtime_error("no item"); }));
    EXPECT_THROW(COpenRunner{m_root.get()}, std::runtime_error);
}

TEST_F(RunnerRun, runsTheSelectedItemsInOrder)
{
    std::string order;
    auto const note = [&order](CFunctionTestItem& item, ITestRunner&) { order += item.getName(); };
    add("a", note);
    add("b", note);
    add("c", note);
    runner().m_selected = {true, false, true};
    EXPECT_TRUE(runner().go());
    EXPECT_EQ(order, "ac");
    EXPECT_EQ(output(), "..\n2 OK, 0 Failed, 0 Aborted, 0 Skipped\n\n");
}

TEST_F(RunnerRun, tellsTheOutcomeByHowTheRunEnds)
{
    add("success");
    add("aborted", throwing(CTestAbortedException("stop")));
    add("skipped", throwing(CTestSkippedException()));
    add("failed", throwing(boom));
    add("failed with an error of the base library", throwing(zel::CError("broken")));
    EXPECT_FALSE(runAll());
    EXPECT_THAT(runner().getCounts(), ElementsAre(1, 2, 1, 1));
}

class CAbortedSubclass : public CTestAbortedException
{
public:
    using CTestAbortedException::CTestAbortedException;
};

class CSkippedSubclass : public CTestSkippedException
{
};

TEST_F(RunnerRun, subclassesOfOutcomesCountAsThem)
{
    add("aborted", throwing(CAbortedSubclass("stop")));
    add("skipped", throwing(CSkippedSubclass()));
    EXPECT_TRUE(runAll());
    EXPECT_THAT(runner().getCounts(), ElementsAre(0, 0, 1, 1));
}

TEST_F(RunnerRun, abortsAndSkipsAreNoFailures)
{
    add("aborted", throwing(CTestAbortedException("stop")));
    add("skipped", throwing(CTestSkippedException()));
    EXPECT_TRUE(runAll());
    EXPECT_EQ(output(), "o\n0 OK, 0 Failed, 1 Aborted, 1 Skipped\n\n");
}

TEST_F(RunnerRun, anythingElseThatIsThrownLeavesTheRun)
{
    add("number", throwing(7));
    EXPECT_THROW(runAll(), int);
    ASSERT_EQ(runner().m_running.size(), 1u);
    EXPECT_EQ(runner().m_running[0].name, "number");
    EXPECT_THAT(runner().getCounts(), ElementsAre(0, 0, 0, 0));
    EXPECT_EQ(log(), "number\n");
}

TEST_F(RunnerRun, failingChildDoesNotFailItsGroup)
{
    CTestItemGroup& group = addGroup("group");
    addTo(group, "bad", throwing(boom));
    addTo(group, "good");
    EXPECT_FALSE(runAll());
    EXPECT_THAT(runner().getCounts(), ElementsAre(2, 1, 0, 0));
    ASSERT_EQ(runner().m_failures.size(), 1u);
    EXPECT_EQ(runner().m_failures.front().name, "group.bad");
    EXPECT_EQ(runner().m_failures.front().message, "boom");
    EXPECT_THAT(output(), HasSubstr("\n> group \n\nTEST FAILED: group.bad\nboom\n."));
}

TEST_F(RunnerRun, groupWithoutChildrenIsALeaf)
{
    addGroup("empty");
    EXPECT_TRUE(runAll());
    EXPECT_THAT(runner().getCounts(), ElementsAre(1, 0, 0, 0));
    EXPECT_EQ(output(), "\n1 OK, 0 Failed, 0 Aborted, 0 Skipped\n\n");
    EXPECT_THAT(log(), testing::StartsWith("empty\n\n\n1 OK"));
}

TEST_F(RunnerRun, headerIsAFormat)
{
    addTo(addGroup("100%% sure"), "a");
    runAll();
    EXPECT_THAT(output(), testing::StartsWith("\n> 100% sure ."));
    EXPECT_THAT(log(), testing::StartsWith("100%% sure\n"));
}

TEST_F(RunnerRun, refusedChildrenAreSkippedAndTheirGroupSucceeds)
{
    CTestItemGroup& group = addGroup("group");
    CFunctionTestItem const& longTest = addTo(group, "long", {}, ITestItem::Long);
    addTo(group, "hours", {}, ITestItem::Hours);
    EXPECT_TRUE(runAll());
    EXPECT_EQ(longTest.m_runs, 0);
    EXPECT_THAT(runner().getCounts(), ElementsAre(1, 0, 0, 2));
    EXPECT_EQ(output(), "\n> group oo\n1 OK, 0 Failed, 0 Aborted, 2 Skipped\n\n");
    // Nothing was begun inside the group, so that it has no result line.
    EXPECT_THAT(log(), testing::StartsWith("group\n  long\n  hours\n\n\n1 OK"));
}

TEST_F(RunnerRun, groupWithoutInteractiveTestsIsRefusedAsAWhole)
{
    CFunctionTestItem const& item = addTo(addGroup("group"), "a");
    runner().disableNonInteractiveTests();
    EXPECT_TRUE(runAll());
    EXPECT_EQ(item.m_runs, 0);
    EXPECT_EQ(output(), "\n> group o\n0 OK, 0 Failed, 0 Aborted, 1 Skipped\n\n");
}

TEST_F(RunnerRun, pendingInteractiveTestsCount)
{
    CTestItemGroup& group = addGroup("group");
    group.addFactory(zel::newObj<test::CFunctionFactory>(
        []
        {
            auto const item = zel::newObj<CFunctionTestItem>("interactive");
            item->m_interactive = true;
            return item;
        }));
    runner().enableInteractiveTests();
    runner().disableNonInteractiveTests();
    EXPECT_TRUE(runAll());
    EXPECT_THAT(runner().getCounts(), ElementsAre(2, 0, 0, 0));
}

TEST_F(RunnerRun, throwingFactoryFailsTheGroupAroundAndTheRunGoesOn)
{
    CTestItemGroup& outer = addGroup("outer");
    auto const inner = zel::newObj<CTestItemGroup>("inner");
    outer.addSubItem(inner);
    inner->addFactory(zel::newObj<test::CFunctionFactory>(
        []() -> zel::P<ITestItem> { throw std::runtime_error("no item"); }));
    add("next");
    EXPECT_FALSE(runAll());
    EXPECT_THAT(runner().getCounts(), ElementsAre(1, 1, 0, 0));
    EXPECT_EQ(runner().m_failures.front().name, "outer");
    EXPECT_EQ(runner().m_failures.front().message, "no item");
    EXPECT_THAT(runner().m_running, IsEmpty());
}

TEST_F(RunnerRun, throwingFactoryAtTheTopLeavesTheRun)
{
    add("before");
    CTestItemGroup& group = addGroup("group");
    group.addFactory(zel::newObj<test::CFunctionFactory>([]() -> zel::P<ITestItem>
                                                         { throw std::runtime_error("no item"); }));
    EXPECT_THROW(runAll(), std::runtime_error);
    EXPECT_EQ(output(), ".");
    EXPECT_EQ(log(), "before\ngroup\n");
}

TEST_F(RunnerRun, nullItemFailsAndTheNextOnesRun)
{
    CTestItemGroup& group = addGroup("group");
    group.addFactory(zel::newObj<test::CFunctionFactory>([] { return zel::P<ITestItem>(); }));
    group.addFactory(
        zel::newObj<test::CFunctionFactory>([] { return zel::newObj<CFunctionTestItem>("next"); }));
    addNull();
    EXPECT_FALSE(runAll());
    EXPECT_THAT(runner().getCounts(), ElementsAre(2, 2, 0, 0));
    EXPECT_EQ(runner().m_failures.front().name, "group.(null)");
    EXPECT_THAT(runner().m_failures.front().message, HasSubstr("null"));
    EXPECT_EQ(runner().m_failures.back().name, "(null)");
    EXPECT_THAT(log(), HasSubstr("group\n  (null)\n  next\n  -> ok(null)\n"));
}

TEST_F(RunnerRun, nullItemFailsAlsoWhenOnlyInteractiveTestsRun)
{
    addNull();
    runner().disableNonInteractiveTests();
    EXPECT_FALSE(runAll());
    EXPECT_THAT(runner().getCounts(), ElementsAre(0, 1, 0, 0));
}

TEST_F(RunnerRun, testReportsSubTests)
{
    add("item",
        [](CFunctionTestItem&, ITestRunner& run)
        {
            ASSERT_TRUE(run.beginSubTest("good", ITestItem::Short, false, false));
            run.endSubTest_Success();
            ASSERT_TRUE(run.beginSubTest("bad", ITestItem::Short, false, false));
            run.endSubTest_Failed(boom);
            ASSERT_FALSE(run.beginSubTest("long", ITestItem::Long, false, false));
        });
    EXPECT_FALSE(runAll());
    EXPECT_THAT(runner().getCounts(), ElementsAre(2, 1, 0, 1));
    EXPECT_EQ(runner().m_failures.front().name, "item.bad");
    EXPECT_THAT(log(), testing::StartsWith("item\n  -> ok\n\n2 OK"));
}

/// Leaves two sub-tests open and ends as \p end tells.
template <typename End>
CFunctionTestItem::Work leavingOpen(End const& end)
{
    return [end](CFunctionTestItem&, ITestRunner& run)
    {
        run.beginSubTest("one", ITestItem::Short, false, false);
        run.beginSubTest("two", ITestItem::Short, false, false);
        end();
    };
}

class LeftOpen : public RunnerRun
{
protected:
    void expectCleanEnd()
    {
        EXPECT_THAT(runner().m_running, IsEmpty());
        EXPECT_EQ(runner().m_indent, "");
        EXPECT_THAT(log(), HasSubstr("next\n"));
        EXPECT_THAT(log(), Not(HasSubstr("  next\n")));
    }
};

TEST_F(LeftOpen, subTestsFailWithTheirItem)
{
    add("item", leavingOpen([] { throw boom; }));
    add("next");
    EXPECT_FALSE(runAll());
    EXPECT_THAT(runner().getCounts(), ElementsAre(1, 3, 0, 0));
    std::vector<std::string> names;
    for (COpenRunner::FailInfo const& failure : runner().m_failures)
    {
        EXPECT_EQ(failure.message, "boom");
        names.push_back(failure.name);
    }
    EXPECT_THAT(names, ElementsAre("item.one.two", "item.one", "item"));
    expectCleanEnd();
}

TEST_F(LeftOpen, subTestsAreAbortedWithTheirItem)
{
    add("item", leavingOpen([] { throw CTestAbortedException("stop"); }));
    add("next");
    EXPECT_TRUE(runAll());
    EXPECT_THAT(runner().getCounts(), ElementsAre(1, 0, 3, 0));
    expectCleanEnd();
}

TEST_F(LeftOpen, subTestsAreSkippedWithTheirItem)
{
    add("item", leavingOpen([] { throw CTestSkippedException(); }));
    add("next");
    EXPECT_TRUE(runAll());
    EXPECT_THAT(runner().getCounts(), ElementsAre(1, 0, 0, 3));
    expectCleanEnd();
}

TEST_F(LeftOpen, subTestsSucceedWithTheirItem)
{
    add("item", leavingOpen([] {}));
    add("next");
    EXPECT_TRUE(runAll());
    EXPECT_THAT(runner().getCounts(), ElementsAre(4, 0, 0, 0));
    expectCleanEnd();
}

TEST_F(RunnerRun, secondRunStartsAnew)
{
    bool fails = true;
    add("item",
        [&fails](CFunctionTestItem&, ITestRunner&)
        {
            if (fails)
            {
                throw boom;
            }
        });
    EXPECT_FALSE(runAll());
    fails = false;
    EXPECT_TRUE(runAll());
    EXPECT_THAT(runner().getCounts(), ElementsAre(1, 0, 0, 0));
    EXPECT_THAT(runner().m_failures, IsEmpty());
    EXPECT_EQ(log(), "item\n\n\n1 OK, 0 Failed, 0 Aborted, 0 Skipped\n\n");
}

TEST_F(RunnerRun, resetCountersLeavesTheRunningSubTests)
{
    runner().beginSubTest("a", ITestItem::Short, false, false);
    runner().m_nOk = runner().m_nAborted = runner().m_nFailed = runner().m_nSkipped = 3;
    runner().m_failures.push_back({"a", "boom"});
    runner().resetCounters();
    EXPECT_THAT(runner().getCounts(), ElementsAre(0, 0, 0, 0));
    EXPECT_EQ(runner().m_beginCount, 0u);
    EXPECT_THAT(runner().m_failures, IsEmpty());
    EXPECT_EQ(runner().m_running.size(), 1u);
    EXPECT_EQ(runner().m_indent, "  ");
}

TEST_F(RunnerRun, beginSubTestPushesARecord)
{
    EXPECT_TRUE(runner().beginSubTest("a", ITestItem::None, false, false));
    EXPECT_TRUE(runner().beginSubTest("b", ITestItem::Short, false, true));
    ASSERT_EQ(runner().m_running.size(), 2u);
    COpenRunner::RunningRecord const& record = runner().m_running.back();
    EXPECT_EQ(record.name, "b");
    EXPECT_EQ(record.startCount, 1u);
    EXPECT_EQ(record.duration, ITestItem::Short);
    EXPECT_FALSE(record.interactive);
    EXPECT_EQ(runner().m_beginCount, 2u);
    EXPECT_EQ(runner().m_indent, "    ");
    EXPECT_EQ(output(), "");
}

TEST_F(RunnerRun, refusalLeavesNoTraceButTheSkip)
{
    EXPECT_FALSE(runner().beginSubTest("long", ITestItem::Long, false, false));
    EXPECT_FALSE(runner().beginSubTest("interactive", ITestItem::Short, true, true));
    runner().disableNonInteractiveTests();
    EXPECT_FALSE(runner().beginSubTest("other", ITestItem::Short, false, false));
    EXPECT_THAT(runner().getCounts(), ElementsAre(0, 0, 0, 3));
    EXPECT_THAT(runner().m_running, IsEmpty());
    EXPECT_EQ(runner().m_beginCount, 0u);
    EXPECT_EQ(runner().m_indent, "");
    EXPECT_EQ(output(), "ooo");
}

TEST_F(RunnerRun, durationsOutsideTheEnumerationAreCompared)
{
    EXPECT_TRUE(runner().beginSubTest("-1", static_cast<Duration>(-1), false, false));
    EXPECT_FALSE(runner().beginSubTest("5", static_cast<Duration>(5), false, false));
    runner().enableTestsUpToDuration(ITestItem::Hours);
    EXPECT_FALSE(runner().beginSubTest("5", static_cast<Duration>(5), false, false));
}

TEST_F(RunnerRun, progressIsPrintedAtOnce)
{
    test::COutputCapture const inner;
    runner().beginSubTest("a", ITestItem::Short, false, false);
    runner().endSubTest_Success();
    EXPECT_EQ(inner.getFlushedText(), ".");
    runner().beginSubTest("b", ITestItem::Short, false, false);
    runner().endSubTest_Skipped();
    EXPECT_EQ(inner.getFlushedText(), ".o");
    runner().beginSubTest("c", ITestItem::Short, false, false);
    runner().endSubTest_Aborted();
    EXPECT_EQ(inner.getText(), ".o");
    runner().beginSubTest("d", ITestItem::Short, false, false);
    runner().endSubTest_Failed(boom);
    EXPECT_EQ(inner.getFlushedText(), ".o\n\nTEST FAILED: d\nboom\n");
    runner().beginSubTest("e", ITestItem::Hours, false, false);
    EXPECT_EQ(inner.getFlushedText(), ".o\n\nTEST FAILED: d\nboom\no");
}

TEST_F(RunnerRun, failureStopsInADebuggerAfterItsReport)
{
    constexpr int cannotBeTraced = 98;
    test::CChildProcess child(
        [this]
        {
            if (ptrace(PTRACE_TRACEME, 0, nullptr, nullptr) == -1)
            {
                return cannotBeTraced;
            }
            runner().beginSubTest("a", ITestItem::Short, false, false);
            runner().endSubTest_Failed(boom);
            return 0;
        });
    int const status = child.wait();
    if (WIFEXITED(status) && WEXITSTATUS(status) == cannotBeTraced)
    {
        GTEST_SKIP() << "tracing is not allowed here";
    }
    ASSERT_TRUE(WIFSTOPPED(status)) << "status " << status;
    EXPECT_EQ(WSTOPSIG(status), SIGTRAP);
    EXPECT_THAT(output(), HasSubstr("TEST FAILED: a\nboom\n"));
}

TEST_F(RunnerRun, itemsWithoutADurationShowNoProgress)
{
    runner().beginSubTest("a", ITestItem::None, false, false);
    runner().endSubTest_Success();
    runner().beginSubTest("b", ITestItem::None, false, false);
    runner().endSubTest_Skipped();
    EXPECT_EQ(output(), "");
    EXPECT_THAT(runner().getCounts(), ElementsAre(1, 0, 0, 1));
}

TEST_F(RunnerRun, indentationNeverFallsBelowNothing)
{
    runner().beginSubTest("a", ITestItem::Short, false, false);
    runner().m_indent = " ";
    runner().endSubTest_Success();
    EXPECT_EQ(runner().m_indent, " ");
}

TEST_F(RunnerRun, breadcrumbsHaveNoLeadingDot)
{
    for (char const* const name : {"", "a", "b"})
    {
        runner().beginSubTest(name, ITestItem::Short, false, false);
    }
    EXPECT_EQ(runner().getTestBreadcrumbs(), "a.b");
}

TEST_F(RunnerRun, breadcrumbsOfATopLevelTestAreItsName)
{
    EXPECT_EQ(runner().getTestBreadcrumbs(), "");
    runner().beginSubTest("a", ITestItem::Short, false, false);
    EXPECT_EQ(runner().getTestBreadcrumbs(), "a");
}

TEST_F(RunnerRun, messagesAreNoFormats)
{
    add("100% sure", throwing(std::runtime_error("%s%n")));
    EXPECT_FALSE(runAll());
    EXPECT_THAT(output(), HasSubstr("TEST FAILED: 100% sure\n%s%n\n"));
    EXPECT_THAT(output(), HasSubstr("- 100% sure\n  %s%n\n"));
}

class CSilentException : public std::exception
{
public:
    char const* what() const noexcept override { return nullptr; }
};

TEST_F(RunnerRun, exceptionMayHaveNoMessage)
{
    add("silent", throwing(CSilentException()));
    add("next");
    EXPECT_FALSE(runAll());
    EXPECT_THAT(output(), HasSubstr("TEST FAILED: silent\n(no message)\n"));
    EXPECT_THAT(runner().getCounts(), ElementsAre(1, 1, 0, 0));
}

/// Notes the operations through which a run goes.
class CWatchingRunner : public CConsoleTestRunner
{
public:
    using CConsoleTestRunner::CConsoleTestRunner;

    void runTestItem(ITestItem* item) override
    {
        m_calls.push_back("item");
        CConsoleTestRunner::runTestItem(item);
    }
    bool beginSubTest(std::string const& name, Duration duration, bool isInteractive,
                      bool containsAnyInteractive) override
    {
        m_calls.push_back("begin " + name);
        return CConsoleTestRunner::beginSubTest(name, duration, isInteractive,
                                                containsAnyInteractive);
    }
    void endSubTest_Failed(std::exception const& e) override
    {
        m_calls.push_back(std::string("failed ") + e.what());
        CConsoleTestRunner::endSubTest_Failed(e);
    }
    void endSubTest_Aborted() override
    {
        m_calls.emplace_back("aborted");
        CConsoleTestRunner::endSubTest_Aborted();
    }
    void endSubTest_Skipped() override
    {
        m_calls.emplace_back("skipped");
        CConsoleTestRunner::endSubTest_Skipped();
    }
    void endSubTest_Success() override
    {
        m_calls.emplace_back("success");
        CConsoleTestRunner::endSubTest_Success();
    }

    std::vector<std::string> m_calls;
};

TEST_F(RunnerRun, derivedRunnerSeesTheWholeRun)
{
    add("a");
    add("b", throwing(CTestAbortedException("stop")));
    add("c", throwing(CTestSkippedException()));
    add("d", throwing(boom));
    CWatchingRunner watching(m_root.get());
    watching.toggleAll();
    watching.go();
    EXPECT_THAT(watching.m_calls,
                ElementsAre("item", "begin a", "success", "item", "begin b", "aborted", "item",
                            "begin c", "skipped", "item", "begin d", "failed boom"));
}

} // namespace
