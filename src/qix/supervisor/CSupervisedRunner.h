#pragma once

#include "options/RunOptions.h"
#include "planning/CPlannedRunner.h"
#include "supervisor/CRecordingRunner.h"
#include "supervisor/IReplayTarget.h"
#include "supervisor/Unit.h"
#include "supervisor/posix/CCrew.h"
#include "supervisor/posix/CRunTerminal.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <unordered_map>
#include <vector>

namespace qix
{

/// Runs what is in a plan as ever, but for the tests themselves: these run in other processes, and
/// what they have done there is played back where they would have run.
class CSupervisedRunner : public CPlannedRunner, private IReplayTarget, private IRunObserver
{
public:
    /// \param options  outlive the runner
    CSupervisedRunner(ITestItem* root, RunOptions const& options);

    bool runPlan() override;

    bool hasStopped() const noexcept override;
    std::string reasonForStop() const override;
    std::vector<std::string> listFlaky() const override { return m_flaky; }

    TestProcess testProcess() const override;

    /// True when a process has ended badly behind all of its tests.
    bool hasTrouble() const noexcept override { return m_hasEndedBadly; }

private:
    void runChild(Child const& child) override;
    void runItem(Child const& child) override;

    bool isGoingOn() const noexcept override { return !CPlannedRunner::hasStopped(); }
    void runHanded(std::uint32_t node, ITestItem* item) override;
    std::size_t depth() const override { return CPlannedRunner::depth(); }
    void setBegin(std::size_t depth, Moment const& begin) override;
    void setNow(std::size_t depth, Moment const& now) override;

    void noteUsage(ProcessUsage const& usage) override { m_process.usage = usage; }

    std::string nameOf(Unit const& unit) const override;
    void goOnAfter(std::chrono::nanoseconds pause) override;

    void setTimes(std::size_t depth, std::time_t seconds, Clock::time_point begin);
    bool isAtDepth(std::size_t depth) const;
    std::vector<NodeIndex> childrenOf(NodeIndex parent) const;
    void listUnits();
    void addUnits(NodeIndex parent);
    void runUnit(Child const& child);
    bool hasAnyBegun(NodeIndex node);
    void noteFlaky(NodeIndex node);
    void tellLeftover(std::string const& command) const;
    unsigned processes() const;

    class CUnitSource;

    RunOptions const& m_options;
    zel::P<CRecordingRunner> m_recorder;
    std::vector<Unit> m_units;
    std::vector<std::size_t> m_unitOfNode;  ///< its index among the units, or noUnit
    std::optional<CRunTerminal> m_terminal; ///< while the plan is run
    std::unique_ptr<CCrew> m_crew;
    std::size_t m_nextUnit = 0; ///< those before it are gone
    std::vector<std::string> m_flaky;
    TestProcess m_process;       ///< of the unit that is played back
    std::size_t m_unitDepth = 0; ///< around that unit
    bool m_isReplaying = false;
    bool m_hasEndedBadly = false;
};

} // namespace qix
