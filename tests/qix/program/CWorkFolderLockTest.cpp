#include "program/posix/CWorkFolderLock.h"

#include "CChildProcess.h"
#include "CTempWorkDirectory.h"
#include "errorOf.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <csignal>
#include <filesystem>
#include <string>

#include <sys/wait.h>
#include <unistd.h>

namespace
{

using qix::CWorkFolderLock;
using testing::HasSubstr;

class WorkFolderLock : public testing::Test
{
protected:
    static std::string error()
    {
        return test::errorOf([] { CWorkFolderLock const lock; });
    }

    static bool isRefused() { return !error().empty(); }

    static bool isRefusedElsewhere()
    {
        return test::CChildProcess([] { return isRefused() ? 1 : 0; }).waitForExit() == 1;
    }

    test::CTempWorkDirectory m_folder;
};

TEST_F(WorkFolderLock, anotherProcessIsToldTheFolderAndWhoHoldsIt)
{
    CWorkFolderLock const lock;
    std::string const expected =
        "the working folder '" + m_folder.getPath().string() + "' is in use: process " +
        std::to_string(getpid()) +
        " is running tests in it. Let QIX_TESTWORKDIR name another folder.";
    test::CChildProcess child(
        [&expected]
        {
            EXPECT_EQ(error(), expected);
            return error() == expected ? 0 : 1;
        });
    EXPECT_EQ(child.waitForExit(), 0);
}

TEST_F(WorkFolderLock, theFolderIsFreeAfterwards)
{
    {
        CWorkFolderLock const lock;
    }
    EXPECT_FALSE(isRefusedElsewhere());
}

TEST_F(WorkFolderLock, anotherFolderIsFree)
{
    CWorkFolderLock const lock;
    std::filesystem::create_directory("other");
    std::filesystem::current_path("other");
    EXPECT_FALSE(isRefusedElsewhere());
    std::filesystem::current_path("..");
}

TEST_F(WorkFolderLock, aRunWithinARunSharesTheLock)
{
    CWorkFolderLock const lock;
    EXPECT_FALSE(isRefused());
    EXPECT_TRUE(isRefusedElsewhere());
}

TEST_F(WorkFolderLock, readingWhatIsInTheFolderDoesNotReleaseIt)
{
    CWorkFolderLock const lock;
    EXPECT_TRUE(std::filesystem::is_empty("."));
    EXPECT_TRUE(isRefusedElsewhere());
}

TEST_F(WorkFolderLock, noChildKeepsIt)
{
    std::array<int, 2> ends{};
    ASSERT_EQ(pipe(ends.data()), 0);
    test::CChildProcess run(
        [&ends]
        {
            CWorkFolderLock const lock;
            if (fork() == 0)
            {
                pid_t const left = getpid();
                EXPECT_EQ(write(ends[1], &left, sizeof left), ssize_t{sizeof left});
            }
            pause();
            return 0;
        });
    pid_t left = 0;
    ASSERT_EQ(read(ends[0], &left, sizeof left), ssize_t{sizeof left});
    EXPECT_TRUE(isRefused());
    kill(run.getId(), SIGKILL);
    EXPECT_EQ(run.waitForExit(), -SIGKILL);
    EXPECT_FALSE(isRefused());
    EXPECT_EQ(kill(left, SIGKILL), 0);
    close(ends[0]);
    close(ends[1]);
}

} // namespace
