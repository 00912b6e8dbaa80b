#include <zel/debug.h>

#include "CChildProcess.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <csignal>

#include <sys/ptrace.h>
#include <sys/wait.h>

namespace
{

using test::CChildProcess;

bool letItselfBeTraced()
{
    return ptrace(PTRACE_TRACEME, 0, nullptr, nullptr) == 0;
}

/// Lets itself be traced, and stops once so that the tracer can take over.
int breakUnderTracer()
{
    if (!letItselfBeTraced())
    {
        return 1;
    }
    raise(SIGSTOP);
    zel::debugBreak();
    return 0;
}

int breakWithTrapBlocked()
{
    sigset_t trap;
    sigemptyset(&trap);
    sigaddset(&trap, SIGTRAP);
    sigprocmask(SIG_BLOCK, &trap, nullptr);
    int const status = breakUnderTracer();
    sigset_t now;
    sigprocmask(SIG_BLOCK, nullptr, &now);
    return status == 0 && sigismember(&now, SIGTRAP) == 1 ? 0 : 1;
}

int breakWithTrapPending()
{
    sigset_t trap;
    sigemptyset(&trap);
    sigaddset(&trap, SIGTRAP);
    sigprocmask(SIG_BLOCK, &trap, nullptr);
    raise(SIGTRAP);
    return breakUnderTracer();
}

void resume(CChildProcess& child, int signal)
{
    ASSERT_EQ(ptrace(PTRACE_CONT, child.getId(), nullptr, signal), 0) << errno;
}

void expectStop(CChildProcess& child, int signal)
{
    int const status = child.wait();
    ASSERT_TRUE(WIFSTOPPED(status)) << "status " << status;
    ASSERT_EQ(WSTOPSIG(status), signal);
}

/// \param passOn  the tracer gives the signal to the process, as strace does; a debugger keeps it
void traceOneBreak(int (*work)(), bool passOn)
{
    CChildProcess child(work);
    ASSERT_NO_FATAL_FAILURE(expectStop(child, SIGSTOP));
    ASSERT_NO_FATAL_FAILURE(resume(child, 0));
    ASSERT_NO_FATAL_FAILURE(expectStop(child, SIGTRAP)) << "debugBreak did not stop";
    ASSERT_NO_FATAL_FAILURE(resume(child, passOn ? SIGTRAP : 0));
    EXPECT_EQ(child.waitForExit(), 0);
}

class debugBreakUnderTracer : public testing::Test
{
protected:
    void SetUp() override
    {
        if (CChildProcess([] { return letItselfBeTraced() ? 0 : 1; }).waitForExit() != 0)
        {
            GTEST_SKIP() << "tracing is not allowed here";
        }
    }
};

TEST(debugBreak, returnsWithoutADebugger)
{
    EXPECT_EQ(CChildProcess(
                  []
                  {
                      zel::debugBreak();
                      return 0;
                  })
                  .waitForExit(),
              0);
}

TEST_F(debugBreakUnderTracer, stopsInADebuggerAndGoesOn)
{
    traceOneBreak(&breakUnderTracer, false);
}

TEST_F(debugBreakUnderTracer, doesNotEndAProcessThatIsOnlyTraced)
{
    traceOneBreak(&breakUnderTracer, true);
}

TEST_F(debugBreakUnderTracer, stopsAlsoWhereTheSignalIsBlocked)
{
    traceOneBreak(&breakWithTrapBlocked, false);
    traceOneBreak(&breakWithTrapBlocked, true);
}

TEST_F(debugBreakUnderTracer, bearsASignalThatHasWaited)
{
    CChildProcess child(&breakWithTrapPending);
    ASSERT_NO_FATAL_FAILURE(expectStop(child, SIGSTOP));
    ASSERT_NO_FATAL_FAILURE(resume(child, 0));
    ASSERT_NO_FATAL_FAILURE(expectStop(child, SIGTRAP));
    ASSERT_NO_FATAL_FAILURE(resume(child, SIGTRAP));
    ASSERT_NO_FATAL_FAILURE(expectStop(child, SIGTRAP));
    ASSERT_NO_FATAL_FAILURE(resume(child, SIGTRAP));
    EXPECT_EQ(child.waitForExit(), 0);
}

} // namespace
