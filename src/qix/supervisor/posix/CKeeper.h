#pragma once

#include "supervisor/posix/CSlot.h"

#include <chrono>
#include <csignal>
#include <string>

#include <sys/resource.h>
#include <sys/types.h>

namespace qix
{

/// The process that starts those of a slot which run tests, one after the other, and sees to their
/// ends: what a test has started is a descendant of it, whatever it makes of its parents, group or
/// session. It ends with the supervisor and then takes all of them along.
class CKeeper
{
public:
    /// \param work        outlives the keeper
    /// \param supervisor  the process that this one was forked from
    CKeeper(SlotWork const& work, pid_t supervisor) : m_work(work), m_supervisor(supervisor) {}

    /// Lets all units be run, and ends the process.
    [[noreturn]] void run();

private:
    void prepare();
    void enterFolder() const;
    bool isWorkLeft() const noexcept;
    void startWorker();
    [[noreturn]] void runWorker();
    void superviseWorker();
    void awaitEvent();
    void awaitSignal();
    void suspend();
    void reap();
    std::string describeTimeUp() const;
    bool isTimeUp() const;
    bool isInTest() const noexcept;
    void endTooLong();
    void endWorker(std::string const& reason);
    void awaitEnd(std::chrono::nanoseconds longest);
    void endAll();
    void endLeftovers();
    void tellEnd();
    std::string describeStacks() const;
    void tellDeath();
    bool isOrphaned() const noexcept;

    SlotWork const& m_work;
    pid_t m_supervisor;
    sigset_t m_signalsOfTests{}; ///< those that are blocked while tests run
    pid_t m_worker = 0;
    int m_status = 0;
    rusage m_usage{};       ///< of the last worker
    bool m_isAsked = false; ///< to end
    std::string m_reason;   ///< why the process was ended by this one
    std::string m_stacks;   ///< of its threads, before it was ended
};

} // namespace qix
