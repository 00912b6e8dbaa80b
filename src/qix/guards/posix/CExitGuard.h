#pragma once

#include <sys/types.h>

namespace qix
{

/// If a test calls exit(), reports it and ends the process with exitNoVerdict: an interrupted run
/// must not look like a passed one. Forked processes may call exit(). Guards may be nested, as runs
/// are.
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
