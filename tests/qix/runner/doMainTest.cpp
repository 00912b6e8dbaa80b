#include "runner/DoMainTest.h"
#include "runner/CNotingListener.h"

#include "readFile.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <clocale>
#include <csignal>
#include <cstring>
#include <filesystem>
#include <iostream>
#include <utility>

#include <sys/stat.h>

namespace
{

namespace fs = std::filesystem;
using qix::CConsoleTestRunner;
using qix::CTestItemGroup;
using test::CChildProcess;
using test::CFunctionTestItem;
using test::DoMain;
using test::threwLogicError;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

/// So long a run may take before it counts as hanging.
constexpr unsigned patience = 60; // seconds

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

TEST_F(DoMain, isListenedToAndFailsWithAListener)
{
    EXPECT_EQ(inChild(
                  []
                  {
                      test::CScopedListener const listener;
                      std::string told;
                      listener->m_whenTold = [&told](std::string const& line)
                      {
                          told += line + "\n";
                          throw std::runtime_error("the disk is full");
                      };
                      char const* lines[] = {"0"};
                      bool const succeeded = CConsoleTestRunner::doMain(1, lines);
                      std::ofstream("told.txt") << told;
                      return succeeded;
                  }),
              1);
    EXPECT_EQ(test::readFile("testWork/alice/told.txt"),
              "run begins\nzero begins\nzero ok\nrun ends: 1 0 0 0\n");
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

TEST_F(DoMain, menuShowsWhatALineDidBeforeItReadsTheNext)
{
    int inputEnds[2];
    int outputEnds[2];
    ASSERT_EQ(pipe2(inputEnds, O_CLOEXEC), 0);
    ASSERT_EQ(pipe2(outputEnds, O_CLOEXEC), 0);
    CChildProcess child(
        [&]
        {
            alarm(patience);
            dup2(inputEnds[0], STDIN_FILENO);
            dup2(outputEnds[1], STDOUT_FILENO);
            // Reading from the one would flush the other.
            std::cin.tie(nullptr);
            registerTests();
            return CConsoleTestRunner::doMain(0, nullptr) ? 0 : 1;
        });
    close(outputEnds[1]);
    for (char const* const line : {"two\n", "0\n"})
    {
        std::string text;
        char byte = 0;
        while (text.find("(2) two\n") == std::string::npos && read(outputEnds[0], &byte, 1) == 1)
        {
            text += byte;
        }
        ASSERT_EQ(write(inputEnds[1], line, std::strlen(line)),
                  static_cast<ssize_t>(std::strlen(line)));
    }
    EXPECT_EQ(child.waitForExit(), 0);
    for (int const end : {inputEnds[0], inputEnds[1], outputEnds[0]})
    {
        close(end);
    }
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

} // namespace
