#pragma once

#include <qix/CConsoleTestRunner.h>
#include <qix/TestInfo.h>

#include "history/posix/CRunRecorder.h"
#include "model/TestProcess.h"
#include "selection/CSubTestFilter.h"
#include "selection/CTestPlan.h"
#include "selection/testOrder.h"

#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

namespace qix
{

/// Runs what is in a plan, in the order of the plan. What is not leaves no trace in the output, the
/// log and the counts.
///
/// Items hand their children to the runner, or announce them as sub-tests, as ever. The runner
/// looks each one up in the tree and leaves it out unless it is wanted. The groups of the library
/// get another child run than the one they hand over when the order asks for that; items of other
/// classes may do something between their children, so that these keep their order.
class CPlannedRunner : public CConsoleTestRunner
{
public:
    using CConsoleTestRunner::CConsoleTestRunner;

    std::vector<zel::P<ITestItem>> const& rootItems() const noexcept { return m_items; }
    std::vector<bool> const& selectedRoots() const noexcept { return m_selected; }
    void selectAll();

    /// True when the selection lines do not let the item in, for its class of duration or because
    /// it is, or is not, interactive.
    bool isFilteredOut(ITestItem const& item) const;

    /// What is run from now on. The plan outlives the runner.
    void setPlan(CTestPlan const& plan, PatternHits const& kept, PatternHits const& dropped);

    void setOrder(TestOrder order) { m_order = std::move(order); }

    /// \param recorder  outlives the runner
    /// \param indices   for each node its index among the recorder's tests, or noNode
    void setRecorder(CRunRecorder& recorder, std::vector<NodeIndex> indices);

    /// Runs the plan once. True when no test failed.
    virtual bool runPlan();

    /// The ids of those tests that have passed when they were tried again.
    virtual std::vector<std::string> listFlaky() const { return {}; }

    /// What is known of the process that has run what ends just now.
    virtual TestProcess testProcess() const { return {}; }

    /// True when something has gone wrong that no test has failed by.
    virtual bool hasTrouble() const noexcept { return false; }

    /// Begins no further test after so many have failed, in all runs together.
    void setFailureLimit(std::uint64_t limit) noexcept { m_failureLimit = limit; }

    /// True when no further test begins.
    virtual bool hasStopped() const noexcept { return hasReachedFailureLimit(); }

    /// What has stopped the run, once it has stopped.
    virtual std::string reasonForStop() const { return "--fail-fast"; }

    /// How many tests the last run has come to, whether they were let in or not.
    std::size_t reachedTests() const noexcept { return m_reachedTests; }

    /// True when tests were come to, in the last run, and nothing but groups has passed in any run.
    bool hasOnlySkipped() const noexcept { return m_reachedTests > 0 && !m_hasTestPassed; }

    /// For each node what the test took at most, in microseconds; 0 when it has not run.
    std::vector<std::uint64_t> const& times() const noexcept { return m_times; }

    /// The id of the test, group or sub-test that a listener is being told of at its beginning.
    std::string const& idOf(TestInfo const& test);

    /// The numbers of those patterns for sub-tests that no sub-test has had, though its test ran.
    std::vector<std::size_t> listUnusedSubTestPatterns() const;

    void runTestItem(ITestItem* item) override;
    bool beginSubTest(std::string const& name, ITestItem::Duration duration, bool isInteractive,
                      bool containsAnyInteractive) override;
    void endSubTest_Failed(std::exception const& e) override;
    void endSubTest_Aborted() override;
    void endSubTest_Skipped() override;
    void endSubTest_Success() override;

protected:
    using Clock = std::chrono::steady_clock;

    /// An item that is handed over, and where it stands in the tree.
    struct Child
    {
        NodeIndex node; ///< noNode for what the tree does not know
        ITestItem* item;
    };

    /// Runs the child if it is wanted.
    virtual void runChild(Child const& child);

    /// Runs a child that is wanted.
    virtual void runItem(Child const& child);

    /// Lets in what the filters let in, and tells of it.
    virtual bool beginFiltered(std::string const& name, ITestItem::Duration duration,
                               bool isInteractive, bool containsAnyInteractive);

    /// Forgets what runs innermost, which has ended so.
    void close(RememberedTest::Outcome outcome);

    /// Has the plan, the order and the filters of the other one from now on.
    void planAs(CPlannedRunner const& other);

    /// Makes it look as if the node and its parents were running.
    void openAs(NodeIndex node);

    /// Makes it look as if that were running which is running in the other one.
    void openAs(CPlannedRunner const& other);

    /// How many sub-tests are running, items among them.
    std::size_t depth() const noexcept { return m_running.size(); }

    /// @{
    /// When that began which runs at a depth, from 1 on.
    Clock::time_point getBeginTime(std::size_t depth) const;
    void setBeginTime(std::size_t depth, Clock::time_point begin);
    /// @}

    CTestPlan const& plan() const noexcept { return *m_plan; }
    TestOrder const& order() const noexcept { return m_order; }

private:
    /// What the patterns say of the sub-tests of one test.
    struct SubTests
    {
        std::unique_ptr<CSubTestFilter> kept;    ///< null when all are
        std::unique_ptr<CSubTestFilter> dropped; ///< null when none is
        bool hasRun = false;
    };

    /// What is being run, or the root.
    struct Open
    {
        NodeIndex node = noNode;      ///< noNode for the root and for what the tree does not know
        NodeIndex nextChild = 0;      ///< the child that is expected next
        std::size_t calls = 0;        ///< how many children have been handed over
        SubTests* subTests = nullptr; ///< not null when some of what is below may be unwanted
        std::string id;               ///< when subTests is not null
        std::string reportedId;       ///< when idOf() was asked for it
        bool isUnknown = false;       ///< it is not in the tree
        bool isLetIn = false;         ///< no filter is asked
        bool isKept = false;          ///< everything below is kept
        bool hasFailed = false;       ///< something in it that is not in the tree
        Clock::time_point begin;
        std::unordered_map<ITestItem const*, NodeIndex> children; ///< filled when it is needed
        std::unordered_map<std::string, std::size_t> siblings;    ///< how many of each name
    };

    bool hasReachedFailureLimit() const noexcept { return m_failedTests >= m_failureLimit; }
    void nameUnknown(Open& open, std::string const& name);
    std::string const& idOf(Open& open);
    Child nextChild(ITestItem* item);
    NodeIndex findChild(Open& open, ITestItem* item);
    NodeIndex findByPointer(Open& open, ITestItem const* item);
    NodeIndex findByName(Open const& open, ITestItem const* item) const;
    bool isReordered(Open const& open) const;
    void runNode(Child const& child);
    void runUnknown(ITestItem* item);
    void runNext(Open open, Child const& child);
    bool makeUnknown(Open& open, std::string const& name);
    bool isUnknownWanted(Open const& parent) const;
    Open makeOpen(NodeIndex node);
    bool begin(Open open, std::string const& name, ITestItem::Duration duration, bool isInteractive,
               bool containsAnyInteractive);
    bool beginLetIn(std::string const& name, ITestItem::Duration duration, bool isInteractive,
                    bool containsAnyInteractive);
    void noteEnd(Open const& test, RememberedTest::Outcome outcome);

    CTestPlan const* m_plan = nullptr;
    PatternHits const* m_kept = nullptr;
    PatternHits const* m_dropped = nullptr;
    TestOrder m_order;
    std::unordered_map<NodeIndex, SubTests> m_subTests;
    CRunRecorder* m_recorder = nullptr;
    std::vector<NodeIndex> m_recordIndices;
    std::vector<bool> m_hasFailed; ///< the test, in any run of this process
    std::vector<std::uint64_t> m_times;
    std::uint64_t m_failureLimit = UINT64_MAX;
    std::uint64_t m_failedTests = 0;
    std::size_t m_reachedTests = 0;
    bool m_hasTestPassed = false;

    std::vector<Open> m_open;    ///< the root, and beside each of m_running what it is
    std::optional<Open> m_next;  ///< the item that is about to begin
    Open* m_beginning = nullptr; ///< what listeners are told of just now
    std::string m_idFromNames;
};

/// True for the classes whose items hand over all children, one after the other, and do nothing
/// else.
bool isLibraryGroup(ITestItem const& item);

} // namespace qix
