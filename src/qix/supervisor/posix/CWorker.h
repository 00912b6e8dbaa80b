#pragma once

#include "supervisor/posix/CSlot.h"

#include <cstdint>
#include <optional>

#include <sys/types.h>

namespace qix
{

/// The process that runs units, one after the other.
class CWorker : private IMessageSink
{
public:
    /// \param work  outlives the worker
    explicit CWorker(SlotWork const& work);

    /// Runs what there is to run, and ends the process.
    [[noreturn]] void run();

private:
    void send(std::string_view message) override;
    void noteFailure() override { m_hasFailed = true; }
    std::chrono::nanoseconds suspended() const override;

    std::optional<std::uint64_t> takeUnit();
    bool mayBegin(std::uint64_t unit) const noexcept;
    void runUnit(std::uint64_t index);
    void endUnit(std::uint64_t index);
    void lookAtProcess();
    bool isIntact() const noexcept;
    void endLeftovers();
    void tellLeftover(pid_t process);

    SlotWork const& m_work;
    pid_t m_keeper; ///< the parent, as long as it is there
    CPrintedTeller m_printed;
    std::int64_t m_lastLook = 0; ///< at what units have left of the process, in nanoseconds
    bool m_hasFailed = false;    ///< the unit that is being run
    bool m_isIntact = true;      ///< no test has spoilt the process for the next ones
    long m_childFaults = 0;      ///< of ended children: another number tells of a new one
};

} // namespace qix
