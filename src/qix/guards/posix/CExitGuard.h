#pragma once

#include <sys/types.h>

namespace qix
{

/// Lets the process end with an error, and with a word about it, when exit() is called while this
/// lives: a run that a test has cut short must not look like one that has passed. Processes that
/// are forked meanwhile may exit as they like. One may live inside another, as runs do.
class CExitGuard
{
public:
    CExitGuard() noexcept;
    ~CExitGuard();
    CExitGuard(CExitGuard const&) = delete;
    CExitGuard& operator=(CExitGuard const&) = delete;

private:
    pid_t m_outerProcess;
};

} // namespace qix
