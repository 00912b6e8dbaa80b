#include <qix/main.h>

#include "runner/DoMainTest.h"

#include "readFile.h"

#include <gmock/gmock.h>

#include <csignal>

#include <sys/socket.h>
#include <sys/stat.h>

namespace
{

using qix::CTestItemGroup;
using test::CChildProcess;
using test::CFunctionTestItem;
using test::DoMain;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

class RunMain : public DoMain
{
protected:
    int runMain(std::vector<std::string> arguments)
    {
        CChildProcess child(
            [this, &arguments]
            {
                registerTests();
                std::vector<char*> argv;
                for (std::string& argument : arguments)
                {
                    argv.push_back(argument.data());
                }
                argv.push_back(nullptr);
                dup2(STDOUT_FILENO, STDERR_FILENO);
                if (m_isOutputLost)
                {
                    dup2(open("/dev/full", O_WRONLY), STDOUT_FILENO);
                }
                return qix::runMain(static_cast<int>(arguments.size()), argv.data());
            });
        return child.waitForExit();
    }

    bool m_isOutputLost = false;

    void expectHelpInsteadOfMenu()
    {
        EXPECT_EQ(runMain({"program"}), 2);
        EXPECT_THAT(output(), HasSubstr("program '*'"));
        EXPECT_THAT(output(), Not(HasSubstr("Please select")));
    }
};

TEST_F(RunMain, passesTheArgumentsBehindTheName)
{
    EXPECT_EQ(runMain({"program", "0", "1"}), 0);
    EXPECT_EQ(output(), "Num: 0\nNum: 1\n..\n2 OK, 0 Failed, 0 Aborted, 0 Skipped\n\n");
}

TEST_F(RunMain, tellsByItsStatus)
{
    m_failing = true;
    EXPECT_EQ(runMain({"program", "*"}), 1);
    EXPECT_EQ(runMain({"program", "bogus"}), 1);
}

TEST_F(RunMain, exceptionEndsInOneLine)
{
    EXPECT_EQ(runMain({"program", "12ab-x"}), 2);
    EXPECT_THAT(output(), HasSubstr("basic_string::substr"));
    std::string const text = output();
    EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 1);
}

TEST_F(RunMain, helpNeedsNoNameOfTheProgram)
{
    EXPECT_EQ(runMain({}), 2);
    EXPECT_THAT(output(), HasSubstr("  test '*'"));
}

TEST_F(RunMain, failureCountsMoreThanLostOutput)
{
    m_failing = true;
    m_isOutputLost = true;
    EXPECT_EQ(runMain({"program", "*"}), 1);
    m_failing = false;
    EXPECT_EQ(runMain({"program", "*"}), 2);
}

TEST_F(RunMain, errorStandsBehindWhatWasPrintedBefore)
{
    EXPECT_EQ(runMain({"program", "0 12ab-x"}), 2);
    EXPECT_THAT(output(), StartsWith("Num: 0\nError: "));
}

TEST_F(RunMain, showsTheMenuToAFileWithLines)
{
    type("0\n");
    EXPECT_EQ(runMain({"program"}), 0);
}

TEST_F(RunMain, showsHelpWhenInputIsTheNullDevice)
{
    redirectInput("/dev/null");
    expectHelpInsteadOfMenu();
}

TEST_F(RunMain, showsHelpWhenInputIsClosed)
{
    close(STDIN_FILENO);
    expectHelpInsteadOfMenu();
}

TEST_F(RunMain, showsHelpWhenTheFileIsEmpty)
{
    type("");
    expectHelpInsteadOfMenu();
}

TEST_F(RunMain, showsHelpWhenInputIsAFolder)
{
    redirectInput(".");
    expectHelpInsteadOfMenu();
}

TEST_F(RunMain, showsHelpWhenNobodyWritesToThePipe)
{
    int ends[2];
    ASSERT_EQ(pipe(ends), 0);
    dup2(ends[0], STDIN_FILENO);
    close(ends[0]);
    close(ends[1]);
    expectHelpInsteadOfMenu();
}

TEST_F(RunMain, showsHelpWhenTheConnectionHasEnded)
{
    int ends[2];
    ASSERT_EQ(socketpair(AF_UNIX, SOCK_STREAM, 0, ends), 0);
    dup2(ends[0], STDIN_FILENO);
    close(ends[0]);
    close(ends[1]);
    expectHelpInsteadOfMenu();
}

TEST_F(RunMain, readsWhatADeadWriterLeftInThePipe)
{
    int ends[2];
    ASSERT_EQ(pipe(ends), 0);
    ASSERT_EQ(write(ends[1], "0\n", 2), 2);
    dup2(ends[0], STDIN_FILENO);
    close(ends[0]);
    close(ends[1]);
    EXPECT_EQ(runMain({"program"}), 0);
}

TEST_F(RunMain, showsTheMenuBeforeTheWriterHasWritten)
{
    int ends[2];
    ASSERT_EQ(pipe2(ends, O_CLOEXEC), 0);
    dup2(ends[0], STDIN_FILENO);
    int outputEnds[2];
    ASSERT_EQ(pipe(outputEnds), 0);
    CChildProcess child(
        [&]
        {
            close(ends[1]);
            dup2(outputEnds[1], STDOUT_FILENO);
            registerTests();
            char name[] = "program";
            char* argv[] = {name, nullptr};
            return qix::runMain(1, argv);
        });
    close(outputEnds[1]);
    std::string text;
    char byte = 0;
    while (text.find("(3) three\n") == std::string::npos && read(outputEnds[0], &byte, 1) == 1)
    {
        text += byte;
    }
    ASSERT_THAT(text, HasSubstr("(3) three\n"));
    ASSERT_EQ(write(ends[1], "0\n", 2), 2);
    EXPECT_EQ(child.waitForExit(), 0);
    close(ends[0]);
    close(ends[1]);
    close(outputEnds[0]);
}

} // namespace
