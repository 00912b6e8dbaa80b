#include "planning/CTestSelection.h"

#include "guards/exitStatus.h"
#include "runner/printError.h"
#include "runner/startUp.h"
#include "selection/nearestIds.h"
#include "selection/shards.h"

#include <algorithm>
#include <cstdio>
#include <iterator>
#include <sstream>

namespace qix
{

namespace
{

/// Who names a thousand tests that do not exist has made one mistake.
constexpr std::size_t reportedPatterns = 10;

std::string joined(std::vector<std::string> const& words)
{
    std::string text;
    for (std::string const& word : words)
    {
        text += (text.empty() ? "" : ", ") + word;
    }
    return text;
}

bool isFilterWord(std::string const& word)
{
    static char const* const words[] = {"+", "++", "+++", "i", "I"};
    return std::find(std::begin(words), std::end(words), word) != std::end(words);
}

/// True for a line without any word but those that change the filters, which selects nothing.
bool isFilterLine(char const* line)
{
    std::istringstream stream(toSelectionLine(line));
    std::vector<std::string> const words{std::istream_iterator<std::string>(stream), {}};
    return !words.empty() && std::all_of(words.begin(), words.end(), isFilterWord);
}

void reportPattern(CTestTree const& tree, std::string const& given, std::string const& pattern)
{
    std::vector<std::string> nearest;
    if (pattern.find('*') == std::string::npos)
    {
        nearest = nearestIds(tree, pattern);
    }
    std::string const hint =
        nearest.empty() ? "--list-tests tells all ids" : "the nearest ids are " + joined(nearest);
    printError("", ("no test matches '" + given + "': " + hint + "; see --help").c_str());
}

} // namespace

CTestSelection::CTestSelection(RunOptions const& options, RunHistory const& history,
                               CPlannedRunner& runner)
    : m_options(options), m_history(history), m_runner(runner), m_tree(runner.rootItems())
{
}

std::optional<int> CTestSelection::select(std::vector<char const*> const& lines)
{
    if (!applyLines(lines))
    {
        return exitNotAllPassed;
    }
    m_plan.emplace(m_tree, m_runner.selectedRoots());
    m_kept = findPatterns(m_tree, m_options.run);
    m_dropped = findPatterns(m_tree, m_options.skip);
    if (reportUnmatched())
    {
        return exitNoVerdict;
    }
    bool const areNamed = !m_options.run.empty() || m_options.hasRunFile;
    if (areNamed)
    {
        m_plan->keep(m_kept);
    }
    if (!m_options.skip.empty())
    {
        m_plan->drop(m_dropped);
    }
    applyFilters();
    std::vector<NodeIndex> const tests = m_plan->listTests();
    m_digest = digestOf(m_tree, tests);
    if (m_options.any && tests.empty() && (areNamed || !lines.empty()))
    {
        printError("nothing is left to run: all that was named is left out by selection lines, "
                   "by options, or for what it is (long, interactive); see --help");
        return exitNoVerdict;
    }
    remember();
    keepShard();
    return m_options.rerunFailed ? keepFailed() : std::nullopt;
}

bool CTestSelection::applyLines(std::vector<char const*> const& lines)
{
    if (lines.empty() && !m_options.any)
    {
        m_runner.doMenu();
    }
    else if (m_options.any && std::all_of(lines.begin(), lines.end(), isFilterLine))
    {
        m_runner.selectAll();
    }
    bool accepted = true;
    for (char const* const line : lines)
    {
        accepted = m_runner.handleSelectionInput(toSelectionLine(line)) && accepted;
    }
    return accepted;
}

/// True when a pattern has found nothing.
bool CTestSelection::reportUnmatched() const
{
    std::size_t unmatched = 0;
    for (std::size_t i = 0; i < m_options.run.size(); ++i)
    {
        if (!m_kept.hasMatched[i] && ++unmatched <= reportedPatterns)
        {
            reportPattern(m_tree, m_options.run[i], m_kept.patterns[i]);
        }
    }
    if (unmatched > reportedPatterns)
    {
        printError((std::to_string(unmatched - reportedPatterns) +
                    " more patterns find no test; see --help")
                       .c_str());
    }
    return unmatched > 0;
}

void CTestSelection::applyFilters()
{
    m_plan->applyFilters([this](ITestItem const& item) { return m_runner.isFilteredOut(item); });
}

bool CTestSelection::isRemembered(NodeIndex node) const
{
    return m_tree.isLeaf(node) || !isLibraryGroup(*m_tree[node].item);
}

RememberedTest CTestSelection::remembered(NodeIndex node) const
{
    return m_remembered.empty() ? RememberedTest() : m_remembered[node];
}

void CTestSelection::remember()
{
    if (m_history.tests.empty())
    {
        return;
    }
    m_remembered.resize(m_tree.size());
    std::string id;
    for (NodeIndex node = 0; node < m_tree.size(); ++node)
    {
        m_tree.moveTo(node, id);
        if (isRemembered(node))
        {
            m_remembered[node] = m_history.find(id);
        }
    }
}

/// Tests that the filters leave out take no time and are spread by their ids.
///
/// Only times of a file that was named are used: all shards can be given the same one, where those
/// of the working folder differ from shard to shard and change with each run.
void CTestSelection::keepShard()
{
    if (!m_options.shard)
    {
        return;
    }
    std::vector<std::uint64_t> const times =
        m_options.times ? timesOf(*m_options.times) : std::vector<std::uint64_t>(m_tree.size());
    RunOptions::Shard const part = *m_options.shard;
    std::vector<NodeIndex> const shard = shardOf(
        m_tree, m_plan->listTests(), [&times](NodeIndex node) { return times[node]; }, part.number,
        part.count);
    m_plan->keepTests(
        [this, &shard, part](NodeIndex node)
        {
            return m_plan->isFilteredOut(node)
                       ? m_tree[node].idHash.get() % part.count + 1 == part.number
                       : std::binary_search(shard.begin(), shard.end(), node);
        });
}

std::vector<std::uint64_t> CTestSelection::timesOf(RunHistory const& history) const
{
    std::vector<std::uint64_t> times(m_tree.size());
    std::string id;
    for (NodeIndex node = 0; node < m_tree.size(); ++node)
    {
        m_tree.moveTo(node, id);
        if (m_tree.isLeaf(node))
        {
            times[node] = history.find(id).microseconds;
        }
    }
    return times;
}

std::vector<std::uint64_t> CTestSelection::earlierTimes() const
{
    return timesOf(m_options.times ? *m_options.times : m_history);
}

/// What has failed is let in by all filters: they have let it in before.
std::optional<int> CTestSelection::keepFailed()
{
    if (m_history.lastRun == 0)
    {
        std::puts("No run has been recorded in the working folder: all tests run.");
        return std::nullopt;
    }
    m_plan->keepTests([this](NodeIndex node) { return hasFailedInLastRun(node); });
    std::vector<NodeIndex> const tests = m_plan->listWanted();
    for (NodeIndex const test : tests)
    {
        m_plan->letIn(test);
    }
    applyFilters();
    if (tests.empty())
    {
        std::puts("Nothing that is selected failed in the last run.");
        return exitAllPassed;
    }
    return std::nullopt;
}

/// What is in a group that failed by itself has failed with it.
bool CTestSelection::hasFailedInLastRun(NodeIndex node) const
{
    for (; node != noNode; node = m_tree[node].parent)
    {
        RememberedTest const test = remembered(node);
        if (test.hasFailed() && test.run == m_history.lastRun)
        {
            return true;
        }
    }
    return false;
}

} // namespace qix
