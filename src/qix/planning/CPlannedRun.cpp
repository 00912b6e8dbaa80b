#include "planning/CPlannedRun.h"

#include "guards/exitStatus.h"
#include "runner/printError.h"
#include "selection/testOrder.h"

#include <algorithm>
#include <cinttypes>
#include <cstdio>
#include <random>

namespace qix
{

namespace
{

/// A new one is one that people can type.
std::uint64_t seedOf(RunOptions const& options)
{
    std::optional<std::uint64_t> const seed = options.seed ? options.seed : options.defaultSeed;
    return seed ? *seed : std::random_device()();
}

std::string inSeconds(std::uint64_t microseconds)
{
    constexpr std::uint64_t ofOneMillisecond = 1000;
    std::uint64_t const rounded = (microseconds + ofOneMillisecond / 2) / ofOneMillisecond;
    return std::to_string(rounded / ofOneMillisecond) + '.' +
           std::to_string(ofOneMillisecond + rounded % ofOneMillisecond).substr(1);
}

} // namespace

CPlannedRun::CPlannedRun(RunOptions const& options, CTestSelection const& selection,
                         CPlannedRunner& runner)
    : m_options(options), m_selection(selection), m_runner(runner), m_seed(seedOf(options))
{
    m_runner.setPlan(selection.plan(), selection.kept(), selection.dropped());
    if (options.failFast)
    {
        m_runner.setFailureLimit(*options.failFast);
    }
}

/// Running again what has failed goes on with the last run: what it does not come to stays failed.
void CPlannedRun::record(std::string const& file, RunHistory const& history)
{
    bool const goesOn = m_options.rerunFailed && history.lastRun > 0;
    std::uint32_t const number = goesOn ? history.lastRun : history.lastRun + 1;
    CTestTree const& tree = m_selection.tree();
    std::vector<CRunRecorder::Test> tests;
    std::vector<NodeIndex> indices(tree.size(), noNode);
    for (NodeIndex node = 0; node < tree.size(); ++node)
    {
        if (m_selection.isRemembered(node))
        {
            indices[node] = static_cast<NodeIndex>(tests.size());
            tests.push_back({tree.idOf(node), m_selection.remembered(node)});
        }
    }
    m_recorder.emplace(file, number, tests);
    m_runner.setRecorder(*m_recorder, std::move(indices));
}

int CPlannedRun::run()
{
    bool const passed = runRepeatedly();
    tellStopped();
    tellFlaky();
    tellDurations();
    bool const hasTrouble = reportUnusedPatterns() || m_runner.hasTrouble();
    if (hasTrouble && passed)
    {
        return exitNoVerdict;
    }
    if (passed && m_options.skipStatus && m_runner.hasOnlySkipped())
    {
        return *m_options.skipStatus;
    }
    return passed ? exitAllPassed : exitNotAllPassed;
}

bool CPlannedRun::runRepeatedly()
{
    std::uint64_t const times =
        m_options.untilFail ? *m_options.untilFail : m_options.repeat.value_or(1);
    bool passed = true;
    for (std::uint64_t number = 1; number <= times && !m_runner.hasStopped(); ++number)
    {
        beginRepetition(number);
        applyOrder(number);
        passed = m_runner.runPlan() && passed;
        if (!passed && m_options.untilFail)
        {
            break;
        }
    }
    return passed;
}

void CPlannedRun::beginRepetition(std::uint64_t number)
{
    if (m_options.repeat)
    {
        std::printf("Repetition %" PRIu64 " of %" PRIu64 "\n", number, *m_options.repeat);
    }
    else if (m_options.untilFail)
    {
        std::printf("Repetition %" PRIu64 "\n", number);
    }
}

/// Each repetition has an order of its own, so that those that matter are found.
void CPlannedRun::applyOrder(std::uint64_t repetition)
{
    CTestTree const& tree = m_selection.tree();
    switch (m_options.order)
    {
    case RunOptions::Order::Declared:
        break;
    case RunOptions::Order::Random:
    {
        std::uint64_t const seed = m_seed + (repetition - 1);
        std::printf("Random order: --order=random:%" PRIu64 "\n", seed);
        m_runner.setOrder(randomOrder(tree, seed));
        break;
    }
    case RunOptions::Order::Failed:
    {
        std::vector<std::uint64_t> weights(tree.size());
        for (NodeIndex node = 0; node < tree.size(); ++node)
        {
            weights[node] = m_selection.remembered(node).hasFailed() ? 1 : 0;
        }
        m_runner.setOrder(orderByWeight(tree, std::move(weights)));
        break;
    }
    case RunOptions::Order::Longest:
        m_runner.setOrder(orderByWeight(tree, m_selection.earlierTimes()));
        break;
    }
}

void CPlannedRun::tellStopped() const
{
    if (!m_runner.hasStopped())
    {
        return;
    }
    std::size_t const left = m_selection.plan().listWanted().size() - m_runner.reachedTests();
    std::printf("Stopped by %s. Tests that were not run: %zu\n", m_runner.reasonForStop().c_str(),
                left);
}

void CPlannedRun::tellFlaky() const
{
    std::vector<std::string> const flaky = m_runner.listFlaky();
    if (!flaky.empty())
    {
        std::puts("Flaky tests, which failed before they passed:");
    }
    for (std::string const& test : flaky)
    {
        std::printf("- %s\n", test.c_str());
    }
}

void CPlannedRun::tellDurations() const
{
    if (!m_options.durations)
    {
        return;
    }
    std::vector<std::uint64_t> const& times = m_runner.times();
    std::vector<NodeIndex> tests;
    for (NodeIndex node = 0; node < times.size(); ++node)
    {
        if (times[node] > 0)
        {
            tests.push_back(node);
        }
    }
    std::stable_sort(tests.begin(), tests.end(),
                     [&times](NodeIndex left, NodeIndex right)
                     { return times[left] > times[right]; });
    tests.resize(std::min<std::uint64_t>(tests.size(), *m_options.durations));
    std::puts("Slowest tests, in seconds:");
    for (NodeIndex const test : tests)
    {
        std::printf("%9s  %s\n", inSeconds(times[test]).c_str(),
                    m_selection.tree().idOf(test).c_str());
    }
}

/// True when a sub-test was named that its test does not have.
bool CPlannedRun::reportUnusedPatterns() const
{
    std::vector<std::size_t> numbers = m_runner.listUnusedSubTestPatterns();
    std::sort(numbers.begin(), numbers.end());
    for (std::size_t const number : numbers)
    {
        printError("", ("no sub-test matches '" + m_options.run[number] +
                        "', though its test was run; see --help")
                           .c_str());
    }
    return !numbers.empty();
}

} // namespace qix
