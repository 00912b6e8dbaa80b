#include "guards/posix/CForkGuard.h"

#include <atomic>
#include <cstdio>
#include <cstdlib>

#include <pthread.h>

namespace qix
{

namespace
{

constexpr int exitStrayProcess = 2;

/// How many forks lie between the start of the program and this process. Counted, because asking
/// for the process's number costs a system call for each test.
std::atomic<unsigned> g_forks = 0;

void countFork() noexcept
{
    ++g_forks;
}

struct ForksCountedFromLoadOn
{
    ForksCountedFromLoadOn() noexcept { pthread_atfork(nullptr, nullptr, &countFork); }
};

ForksCountedFromLoadOn const forksCountedFromLoadOn;

} // namespace

CForkGuard::CForkGuard() noexcept : m_forks(g_forks)
{
}

CForkGuard::~CForkGuard()
{
    if (g_forks != m_forks)
    {
        std::fputs("Error: a process that a test has forked came back from the test; it ends here. "
                   "Let it call _exit().\n",
                   stderr);
        std::_Exit(exitStrayProcess);
    }
}

} // namespace qix
