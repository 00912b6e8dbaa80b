#pragma once

#include "planning/CTestSelection.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace qix
{

/// Runs what is selected, as often and in the order that the options ask for.
class CPlannedRun
{
public:
    /// All that is passed outlives the run.
    CPlannedRun(RunOptions const& options, CTestSelection const& selection, CPlannedRunner& runner);

    /// Remembers in the file how the tests end.
    /// \param history  what earlier runs have left there
    void record(std::string const& file, RunHistory const& history);

    /// \return the exit status
    int run();

private:
    bool runRepeatedly();
    void beginRepetition(std::uint64_t number);
    void applyOrder(std::uint64_t repetition);
    void tellStopped() const;
    void tellFlaky() const;
    void tellDurations() const;
    bool reportUnusedPatterns() const;

    RunOptions const& m_options;
    CTestSelection const& m_selection;
    CPlannedRunner& m_runner;
    std::uint64_t m_seed;
    std::optional<CRunRecorder> m_recorder;
};

} // namespace qix
