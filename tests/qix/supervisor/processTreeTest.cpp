#include "supervisor/posix/processTree.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>

#include <sys/wait.h>
#include <unistd.h>

namespace
{

using testing::Contains;
using testing::HasSubstr;
using testing::Not;

TEST(ProcessTree, whatASystemCannotReadIsEmpty)
{
    // The first page of the memory can never be read, and the file be opened nevertheless, as those
    // of a process that ends just then.
    EXPECT_EQ(qix::readOfProcess(getpid(), "mem"), "");
    EXPECT_EQ(qix::readOfProcess(getpid(), "noSuchFile"), "");
    EXPECT_THAT(qix::readOfProcess(getpid(), "stat"), HasSubstr(std::to_string(getppid())));
}

TEST(ProcessTree, descendantsAreThoseOfChildren)
{
    pid_t const child = fork();
    if (child == 0)
    {
        static_cast<void>(fork());
        pause();
        _exit(0);
    }
    std::vector<pid_t> processes;
    while (processes.size() < 2)
    {
        processes = qix::listDescendants(getpid());
    }
    EXPECT_EQ(processes.front(), child);
    EXPECT_THAT(processes, Not(Contains(getpid())));
    for (pid_t const process : processes)
    {
        kill(process, SIGKILL);
    }
    waitpid(child, nullptr, 0);
}

} // namespace
