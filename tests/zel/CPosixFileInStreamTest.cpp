#include <zel/CPosixFileInStream.h>

#include "CTempWorkDirectory.h"
#include "errorOf.h"
#include "passesAsOrdinaryUser.h"
#include "readFile.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <string>
#include <thread>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace
{

namespace fs = std::filesystem;

using test::errorOf;
using zel::CPosixFileInStream;

void ignoreSignal(int)
{
}

/// Returns when the system has put the thread of this process to sleep, in a system call say.
void waitUntilAsleep(pid_t thread)
{
    std::string const path = "/proc/self/task/" + std::to_string(thread) + "/stat";
    for (char state = 'R'; state != 'S'; std::this_thread::yield())
    {
        // The state stands behind the name, which is in parentheses.
        std::string const line = test::readFile(path);
        state = line.at(line.rfind(')') + 2);
    }
}

class CPosixFileInStreamTest : public testing::Test
{
protected:
    CPosixFileInStreamTest() { std::ofstream("file") << "0123456789"; }

    test::CTempWorkDirectory const m_folder;
};

TEST_F(CPosixFileInStreamTest, readsUntilTheCountIsFullOrTheFileEnds)
{
    CPosixFileInStream file("file");
    EXPECT_EQ(file.getLength(), 10);
    std::string buffer(20, '-');
    EXPECT_EQ(file.read(buffer.data(), 4), 4);
    EXPECT_EQ(file.read(buffer.data() + 4, 16), 6);
    EXPECT_EQ(buffer, "0123456789----------");
    EXPECT_EQ(file.read(buffer.data(), 16), 0);
    EXPECT_EQ(file.getLength(), 10);
}

TEST_F(CPosixFileInStreamTest, readsNothingForACountThatIsNotAboveZero)
{
    CPosixFileInStream file("file");
    EXPECT_EQ(file.read(nullptr, 0), 0);
    EXPECT_EQ(file.read(nullptr, -1), 0);
}

TEST_F(CPosixFileInStreamTest, lengthHas64Bits)
{
    constexpr std::int64_t length = (std::int64_t{5} << 30) + 7;
    ASSERT_EQ(truncate("file", length), 0);
    EXPECT_EQ(CPosixFileInStream("file").getLength(), length);
}

TEST_F(CPosixFileInStreamTest, isNotPassedToChildProcesses)
{
    CPosixFileInStream const file("file");
    for (fs::directory_entry const& entry : fs::directory_iterator("/proc/self/fd"))
    {
        std::error_code ignored;
        if (fs::read_symlink(entry.path(), ignored) == fs::absolute("file"))
        {
            int const descriptor = std::stoi(entry.path().filename());
            EXPECT_NE(fcntl(descriptor, F_GETFD) & FD_CLOEXEC, 0);
            return;
        }
    }
    FAIL() << "the open file is not found";
}

TEST_F(CPosixFileInStreamTest, openingTellsWhatIsWrong)
{
    EXPECT_EQ(errorOf([] { CPosixFileInStream("missing"); }),
              "Unable to open the file 'missing': No such file or directory.");
    EXPECT_EQ(errorOf([] { CPosixFileInStream("."); }),
              "Unable to open the file '.': Is a directory.");
    fs::permissions(".", fs::perms::all);
    fs::permissions("file", fs::perms::none);
    EXPECT_TRUE(test::passesAsOrdinaryUser(
        []
        {
            EXPECT_EQ(errorOf([] { CPosixFileInStream("file"); }),
                      "Unable to open the file 'file': Permission denied.");
        }));
}

TEST_F(CPosixFileInStreamTest, readingTellsWhatIsWrong)
{
    CPosixFileInStream file("/proc/self/mem");
    char byte = 0;
    EXPECT_EQ(errorOf([&] { file.read(&byte, 1); }),
              "Unable to read the file '/proc/self/mem': Input/output error.");
}

TEST_F(CPosixFileInStreamTest, aPipeHasNoLength)
{
    mkfifo("pipe", 0666);
    int const writer = open("pipe", O_RDWR);
    CPosixFileInStream const pipe("pipe");
    EXPECT_EQ(errorOf([&] { static_cast<void>(pipe.getLength()); }),
              "Unable to determine the length of the file 'pipe': Illegal seek.");
    close(writer);
}

TEST_F(CPosixFileInStreamTest, signalsDoNotEndAReading)
{
    struct sigaction interrupting = {};
    interrupting.sa_handler = &ignoreSignal;
    sigaction(SIGUSR1, &interrupting, nullptr);
    mkfifo("pipe", 0666);
    int const writer = open("pipe", O_RDWR);
    CPosixFileInStream pipe("pipe");
    std::thread disturber(
        [reader = gettid(), writer]
        {
            for (char const byte : std::string("abcd"))
            {
                waitUntilAsleep(reader);
                EXPECT_EQ(tgkill(getpid(), reader, SIGUSR1), 0);
                waitUntilAsleep(reader);
                EXPECT_EQ(write(writer, &byte, 1), 1);
            }
        });
    std::string buffer(4, '-');
    EXPECT_EQ(errorOf([&] { EXPECT_EQ(pipe.read(buffer.data(), 4), 4); }), "");
    disturber.join();
    EXPECT_EQ(buffer, "abcd");
    close(writer);
}

} // namespace
