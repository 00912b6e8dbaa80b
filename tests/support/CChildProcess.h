#pragma once

#include <functional>

#include <sys/types.h>

namespace test
{

/// A child process that does one function of the test and ends without any clean-up.
///
/// For what must not happen in the test's own process: another user, a debugger, an exit.
class CChildProcess
{
public:
    /// Starts the child.
    /// \param work  its result is the exit status; an exception gives status 99
    explicit CChildProcess(std::function<int()> const& work);
    CChildProcess(CChildProcess const&) = delete;
    CChildProcess& operator=(CChildProcess const&) = delete;

    /// Kills the child when nobody has waited for its end.
    ~CChildProcess();

    pid_t getId() const noexcept { return m_id; }

    /// Waits for the end, or for a stop when the child is traced.
    /// \return the status as from waitpid()
    int wait();

    /// Waits for the end. \return the exit status, or minus the signal that ended the child
    int waitForExit();

private:
    pid_t m_id;
    bool m_ended = false;
};

} // namespace test
