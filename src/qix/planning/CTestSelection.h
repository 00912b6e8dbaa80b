#pragma once

#include "options/RunOptions.h"
#include "planning/CPlannedRunner.h"
#include "selection/CTestPlan.h"
#include "selection/TestPatterns.h"

#include <optional>
#include <string>
#include <vector>

namespace qix
{

/// What the selection lines and the options let in, and how it is run.
class CTestSelection
{
public:
    /// Makes all items. All that is passed outlives the selection.
    /// \param history  what earlier runs in the working folder have left
    CTestSelection(RunOptions const& options, RunHistory const& history, CPlannedRunner& runner);

    /// Selects, and prints what is wrong with the selection.
    /// \param lines  the selection lines; when no line selects, everything is selected, or what the
    ///               menu is answered with when there are no options either
    /// \return the exit status when there is nothing to list or to run
    std::optional<int> select(std::vector<char const*> const& lines);

    CTestTree const& tree() const noexcept { return m_tree; }
    CTestPlan const& plan() const noexcept { return *m_plan; }
    PatternHits const& kept() const noexcept { return m_kept; }
    PatternHits const& dropped() const noexcept { return m_dropped; }

    /// A digest of the tests of all shards.
    std::string const& digest() const noexcept { return m_digest; }

    /// What is remembered of a node of the tree by earlier runs in the working folder.
    RememberedTest remembered(NodeIndex node) const;

    /// True when something is remembered of the node: it is a test, or may fail by itself.
    bool isRemembered(NodeIndex node) const;

    /// What each node took in an earlier run, in microseconds; 0 when that is not known.
    std::vector<std::uint64_t> earlierTimes() const;

private:
    bool applyLines(std::vector<char const*> const& lines);
    void remember();
    bool reportUnmatched() const;
    void applyFilters();
    void keepShard();
    std::optional<int> keepFailed();
    bool hasFailedInLastRun(NodeIndex node) const;
    std::vector<std::uint64_t> timesOf(RunHistory const& history) const;

    RunOptions const& m_options;
    RunHistory const& m_history;
    CPlannedRunner& m_runner;
    CTestTree m_tree;
    std::optional<CTestPlan> m_plan;
    PatternHits m_kept;
    PatternHits m_dropped;
    std::string m_digest;
    std::vector<RememberedTest> m_remembered; ///< empty when nothing is
};

} // namespace qix
