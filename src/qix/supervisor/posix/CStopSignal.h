#pragma once

#include <csignal>

namespace qix
{

/// Takes notice of SIGTSTP while it lives, by which a terminal stops a job, instead of stopping by
/// it. A signal that is ignored stays ignored. There is never more than one object.
class CStopSignal
{
public:
    CStopSignal() noexcept;
    CStopSignal(CStopSignal const&) = delete;
    CStopSignal& operator=(CStopSignal const&) = delete;
    ~CStopSignal();

    /// True when the signal has come and stop() has not been called since.
    static bool hasCome() noexcept;

    /// Stops the process as the signal does by default, and comes back when it is continued; at
    /// once where there is nobody to continue it.
    void stop() noexcept;

private:
    struct sigaction m_before = {};
};

} // namespace qix
