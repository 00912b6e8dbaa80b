#pragma once

#include <exception>

#include <sys/types.h>

namespace qix
{

/// If a fatal signal ends the process, tells in one line on standard error and in the log which it
/// is, what was running, and which check had passed last; then the signal takes its usual way.
///
/// Signals that somebody handles or ignores already are left alone. Forked processes end in
/// silence: what they crash for is the business of their test. Guards may be nested, as runs are.
/// On threads other than the one that makes the guard a signal is handled on their own stacks, so
/// that nothing can be told when these have overflowed.
class CCrashGuard
{
public:
    CCrashGuard() noexcept;
    CCrashGuard(CCrashGuard const&) = delete;
    CCrashGuard& operator=(CCrashGuard const&) = delete;
    ~CCrashGuard();

    /// Gives the signals back. For a forked process that has handlers of its own.
    static void leaveSignals() noexcept;

private:
    pid_t m_outerProcess;
    bool m_isOutermost;
};

} // namespace qix
