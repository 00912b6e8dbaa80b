#include <qix/ITestListener.h>

#include "runner/CNotingListener.h"
#include "runner/RunnerTest.h"

#include "CFakeClock.h"

#include <qix/CTestAbortedException.h>
#include <qix/CTestFailedException.h>
#include <qix/CTestSkippedWithReasonException.h>
#include <qix/ILocatedItem.h>
#include <zel/CInvalidArgError.h>

#include <chrono>
#include <optional>
#include <stdexcept>
#include <thread>

#include <pthread.h>

namespace
{

using qix::CTestAbortedException;
using qix::CTestFailedException;
using qix::CTestSkippedException;
using qix::CTestSkippedWithReasonException;
using qix::ITestItem;
using qix::ITestRunner;
using qix::TestInfo;
using qix::TestOutcome;
using test::CFunctionTestItem;
using test::CNotingListener;
using test::COpenRunner;
using test::CScopedListener;
using testing::ElementsAre;
using testing::IsEmpty;

std::runtime_error const boom("boom");

template <typename Exception>
CFunctionTestItem::Work throwing(Exception const& exception)
{
    return [exception](CFunctionTestItem&, ITestRunner&) { throw exception; };
}

class ITestListener : public test::RunnerTest
{
protected:
    /// Runs one test and tells how it ended.
    TestOutcome outcomeOf(Work work)
    {
        add("test", std::move(work));
        CScopedListener const listener;
        runAll();
        return listener->m_outcomes.at(0);
    }

    /// Starts what has been noted anew.
    static CNotingListener::Lines takeLines(CScopedListener const& listener)
    {
        return std::exchange(listener->m_lines, {});
    }
};

TEST_F(ITestListener, isToldTheWholeRun)
{
    qix::CTestItemGroup& group = addGroup("group");
    addTo(group, "good");
    addTo(group, "bad", throwing(boom));
    addTo(group, "slow", {}, ITestItem::Long);
    add("stopped", throwing(CTestAbortedException("no server")));
    add("elsewhere", throwing(CTestSkippedException()));
    CScopedListener const listener;

    EXPECT_FALSE(runAll());

    EXPECT_THAT(listener->m_lines,
                ElementsAre("run begins", "group begins", "group.good begins", "group.good ok",
                            "group.bad begins", "group.bad failed",
                            "group.slow filtered by duration", "group ok", "stopped begins",
                            "stopped aborted", "elsewhere begins", "elsewhere skipped",
                            "run ends: 2 1 1 2"));
}

TEST_F(ITestListener, changesNothingOfWhatIsPrinted)
{
    addTo(addGroup("group"), "bad", throwing(boom));
    runAll();
    std::string const logBefore = log();
    std::string const outputBefore = output();
    CScopedListener const listener;

    runAll();

    EXPECT_EQ(log(), logBefore);
    EXPECT_EQ(output(), outputBefore + outputBefore);
}

TEST_F(ITestListener, isToldWhatMayRun)
{
    CFunctionTestItem& first = add("first");
    add("second");
    addNull();
    CScopedListener const listener;
    runner().m_selected = {true, false, true};

    runner().go();
    runner().enableTestsUpToDuration(ITestItem::Hours);
    runner().enableInteractiveTests();
    runner().disableNonInteractiveTests();
    runner().go();

    ASSERT_EQ(listener->m_runs.size(), 2u);
    EXPECT_THAT(listener->m_runs[0].items, ElementsAre(&first, nullptr));
    EXPECT_EQ(listener->m_runs[0].maxDuration, ITestItem::Short);
    EXPECT_FALSE(listener->m_runs[0].runInteractive);
    EXPECT_FALSE(listener->m_runs[0].onlyInteractive);
    EXPECT_EQ(listener->m_runs[1].maxDuration, ITestItem::Hours);
    EXPECT_TRUE(listener->m_runs[1].runInteractive);
    EXPECT_TRUE(listener->m_runs[1].onlyInteractive);
}

TEST_F(ITestListener, isToldWhatBegins)
{
    qix::CTestItemGroup& group = addGroup("group");
    CFunctionTestItem& test = addTo(
        group, "test",
        [](CFunctionTestItem&, ITestRunner& run)
        {
            run.beginSubTest("row", ITestItem::None, true, true);
            run.endSubTest_Success();
        },
        ITestItem::Long);
    test.m_interactive = true;
    CScopedListener const listener;
    runner().enableTestsUpToDuration(ITestItem::Long);
    runner().enableInteractiveTests();

    runAll();

    ASSERT_EQ(listener->m_tests.size(), 3u);
    TestInfo const& outer = listener->m_tests[0];
    EXPECT_EQ(outer.kind, TestInfo::Group);
    EXPECT_EQ(outer.item, &group);
    EXPECT_EQ(outer.duration, ITestItem::None);
    EXPECT_FALSE(outer.interactive);
    EXPECT_FALSE(outer.location);
    TestInfo const& leaf = listener->m_tests[1];
    EXPECT_EQ(leaf.kind, TestInfo::Test);
    EXPECT_THAT(leaf.names, ElementsAre("group", "test"));
    EXPECT_EQ(leaf.item, &test);
    EXPECT_EQ(leaf.duration, ITestItem::Long);
    EXPECT_TRUE(leaf.interactive);
    TestInfo const& row = listener->m_tests[2];
    EXPECT_EQ(row.kind, TestInfo::SubTest);
    EXPECT_THAT(row.names, ElementsAre("group", "test", "row"));
    EXPECT_EQ(row.item, nullptr);
    EXPECT_EQ(row.duration, ITestItem::None);
    EXPECT_TRUE(row.interactive);
}

TEST_F(ITestListener, isToldWhichFilterKeepsATestOut)
{
    add("long", {}, ITestItem::Long);
    add("both", {}, ITestItem::Long).m_interactive = true;
    add("asks").m_interactive = true;
    CScopedListener const listener;

    runAll();
    EXPECT_THAT(takeLines(listener),
                ElementsAre("run begins", "long filtered by duration", "both filtered by duration",
                            "asks filtered by interactive", "run ends: 0 0 0 3"));

    runner().enableTestsUpToDuration(ITestItem::Long);
    runner().enableInteractiveTests();
    runner().disableNonInteractiveTests();
    runAll();
    EXPECT_THAT(takeLines(listener),
                ElementsAre("run begins", "long filtered by not interactive", "both begins",
                            "both ok", "asks begins", "asks ok", "run ends: 2 0 0 1"));
}

TEST_F(ITestListener, isToldOfSubTestsThatAreFiltered)
{
    add("test", [](CFunctionTestItem&, ITestRunner& run)
        { EXPECT_FALSE(run.beginSubTest("row", ITestItem::Long, false, false)); });
    CScopedListener const listener;

    runAll();

    EXPECT_THAT(listener->m_lines,
                ElementsAre("run begins", "test begins", "test.row filtered by duration", "test ok",
                            "run ends: 1 0 0 1"));
    EXPECT_EQ(listener->m_tests[1].kind, TestInfo::SubTest);
    EXPECT_EQ(listener->m_tests[1].item, nullptr);
}

TEST_F(ITestListener, isToldWhereATestIsWritten)
{
    class CLocated : public CFunctionTestItem, public virtual qix::ILocatedItem
    {
    public:
        explicit CLocated(char const* file) : CFunctionTestItem("located"), m_file(file) {}
        qix::SourceLocation getLocation() const noexcept override { return {m_file, 12}; }

    private:
        char const* m_file;
    };
    m_root->addSubItem(zel::newObj<CLocated>("file.cpp"));
    m_root->addSubItem(zel::newObj<CLocated>(nullptr));
    CScopedListener const listener;

    runAll();

    ASSERT_TRUE(listener->m_tests[0].location);
    EXPECT_STREQ(listener->m_tests[0].location->file, "file.cpp");
    EXPECT_EQ(listener->m_tests[0].location->line, 12);
    EXPECT_FALSE(listener->m_tests[1].location);
}

TEST_F(ITestListener, isToldThatATestIsOk)
{
    TestOutcome const outcome = outcomeOf({});
    EXPECT_EQ(outcome.kind, TestOutcome::Ok);
    EXPECT_EQ(outcome.message, "");
    EXPECT_THAT(outcome.failures, IsEmpty());
    EXPECT_TRUE(outcome.reason.empty());
}

TEST_F(ITestListener, isToldTheExceptionByWhichATestFails)
{
    TestOutcome const outcome = outcomeOf(throwing(boom));
    EXPECT_EQ(outcome.kind, TestOutcome::Failed);
    EXPECT_EQ(outcome.message, "boom");
    EXPECT_TRUE(outcome.reason.empty());
    ASSERT_EQ(outcome.failures.size(), 1u);
    EXPECT_EQ(outcome.failures[0].file, "");
    EXPECT_EQ(outcome.failures[0].line, 0);
    EXPECT_EQ(outcome.failures[0].check, "");
    EXPECT_EQ(outcome.failures[0].values, "std::runtime_error: boom");
}

TEST_F(ITestListener, isToldTheFailuresOfATest)
{
    TestOutcome const outcome = outcomeOf(throwing(CTestFailedException(
        {{"file.cpp", 3, "QIX_CHECK(a == b)", "with 1 == 2"}, {"file.cpp", 5, "", "bad"}}, 3)));
    EXPECT_EQ(outcome.message, "file.cpp:3: QIX_CHECK(a == b) failed\n    with 1 == 2\n"
                               "  file.cpp:5: bad\n  and 1 more");
    ASSERT_EQ(outcome.failures.size(), 2u);
    EXPECT_EQ(outcome.failures[0].file, "file.cpp");
    EXPECT_EQ(outcome.failures[0].line, 3);
    EXPECT_EQ(outcome.failures[0].check, "QIX_CHECK(a == b)");
    EXPECT_EQ(outcome.failures[0].values, "with 1 == 2");
    EXPECT_EQ(outcome.failures[1].values, "bad");
}

TEST_F(ITestListener, isToldWhyATestIsAborted)
{
    TestOutcome const outcome = outcomeOf(throwing(CTestAbortedException("no server")));
    EXPECT_EQ(outcome.kind, TestOutcome::Aborted);
    EXPECT_EQ(outcome.message, "no server");
    EXPECT_EQ(outcome.reason, "no server");
    EXPECT_THAT(outcome.failures, IsEmpty());
}

TEST_F(ITestListener, isToldWhyATestIsSkipped)
{
    TestOutcome const outcome = outcomeOf(throwing(CTestSkippedWithReasonException("no printer")));
    EXPECT_EQ(outcome.kind, TestOutcome::Skipped);
    EXPECT_EQ(outcome.message, "Test skipped");
    EXPECT_EQ(outcome.reason, "no printer");
    EXPECT_THAT(outcome.failures, IsEmpty());
}

TEST_F(ITestListener, isToldNoReasonWhenThereIsNone)
{
    TestOutcome const outcome = outcomeOf(throwing(CTestSkippedException()));
    EXPECT_EQ(outcome.kind, TestOutcome::Skipped);
    EXPECT_EQ(outcome.message, "Test skipped");
    EXPECT_TRUE(outcome.reason.empty());
}

TEST_F(ITestListener, isToldHowLongATestTook)
{
    test::CFakeClock clock;
    add("outer",
        [&clock](CFunctionTestItem&, ITestRunner& run)
        {
            clock.advance(2);
            run.beginSubTest("row", ITestItem::Short, false, false);
            clock.advance(5);
            run.endSubTest_Success();
        });
    CScopedListener const listener;

    runAll();

    ASSERT_EQ(listener->m_outcomes.size(), 2u);
    EXPECT_EQ(listener->m_outcomes[0].elapsed, std::chrono::seconds(5));
    EXPECT_EQ(listener->m_outcomes[1].elapsed, std::chrono::seconds(7));
}

TEST_F(ITestListener, takesNoTimeFromTheTest)
{
    test::CFakeClock clock;
    add("test");
    CScopedListener const listener;
    listener->m_whenTold = [&clock](std::string const&) { clock.advance(100); };

    runAll();

    EXPECT_EQ(listener->m_outcomes.at(0).elapsed, std::chrono::seconds(0));
}

TEST_F(ITestListener, isToldOfAnItemThatIsMissing)
{
    addNull();
    CScopedListener const listener;

    runAll();

    EXPECT_THAT(listener->m_lines,
                ElementsAre("run begins", "(null) begins", "(null) failed", "run ends: 0 1 0 0"));
    EXPECT_EQ(listener->m_tests[0].kind, TestInfo::Test);
    EXPECT_EQ(listener->m_tests[0].item, nullptr);
    EXPECT_THAT(listener->m_outcomes[0].message, testing::HasSubstr("factory returned null"));
}

/// Leaves two sub-tests open.
void leaveOpen(CFunctionTestItem& /*item*/, ITestRunner& run)
{
    run.beginSubTest("one", ITestItem::Short, false, false);
    run.beginSubTest("two", ITestItem::Short, false, false);
}

TEST_F(ITestListener, isToldTheEndOfSubTestsThatAreLeftOpen)
{
    add("good", leaveOpen);
    add("stopped",
        [](CFunctionTestItem& item, ITestRunner& run)
        {
            leaveOpen(item, run);
            throw CTestAbortedException("no server");
        });
    CScopedListener const listener;

    runAll();

    EXPECT_THAT(listener->m_lines,
                ElementsAre("run begins", "good begins", "good.one begins", "good.one.two begins",
                            "good.one.two ok", "good.one ok", "good ok", "stopped begins",
                            "stopped.one begins", "stopped.one.two begins",
                            "stopped.one.two aborted", "stopped.one aborted", "stopped aborted",
                            "run ends: 3 0 3 0"));
    EXPECT_EQ(listener->m_outcomes[3].reason, "no server");
}

TEST_F(ITestListener, isToldTheEndWhenAnExceptionLeavesTheRun)
{
    addTo(addGroup("group"), "number", throwing(7));
    CScopedListener const listener;

    EXPECT_THROW(runAll(), int);

    EXPECT_THAT(listener->m_lines,
                ElementsAre("run begins", "group begins", "group.number begins",
                            "group.number failed", "group failed", "run ends: 0 0 0 0"));
    EXPECT_EQ(listener->m_outcomes[0].message, "An exception has left the test run.");
}

TEST_F(ITestListener, isToldEachOfSeveralRuns)
{
    bool throws = true;
    add("test",
        [&throws](CFunctionTestItem&, ITestRunner&)
        {
            if (throws)
            {
                throw 7;
            }
        });
    CScopedListener const listener;
    EXPECT_THROW(runAll(), int);
    takeLines(listener);
    throws = false;

    EXPECT_TRUE(runAll());

    // The path still has what the exception has left.
    EXPECT_THAT(listener->m_lines,
                ElementsAre("run begins", "test.test begins", "test.test ok", "run ends: 1 0 0 0"));
}

TEST_F(ITestListener, isToldARunInsideATest)
{
    auto const innerRoot = zel::newObj<qix::CTestItemGroup>("");
    addTo(*innerRoot, "inner", throwing(boom));
    add("outer",
        [&innerRoot](CFunctionTestItem&, ITestRunner& run)
        {
            run.beginSubTest("row", ITestItem::Short, false, false);
            COpenRunner inner(innerRoot.get());
            inner.toggleAll();
            EXPECT_FALSE(inner.go());
            run.endSubTest_Success();
        });
    CScopedListener const listener;

    EXPECT_TRUE(runAll());

    EXPECT_THAT(listener->m_lines,
                ElementsAre("run begins", "outer begins", "outer.row begins", "run begins",
                            "inner begins", "inner failed", "run ends: 0 1 0 0", "outer.row ok",
                            "outer ok", "run ends: 2 0 0 0"));
}

TEST_F(ITestListener, isToldTheEndOfARunThatATestLeavesByAnException)
{
    auto const innerRoot = zel::newObj<qix::CTestItemGroup>("");
    addTo(*innerRoot, "inner", throwing(7));
    add("outer",
        [&innerRoot](CFunctionTestItem&, ITestRunner&)
        {
            COpenRunner inner(innerRoot.get());
            inner.toggleAll();
            EXPECT_THROW(inner.go(), int);
        });
    CScopedListener const listener;

    EXPECT_TRUE(runAll());

    EXPECT_THAT(listener->m_lines,
                ElementsAre("run begins", "outer begins", "run begins", "inner begins",
                            "inner failed", "run ends: 0 0 0 0", "outer ok", "run ends: 1 0 0 0"));
}

TEST_F(ITestListener, isToldTestsOfARunnerThatIsUsedWithoutARun)
{
    CFunctionTestItem& test = add("test");
    CFunctionTestItem& number = add("number", throwing(7));
    CScopedListener const listener;
    {
        COpenRunner lone(m_root.get());
        lone.runTestItem(&test);
        EXPECT_THROW(lone.runTestItem(&number), int);
        EXPECT_THAT(takeLines(listener), ElementsAre("test begins", "test ok", "number begins"));
    }
    EXPECT_THAT(listener->m_lines, ElementsAre("number failed"));
}

TEST_F(ITestListener, isToldTheEndOfWhatAnotherRunnerHasLeftOpenInATest)
{
    COpenRunner inner(zel::newObj<qix::CTestItemGroup>("").get());
    add("outer", [&inner](CFunctionTestItem&, ITestRunner&)
        { inner.beginSubTest("open", ITestItem::Short, false, false); });
    add("next");
    CScopedListener const listener;

    EXPECT_TRUE(runAll());

    EXPECT_THAT(listener->m_lines,
                ElementsAre("run begins", "outer begins", "open begins", "open failed", "outer ok",
                            "next begins", "next ok", "run ends: 2 0 0 0"));
}

TEST_F(ITestListener, isToldWhatADerivedRunnerMakesOfAnOutcome)
{
    /// Takes what is skipped for a failure.
    class CStrictRunner : public COpenRunner
    {
    public:
        using COpenRunner::COpenRunner;
        void endSubTest_Skipped() override { endSubTest_Failed(std::logic_error("not allowed")); }
    };
    add("skipped", throwing(CTestSkippedWithReasonException("no printer")));
    CStrictRunner strict(m_root.get());
    strict.toggleAll();
    CScopedListener const listener;

    EXPECT_FALSE(strict.go());

    EXPECT_THAT(listener->m_lines,
                ElementsAre("run begins", "skipped begins", "skipped failed", "run ends: 0 1 0 0"));
    EXPECT_EQ(listener->m_outcomes[0].message, "not allowed");
    EXPECT_TRUE(listener->m_outcomes[0].reason.empty());
}

TEST_F(ITestListener, isToldEndsThatADerivedRunnerReportsItself)
{
    class CQuietRunner : public COpenRunner
    {
    public:
        using COpenRunner::COpenRunner;
        void endSubTest_Success() override { finalizeSubTest(true); }
        void endSubTest_Failed(std::exception const&) override { finalizeSubTest(false); }
    };
    add("good");
    add("bad", throwing(boom));
    CQuietRunner quiet(m_root.get());
    quiet.toggleAll();
    CScopedListener const listener;

    quiet.go();

    EXPECT_THAT(listener->m_lines, ElementsAre("run begins", "good begins", "good ok", "bad begins",
                                               "bad failed", "run ends: 0 0 0 0"));
    EXPECT_EQ(listener->m_outcomes[1].message, "boom");
}

TEST_F(ITestListener, takesASubTestInFrontOfAnItemForWhatItIs)
{
    /// Puts each item into a sub-test of its own and lets none begin twice.
    class CRefusingRunner : public COpenRunner
    {
    public:
        using COpenRunner::COpenRunner;
        bool beginSubTest(std::string const& name, ITestItem::Duration duration, bool interactive,
                          bool containsInteractive) override
        {
            return name != "refused" &&
                   COpenRunner::beginSubTest(name, duration, interactive, containsInteractive);
        }
    };
    add("refused");
    CRefusingRunner refusing(m_root.get());
    refusing.toggleAll();
    CScopedListener const listener;

    refusing.go();
    refusing.beginSubTest("row", ITestItem::Short, false, false);
    refusing.endSubTest_Success();

    EXPECT_THAT(listener->m_lines,
                ElementsAre("run begins", "run ends: 0 0 0 0", "row begins", "row ok"));
    EXPECT_EQ(listener->m_tests[0].kind, TestInfo::SubTest);
    EXPECT_EQ(listener->m_tests[0].item, nullptr);
}

TEST_F(ITestListener, thatIsAddedByATestIsToldWhatBeginsFromThenOn)
{
    std::optional<CScopedListener> listener;
    qix::CTestItemGroup& group = addGroup("group");
    addTo(group, "adding",
          [&listener](CFunctionTestItem&, ITestRunner& run)
          {
              listener.emplace();
              run.beginSubTest("row", ITestItem::Short, false, false);
              run.endSubTest_Success();
          });
    addTo(group, "next");
    CScopedListener const first;

    runAll();

    EXPECT_THAT((*listener)->m_lines,
                ElementsAre("group.adding.row begins", "group.adding.row ok", "group.next begins",
                            "group.next ok", "run ends: 4 0 0 0"));
}

TEST_F(ITestListener, thatIsAddedByATestNeedsNoOther)
{
    std::optional<CScopedListener> listener;
    qix::CTestItemGroup& group = addGroup("group");
    addTo(group, "adding", [&listener](CFunctionTestItem&, ITestRunner&) { listener.emplace(); });
    addTo(group, "next");

    runAll();

    EXPECT_THAT((*listener)->m_lines,
                ElementsAre("group.next begins", "group.next ok", "run ends: 3 0 0 0"));
}

TEST_F(ITestListener, thatIsAddedByAListenerIsToldWhatBeginsFromThenOn)
{
    std::optional<CScopedListener> second;
    addTo(addGroup("group"), "test");
    CScopedListener const first;
    first->m_whenTold = [&second](std::string const& line)
    {
        if (line == "group begins")
        {
            second.emplace();
        }
    };

    runAll();

    EXPECT_THAT((*second)->m_lines,
                ElementsAre("group.test begins", "group.test ok", "run ends: 2 0 0 0"));
}

TEST_F(ITestListener, thatIsRemovedIsToldNothingMore)
{
    add("test");
    std::optional<CScopedListener> first(std::in_place);
    std::optional<CScopedListener> second(std::in_place);
    std::optional<CScopedListener> third(std::in_place);
    zel::P<CNotingListener> const firstNotes(&**first);
    firstNotes->addRef();
    zel::P<CNotingListener> const thirdNotes(&**third);
    thirdNotes->addRef();
    (*second)->m_whenTold = [&](std::string const& line)
    {
        if (line == "test begins")
        {
            first.reset();
            third.reset();
        }
    };

    runAll();

    EXPECT_THAT(firstNotes->m_lines, ElementsAre("run begins", "test begins"));
    EXPECT_THAT(thirdNotes->m_lines, ElementsAre("run begins"));
    EXPECT_THAT((*second)->m_lines,
                ElementsAre("run begins", "test begins", "test ok", "run ends: 1 0 0 0"));
}

TEST_F(ITestListener, mayRemoveItself)
{
    add("test");
    auto listener = zel::newObj<CNotingListener>();
    std::weak_ptr<int> alive;
    {
        auto const whileAlive = std::make_shared<int>();
        alive = whileAlive;
        listener->m_whenTold = [whileAlive, raw = listener.get()](std::string const&)
        { removeTestListener(raw); };
    }
    qix::addTestListener(listener);
    listener = nullptr;
    EXPECT_FALSE(alive.expired());

    EXPECT_TRUE(runAll());

    EXPECT_TRUE(alive.expired());
}

TEST_F(ITestListener, isThereOnce)
{
    add("test");
    CScopedListener const listener;
    zel::P<CNotingListener> again(&*listener);
    again->addRef();
    qix::addTestListener(again);

    runAll();

    EXPECT_EQ(listener->m_lines.size(), 4u);
    qix::removeTestListener(again.get());
    qix::removeTestListener(again.get());
    qix::removeTestListener(nullptr);
    runAll();
    EXPECT_EQ(listener->m_lines.size(), 4u);
}

TEST_F(ITestListener, mustNotBeNull)
{
    EXPECT_THROW(qix::addTestListener(nullptr), zel::CInvalidArgError);
}

TEST_F(ITestListener, mayRunTestsItself)
{
    auto const innerRoot = zel::newObj<qix::CTestItemGroup>("");
    addTo(*innerRoot, "inner");
    addTo(addGroup("group"), "test", throwing(CTestAbortedException("no server")));
    CScopedListener const listener;
    int depth = 0;
    listener->m_whenTold = [&](std::string const&)
    {
        if (++depth == 1)
        {
            COpenRunner inner(innerRoot.get());
            inner.toggleAll();
            EXPECT_TRUE(inner.go());
        }
        --depth;
    };

    EXPECT_TRUE(runAll());

    std::vector<std::string> expected;
    for (char const* line : {"run begins", "group begins", "group.test begins",
                             "group.test aborted", "group ok", "run ends: 1 0 1 0"})
    {
        expected.insert(expected.end(),
                        {line, "run begins", "inner begins", "inner ok", "run ends: 1 0 0 0"});
    }
    EXPECT_EQ(listener->m_lines, expected);
}

TEST_F(ITestListener, thatThrowsFailsTheRunAndLosesNothing)
{
    addTo(addGroup("group"), "test");
    add("long", {}, ITestItem::Long);
    CScopedListener const throwingListener;
    CScopedListener const other;
    throwingListener->m_whenTold = [](std::string const& line)
    { throw std::runtime_error(line + "\nand I throw"); };
    testing::internal::CaptureStderr();

    EXPECT_FALSE(runAll());

    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "Error: the test listener test::CNotingListener threw std::runtime_error: run begins"
              "\n    and I throw; the run fails.\n");
    EXPECT_THAT(throwingListener->m_lines,
                ElementsAre("run begins", "group begins", "group.test begins", "group.test ok",
                            "group ok", "long filtered by duration", "run ends: 2 0 0 1"));
    EXPECT_EQ(other->m_lines, throwingListener->m_lines);
    EXPECT_THAT(runner().getCounts(), ElementsAre(2, 0, 0, 1));
}

TEST_F(ITestListener, mayThrowAnything)
{
    add("test");
    CScopedListener const first;
    CScopedListener const second;
    first->m_whenTold = [](std::string const&) { throw 7; };
    second->m_whenTold = [](std::string const& line)
    {
        if (line.rfind("run ends", 0) == 0)
        {
            throw std::runtime_error("late");
        }
    };
    testing::internal::CaptureStderr();

    EXPECT_FALSE(runAll());

    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "Error: the test listener test::CNotingListener threw int; the run fails.\n"
              "Error: the test listener test::CNotingListener threw std::runtime_error: late; the "
              "run fails.\n");
}

TEST_F(ITestListener, thatThrowsAtTheEndOfTheRunFailsIt)
{
    add("test");
    CScopedListener const listener;
    listener->m_whenTold = [](std::string const& line)
    {
        if (line.rfind("run ends", 0) == 0)
        {
            throw boom;
        }
    };
    testing::internal::CaptureStderr();

    EXPECT_FALSE(runAll());
    EXPECT_NE(testing::internal::GetCapturedStderr(), "");

    listener->m_whenTold = nullptr;
    EXPECT_TRUE(runAll());
}

TEST_F(ITestListener, thatIsAddedByATestAndThrowsFailsTheRun)
{
    std::optional<CScopedListener> listener;
    add("adding",
        [&listener](CFunctionTestItem&, ITestRunner&)
        {
            listener.emplace();
            (*listener)->m_whenTold = [](std::string const&) { throw boom; };
        });
    add("next");
    testing::internal::CaptureStderr();

    EXPECT_FALSE(runAll());

    EXPECT_NE(testing::internal::GetCapturedStderr(), "");
}

TEST_F(ITestListener, failsTheRunInWhichItThrows)
{
    auto const innerRoot = zel::newObj<qix::CTestItemGroup>("");
    addTo(*innerRoot, "inner");
    bool innerSucceeds = true;
    add("outer",
        [&](CFunctionTestItem&, ITestRunner&)
        {
            COpenRunner inner(innerRoot.get());
            inner.toggleAll();
            innerSucceeds = inner.go();
        });
    CScopedListener const listener;
    listener->m_whenTold = [](std::string const& line)
    {
        if (line == "inner begins")
        {
            throw boom;
        }
    };
    testing::internal::CaptureStderr();

    EXPECT_TRUE(runAll());

    EXPECT_FALSE(innerSucceeds);
    EXPECT_NE(testing::internal::GetCapturedStderr(), "");
}

TEST_F(ITestListener, failsTheRunAroundAnother)
{
    auto const innerRoot = zel::newObj<qix::CTestItemGroup>("");
    addTo(*innerRoot, "inner");
    add("outer",
        [&](CFunctionTestItem&, ITestRunner&)
        {
            COpenRunner inner(innerRoot.get());
            inner.toggleAll();
            EXPECT_TRUE(inner.go());
        });
    CScopedListener const listener;
    listener->m_whenTold = [](std::string const& line)
    {
        if (line == "outer ok")
        {
            throw boom;
        }
    };
    testing::internal::CaptureStderr();

    EXPECT_FALSE(runAll());

    EXPECT_NE(testing::internal::GetCapturedStderr(), "");
}

TEST_F(ITestListener, mayBeTheLastThingThatItsThreadDoes)
{
    add("test");
    CScopedListener const listener;
    listener->m_whenTold = [](std::string const& line)
    {
        if (line == "test begins")
        {
            pthread_exit(nullptr);
        }
    };
    bool wentOn = false;
    COpenRunner& ended = runner();
    ended.toggleAll();

    std::thread(
        [&]
        {
            ended.go();
            wentOn = true;
        })
        .join();

    EXPECT_FALSE(wentOn);
    EXPECT_THAT(listener->m_lines,
                ElementsAre("run begins", "test begins", "test failed", "run ends: 0 0 0 0"));
}

TEST_F(ITestListener, isToldOnTheThreadOfTheRun)
{
    add("test");
    CScopedListener const listener;
    std::vector<std::thread::id> threads;
    listener->m_whenTold = [&](std::string const&)
    { threads.push_back(std::this_thread::get_id()); };
    std::thread::id thread;

    std::thread(
        [&]
        {
            thread = std::this_thread::get_id();
            runAll();
        })
        .join();

    EXPECT_THAT(threads, testing::AllOf(testing::SizeIs(4), testing::Each(thread)));
}

} // namespace
