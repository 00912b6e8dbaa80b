#include "history/posix/CRunRecorder.h"

#include "CChildProcess.h"
#include "CTempWorkDirectory.h"
#include "readFile.h"

#include <gmock/gmock.h>

#include <csignal>
#include <fstream>
#include <stdexcept>

namespace
{

using qix::CRunRecorder;
using qix::readRunHistory;
using qix::RememberedTest;
using qix::RunHistory;
using Outcome = qix::RememberedTest::Outcome;
using testing::HasSubstr;

class RunRecorder : public testing::Test
{
protected:
    void recordRun()
    {
        CRunRecorder recorder("file", 3,
                              {{"a", {2, Outcome::Passed, 17}}, {"b", {}}, {"", {}}, {"d", {}}});
        EXPECT_TRUE(recorder.isRecording());
        recorder.noteBegin(1);
        recorder.noteEnd(1, Outcome::Failed, 5);
        recorder.noteBegin(2);
        recorder.noteEnd(2, Outcome::Passed, 6);
        recorder.noteBegin(3);
    }

    static void write(std::string const& bytes)
    {
        std::ofstream("file", std::ios::binary) << bytes;
    }

    static std::string readingError()
    {
        try
        {
            readRunHistory("file");
        }
        catch (std::runtime_error const& e)
        {
            return e.what();
        }
        return std::string();
    }

    static void expect(RunHistory const& history, std::string const& id, std::uint32_t run,
                       Outcome outcome, std::uint64_t microseconds)
    {
        RememberedTest const test = history.find(id);
        EXPECT_EQ(test.run, run) << id;
        EXPECT_EQ(test.outcome, outcome) << id;
        EXPECT_EQ(test.microseconds, microseconds) << id;
    }

    test::CTempWorkDirectory m_folder;
};

TEST_F(RunRecorder, whatIsNotedIsRead)
{
    recordRun();
    RunHistory const history = readRunHistory("file");
    EXPECT_EQ(history.lastRun, 3U);
    EXPECT_EQ(history.tests.size(), 4U);
    expect(history, "a", 2, Outcome::Passed, 17);
    expect(history, "b", 3, Outcome::Failed, 0);
    expect(history, "", 3, Outcome::Passed, 6);
    expect(history, "d", 3, Outcome::Running, 0);
    expect(history, "e", 0, Outcome::Unknown, 0);
}

TEST_F(RunRecorder, whatIsNotedSurvivesAKill)
{
    test::CChildProcess child(
        []
        {
            CRunRecorder recorder("file", 1, {{"a", {}}, {"b", {}}});
            recorder.noteBegin(0);
            recorder.noteEnd(0, Outcome::Passed, 4);
            recorder.noteBegin(1);
            raise(SIGKILL);
            return 0;
        });
    child.wait();
    RunHistory const history = readRunHistory("file");
    expect(history, "a", 1, Outcome::Passed, 4);
    expect(history, "b", 1, Outcome::Running, 0);
}

TEST_F(RunRecorder, noFileIsNoHistory)
{
    EXPECT_EQ(readRunHistory("file").lastRun, 0U);
}

TEST_F(RunRecorder, onlyOneProcessRecords)
{
    CRunRecorder const first("file", 1, {{"a", {}}});
    EXPECT_TRUE(first.isRecording());
    CRunRecorder second("file", 2, {{"a", {}}});
    EXPECT_FALSE(second.isRecording());
    second.noteBegin(0);
    second.noteEnd(0, Outcome::Failed, 1);
    EXPECT_EQ(readRunHistory("file").lastRun, 1U);
}

TEST_F(RunRecorder, recordsNothingWhereItMayNotWrite)
{
    EXPECT_FALSE(CRunRecorder("missing/file", 1, {{"a", {}}}).isRecording());
}

/// Whatever of the file is lost or changed, it is refused or read, and the error names the file.
TEST_F(RunRecorder, brokenFilesDoNoHarm)
{
    recordRun();
    std::string const whole = test::readFile("file");
    for (std::size_t size = 1; size < whole.size(); ++size)
    {
        write(whole.substr(0, size));
        ASSERT_THAT(readingError(), HasSubstr("'file' is not used")) << size;
    }
    for (std::size_t i = 0; i < whole.size(); ++i)
    {
        for (char const byte : {'\0', '\x01', '\xFF', '\x7F'})
        {
            std::string changed = whole;
            changed[i] = byte;
            write(changed);
            std::string const error = readingError();
            ASSERT_TRUE(error.empty() || error.find("'file' is not used") != std::string::npos)
                << error;
        }
    }
}

TEST_F(RunRecorder, tellsWhatIsWrongWithAFile)
{
    recordRun();
    std::string const whole = test::readFile("file");
    write("short");
    EXPECT_EQ(readingError(), "what earlier runs have left in 'file' is not used: it is too short, "
                              "with 5 bytes");
    write(std::string(100, 'x'));
    EXPECT_THAT(readingError(), HasSubstr("it is no such file"));
    std::string changed = whole;
    changed[8] = 9;
    write(changed);
    EXPECT_THAT(readingError(), HasSubstr("its version is 9 and not 1"));
    changed = whole;
    changed[changed.size() - 1] = 'x';
    write(changed);
    EXPECT_THAT(readingError(), HasSubstr("its ids are not those that were written"));
    changed = whole + "x";
    write(changed);
    EXPECT_THAT(readingError(), HasSubstr("which are not as many as it tells"));
}

} // namespace
