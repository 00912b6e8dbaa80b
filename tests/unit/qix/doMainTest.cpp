#include <qix/CConsoleTestRunner.h>
#include <qix/CTestItemGroup.h>
#include <qix/main.h>

#include "CChildProcess.h"
#include "CFakeAccounts.h"
#include "CFunctionTestItem.h"
#include "COutputCapture.h"
#include "CScopedEnvVar.h"
#include "CTempWorkDirectory.h"
#include "readFile.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <clocale>
#include <csignal>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include <fcntl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

namespace
{

namespace fs = std::filesystem;
using qix::CConsoleTestRunner;
using qix::CTestItemGroup;
using test::CChildProcess;
using test::CFunctionTestItem;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

constexpr int threwLogicError = 40;

/// Whole starts of a test executable, each in a child process that is user alice, or whom the
/// test makes of her.
class DoMain : public testing::Test
{
protected:
    using Arguments = std::vector<char const*>;

    /// \return the exit status: 0 when doMain returned true, 1 for false
    int doMain(Arguments const& arguments)
    {
        return inChild(
            [&arguments]
            {
                auto lines = arguments;
                return CConsoleTestRunner::doMain(static_cast<int>(lines.size()), lines.data());
            });
    }

    template <typename Main>
    int inChild(Main const& main)
    {
        CChildProcess child(
            [this, &main]
            {
                test::CFakeAccounts accounts(1234, m_userName);
                accounts.m_hasEntry = m_hasEntry;
                registerTests();
                try
                {
                    return main() ? 0 : 1;
                }
                catch (std::logic_error const& e)
                {
                    std::puts(e.what());
                    return threwLogicError;
                }
            });
        return child.waitForExit();
    }

    void registerTests() const
    {
        for (char const* const name : {"zero", "one", "two", "three"})
        {
            CTestItemGroup::global()->addSubItem(zel::newObj<CFunctionTestItem>(name));
        }
        if (m_failing)
        {
            CTestItemGroup::global()->addSubItem(
                zel::newObj<CFunctionTestItem>("failing", [](CFunctionTestItem&, qix::ITestRunner&)
                                               { throw std::runtime_error("boom"); }));
        }
    }

    /// What the child reads from its standard input.
    void type(std::string const& text)
    {
        std::ofstream("input") << text;
        redirectInput("input");
    }

    static void redirectInput(char const* path)
    {
        int const file = open(path, O_RDONLY | O_CLOEXEC);
        dup2(file, STDIN_FILENO);
        close(file);
    }

    ~DoMain() override
    {
        dup2(m_oldInput, STDIN_FILENO);
        close(m_oldInput);
    }

    std::string output() const { return m_output.getText(); }

    std::string m_userName = "alice";
    bool m_hasEntry = true;
    bool m_failing = false;
    test::CTempWorkDirectory m_folder;
    test::COutputCapture m_output;

private:
    int m_oldInput = dup(STDIN_FILENO);
    test::CScopedEnvVar m_workDirectory{"QIX_TESTWORKDIR", std::nullopt};
};

TEST_F(DoMain, worksInTheFolderOfTheUser)
{
    EXPECT_EQ(doMain({"0"}), 0);
    EXPECT_TRUE(fs::is_directory("testWork/alice"));
    EXPECT_EQ(test::readFile("testWork/alice/testLog.txt"),
              "zero\n\n\n1 OK, 0 Failed, 0 Aborted, 0 Skipped\n\n");
}

TEST_F(DoMain, createsFoldersThatTheUmaskNarrows)
{
    EXPECT_EQ(inChild(
                  []
                  {
                      umask(022);
                      char const* const line = "0";
                      char const* lines[] = {line};
                      return CConsoleTestRunner::doMain(1, lines);
                  }),
              0);
    for (char const* const folder : {"testWork", "testWork/alice"})
    {
        EXPECT_EQ(fs::status(folder).permissions(), static_cast<fs::perms>(0755)) << folder;
    }
}

TEST_F(DoMain, variableNamesTheBaseFolder)
{
    test::CScopedEnvVar const variable("QIX_TESTWORKDIR", m_folder.getPath() / "w");
    EXPECT_EQ(doMain({"0"}), 0);
    EXPECT_TRUE(fs::exists("w/alice/testLog.txt"));
    EXPECT_FALSE(fs::exists("testWork"));
}

TEST_F(DoMain, emptyVariableLeadsToTheRoot)
{
    m_userName = "no-such-user/no-such-folder";
    test::CScopedEnvVar const variable("QIX_TESTWORKDIR", "");
    EXPECT_EQ(doMain({"0"}), 1);
    EXPECT_EQ(output(), "Error: could not change working directory to "
                        "'/no-such-user/no-such-folder'\n");
}

TEST_F(DoMain, missingParentIsAnError)
{
    test::CScopedEnvVar const variable("QIX_TESTWORKDIR", "a/b");
    EXPECT_EQ(doMain({"0"}), 1);
    EXPECT_EQ(output(), "Error: could not change working directory to 'a/b/alice'\n");
    EXPECT_FALSE(fs::exists("a"));
}

TEST_F(DoMain, folderIsNeverMistakenForAnother)
{
    test::CScopedEnvVar const variable("QIX_TESTWORKDIR", "w\xff");
    EXPECT_EQ(doMain({"0"}), 1);
    EXPECT_EQ(output(), "Error: could not change working directory to 'w\xff/alice'\n");
    EXPECT_THAT(std::vector<fs::path>(fs::directory_iterator("."), {}), IsEmpty());
}

TEST_F(DoMain, folderMayHaveAnyName)
{
    test::CScopedEnvVar const variable("QIX_TESTWORKDIR", "f\xc3\xbcr alle");
    EXPECT_EQ(inChild(
                  []
                  {
                      std::setlocale(LC_CTYPE, "");
                      char const* line = "0";
                      return CConsoleTestRunner::doMain(1, &line);
                  }),
              0);
    EXPECT_TRUE(fs::exists("f\xc3\xbcr alle/alice/testLog.txt"));
}

TEST_F(DoMain, userWithoutANameIsUnderscore)
{
    m_hasEntry = false;
    EXPECT_EQ(doMain({"0"}), 0);
    EXPECT_TRUE(fs::exists("testWork/_/testLog.txt"));
}

TEST_F(DoMain, userWithAnEmptyNameIsUnderscore)
{
    m_userName = "";
    EXPECT_EQ(doMain({"0"}), 0);
    EXPECT_TRUE(fs::exists("testWork/_/testLog.txt"));
}

TEST_F(DoMain, starRunsEverythingWithoutTheMenu)
{
    EXPECT_EQ(doMain({"*"}), 0);
    EXPECT_EQ(output(), "....\n4 OK, 0 Failed, 0 Aborted, 0 Skipped\n\n");
}

TEST_F(DoMain, tellsThatATestFailed)
{
    m_failing = true;
    EXPECT_EQ(doMain({"*"}), 1);
    EXPECT_THAT(output(), HasSubstr("4 OK, 1 Failed"));
}

TEST_F(DoMain, argumentsAddUp)
{
    EXPECT_EQ(doMain({"3", "0-1", "+"}), 0);
    std::string const separate = output();
    EXPECT_EQ(doMain({"3 0-1 +"}), 0);
    EXPECT_EQ(output(), separate + separate);
}

TEST_F(DoMain, sameArgumentTwiceSelectsNothing)
{
    EXPECT_EQ(doMain({"3", "3"}), 0);
    EXPECT_EQ(output(), "Num: 3\nNum: 3\n\n0 OK, 0 Failed, 0 Aborted, 0 Skipped\n\n");
}

TEST_F(DoMain, refusedArgumentRunsNothingButAllAreRead)
{
    EXPECT_EQ(doMain({"3", "bogus"}), 1);
    EXPECT_EQ(output(), "Num: 3\nSearch term: bogus\n\nSearch results:\n");
    EXPECT_EQ(doMain({"bogus", "3"}), 1);
    EXPECT_THAT(output(), testing::EndsWith("Search term: bogus\n\nSearch results:\nNum: 3\n"));
    EXPECT_FALSE(fs::exists("testWork/alice/testLog.txt"));
}

TEST_F(DoMain, emptyArgumentIsRefused)
{
    EXPECT_EQ(doMain({""}), 1);
    EXPECT_EQ(output(), "Nothing selected.\n");
}

TEST_F(DoMain, wordListsTests)
{
    EXPECT_EQ(doMain({"t"}), 1);
    EXPECT_EQ(output(), "Search term: t\n\nSearch results:\n(2) two\n(3) three\n");
}

TEST_F(DoMain, nullArgumentIsALogicError)
{
    EXPECT_EQ(doMain({"0", nullptr}), threwLogicError);
    EXPECT_EQ(output(), "Num: 0\nbasic_string::_M_construct null not valid\n");
}

TEST_F(DoMain, menuIsShownWithoutArguments)
{
    type("\nt\n9\n1 2\n");
    EXPECT_EQ(doMain({}), 0);
    EXPECT_EQ(output(), "\n"
                        "Please select the tests to be run.\n"
                        "Enter numbers or * (=all), separated by spaces.\n"
                        "You can also enter ranges like this: \"first-last\"\n"
                        "Multiple occurrences toggle inclusion.\n"
                        "Enter a '+' in addition to the selection to also run\n"
                        "long tests that take a while to complete.\n"
                        "Enter an 'i' in addition to the selection to also run\n"
                        "interactive tests that require human participation.\n"
                        "Enter an 'I' in addition to the selection to ONLY run\n"
                        "interactive tests.\n"
                        "Type a string that does not begin with a number to list\n"
                        "all tests that contain that string.\n"
                        "\n"
                        "\n"
                        "(0) zero\n"
                        "(1) one\n"
                        "(2) two\n"
                        "(3) three\n"
                        "Nothing selected.\n"
                        "Search term: t\n"
                        "\nSearch results:\n(2) two\n(3) three\n"
                        "Invalid selection: 9\n"
                        "Num: 1\nNum: 2\n"
                        "..\n2 OK, 0 Failed, 0 Aborted, 0 Skipped\n\n");
}

TEST_F(DoMain, negativeCountShowsTheMenuToo)
{
    type("0\n");
    EXPECT_EQ(inChild([] { return CConsoleTestRunner::doMain(-1, nullptr); }), 0);
    EXPECT_THAT(output(), HasSubstr("Please select"));
}

/// The end of a dialogue that would never end of itself: enough has been printed.
TEST_F(DoMain, exhaustedInputIsReadAsEmptyLines)
{
    type("bogus");
    int ends[2];
    ASSERT_EQ(pipe(ends), 0);
    CChildProcess child(
        [&ends]
        {
            dup2(ends[1], STDOUT_FILENO);
            close(ends[0]);
            return CConsoleTestRunner::doMain(0, nullptr) ? 0 : 1;
        });
    close(ends[1]);
    std::string text;
    char block[256];
    while (text.size() < 2000)
    {
        ssize_t const length = read(ends[0], block, sizeof(block));
        ASSERT_GT(length, 0);
        text.append(block, static_cast<std::size_t>(length));
    }
    kill(child.getId(), SIGKILL);
    child.waitForExit();
    close(ends[0]);
    EXPECT_THAT(text, HasSubstr("Search term: bogus\n\nSearch results:\n"
                                "Nothing selected.\nNothing selected.\n"));
}

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
