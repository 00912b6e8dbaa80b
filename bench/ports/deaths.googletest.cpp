// What ends the process, and how; what is tested are the C++ library's ways out.

#include <gtest/gtest.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

using testing::ExitedWithCode;
using testing::KilledBySignal;

namespace
{

void complain(std::string const& what, int status)
{
    std::fprintf(stderr, "error: %s\n", what.c_str());
    std::exit(status);
}

int readThroughNoexcept() noexcept
{
    return std::stoi("not a number");
}

} // namespace

TEST(Abort, isASignal)
{
    EXPECT_EXIT(std::abort(), KilledBySignal(SIGABRT), "");
}

TEST(Abort, isWhatTerminateDoes)
{
    EXPECT_EXIT(std::terminate(), KilledBySignal(SIGABRT), "");
    EXPECT_EXIT(readThroughNoexcept(), KilledBySignal(SIGABRT), "stoi");
}

TEST(Abort, isWhatAThreadThatIsNotJoinedDoes)
{
    EXPECT_EXIT({ std::thread forgotten([] {}); }, KilledBySignal(SIGABRT), "");
}

TEST(Signals, endTheProcess)
{
    for (int const signal : {SIGTERM, SIGKILL, SIGINT, SIGUSR1})
    {
        EXPECT_EXIT(std::raise(signal), KilledBySignal(signal), "");
    }
}

// The second check is wrong on purpose: it is another signal.
TEST(Signals, differ)
{
    EXPECT_EXIT(std::raise(SIGTERM), KilledBySignal(SIGTERM), "");
    EXPECT_EXIT(std::raise(SIGTERM), KilledBySignal(SIGINT), "");
}

TEST(Exit, hasAStatus)
{
    EXPECT_EXIT(std::exit(0), ExitedWithCode(0), "");
    EXPECT_EXIT(std::_Exit(7), ExitedWithCode(7), "");
    EXPECT_EXIT(std::quick_exit(3), ExitedWithCode(3), "");
}

TEST(Exit, writesWhy)
{
    EXPECT_EXIT(complain("no file", 2), ExitedWithCode(2), "error: no file");
    EXPECT_EXIT(complain("no room", 3), ExitedWithCode(3), "room");
}

// Wrong on purpose: in the status, in the text, and in that it does not end at all.
TEST(Exit, isCompared)
{
    EXPECT_EXIT(complain("no file", 2), ExitedWithCode(3), "no file");
    EXPECT_EXIT(complain("no file", 2), ExitedWithCode(2), "no room");
    EXPECT_EXIT(std::string("goes on").clear(), ExitedWithCode(0), "");
}

TEST(Exit, canEndTheTest)
{
    ASSERT_EXIT(std::exit(1), ExitedWithCode(1), "");
    ASSERT_EXIT(std::exit(1), ExitedWithCode(2), "");
    EXPECT_TRUE(false);
}

TEST(Child, changesNothingHere)
{
    std::vector<int> numbers = {1};
    EXPECT_EXIT(
        {
            numbers.push_back(2);
            std::exit(static_cast<int>(numbers.size()));
        },
        ExitedWithCode(2), "");
    EXPECT_EQ(numbers.size(), 1U);
}
