#include "guards/posix/CExitGuard.h"

#include "guards/exitStatus.h"

#include <atomic>
#include <cstdio>
#include <cstdlib>

#include <sys/types.h>
#include <unistd.h>

namespace qix
{

namespace
{

constexpr pid_t none = 0;

std::atomic<pid_t> g_runningProcess = none;

/// Its destructor is a part of exit(). Made while the library loads, it is destroyed after the
/// static objects of the test executable.
struct EndOfProcess
{
    ~EndOfProcess()
    {
        if (g_runningProcess == getpid())
        {
            std::fputs(
                "Error: the test run was ended by a call of exit(); the last line of the log "
                "names the test.\n",
                stderr);
            std::fflush(nullptr);
            std::_Exit(exitNoVerdict);
        }
    }
};

EndOfProcess const endOfProcess;

} // namespace

CExitGuard::CExitGuard() noexcept : m_outerProcess(g_runningProcess.exchange(getpid()))
{
}

CExitGuard::~CExitGuard()
{
    g_runningProcess = m_outerProcess;
}

} // namespace qix
