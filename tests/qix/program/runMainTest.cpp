#include <qix/main.h>
#include <zel/thread.h>

#include "runner/DoMainTest.h"

#include "readFile.h"

#include <gmock/gmock.h>

#include <clocale>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>

#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>

namespace
{

namespace fs = std::filesystem;
using qix::CTestItemGroup;
using test::CChildProcess;
using test::CFunctionTestItem;
using test::DoMain;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

/// So long a run may take before it counts as hanging.
constexpr unsigned patience = 60; // seconds

/// Runs the first test as a test executable inside the process does it.
int runFirstTest()
{
    char name[] = "program";
    char line[] = "0";
    char* argv[] = {name, line, nullptr};
    return qix::runMain(2, argv);
}

/// Whether the process sleeps in a system call: there is nothing else that the menu waits for.
bool isAsleep(pid_t process)
{
    std::string const status = test::readFile("/proc/" + std::to_string(process) + "/stat");
    return status.at(status.rfind(')') + 2) == 'S';
}

void waitUntilItReads(CChildProcess const& child)
{
    while (!isAsleep(child.getId()))
    {
        zel::threadYield(true);
    }
}

class RunMain : public DoMain
{
protected:
    int runMain(std::vector<std::string> arguments)
    {
        CChildProcess child(
            [this, &arguments]
            {
                alarm(patience);
                registerTests();
                for (auto const& item : m_items)
                {
                    CTestItemGroup::global()->addSubItem(item);
                }
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

    /// Adds a test behind the four that are always there.
    void add(CFunctionTestItem::Work const& work)
    {
        m_items.push_back(zel::newObj<CFunctionTestItem>("item", work));
    }

    std::vector<zel::P<CFunctionTestItem>> m_items;
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

TEST_F(RunMain, takesNothingButTheCharactersFromTheLocale)
{
    test::CScopedEnvVar const variable("LC_ALL", "C.UTF-8");
    add(
        [](CFunctionTestItem&, qix::ITestRunner&)
        {
            std::printf("%s and %s\n", std::setlocale(LC_CTYPE, nullptr),
                        std::setlocale(LC_NUMERIC, nullptr));
        });
    EXPECT_EQ(runMain({"program", "4"}), 0);
    EXPECT_THAT(output(), HasSubstr("\nC.UTF-8 and C\n"));
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

TEST_F(RunMain, goesOnWaitingWhenASignalInterruptsTheMenu)
{
    int inputEnds[2];
    int outputEnds[2];
    int signalEnds[2];
    ASSERT_EQ(pipe2(inputEnds, O_CLOEXEC), 0);
    ASSERT_EQ(pipe2(outputEnds, O_CLOEXEC), 0);
    ASSERT_EQ(pipe2(signalEnds, O_CLOEXEC), 0);
    dup2(inputEnds[0], STDIN_FILENO);
    static int handled;
    handled = signalEnds[1];
    CChildProcess child(
        [&]
        {
            alarm(patience);
            struct sigaction action = {};
            action.sa_handler = [](int) { static_cast<void>(!write(handled, "!", 1)); };
            sigaction(SIGWINCH, &action, nullptr);
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
    waitUntilItReads(child);
    kill(child.getId(), SIGWINCH);
    ASSERT_EQ(read(signalEnds[0], &byte, 1), 1);
    ASSERT_EQ(write(inputEnds[1], "0\n", 2), 2);
    while (read(outputEnds[0], &byte, 1) == 1)
    {
        text += byte;
    }
    EXPECT_EQ(child.waitForExit(), 0);
    EXPECT_THAT(text, HasSubstr("(3) three\nNum: 0\n"));
    for (int const end : {inputEnds[0], inputEnds[1], outputEnds[0], signalEnds[0], signalEnds[1]})
    {
        close(end);
    }
}

TEST_F(RunMain, anInnerRunLeavesTheOuterOneGuarded)
{
    add(
        [](CFunctionTestItem&, qix::ITestRunner&)
        {
            runFirstTest();
            std::exit(0);
        });
    EXPECT_EQ(runMain({"program", "4"}), 2);
    EXPECT_THAT(output(), HasSubstr("Error: the test run was ended by a call of exit()"));
}

TEST_F(RunMain, anInnerRunInAFolderOfItsOwnHasALogOfItsOwn)
{
    add(
        [](CFunctionTestItem&, qix::ITestRunner&)
        {
            if (runFirstTest() != 0)
            {
                throw std::runtime_error("the inner run has failed");
            }
        });
    EXPECT_EQ(runMain({"program", "4"}), 0);
    EXPECT_EQ(test::readFile("testWork/_/testLog.txt"),
              "item\n\n\n1 OK, 0 Failed, 0 Aborted, 0 Skipped\n\n");
    EXPECT_EQ(test::readFile("testWork/_/testWork/_/testLog.txt"),
              "zero\n\n\n1 OK, 0 Failed, 0 Aborted, 0 Skipped\n\n");
}

TEST_F(RunMain, anInnerRunDoesNotEmptyTheLogOfTheOuterOne)
{
    test::CScopedEnvVar const variable("QIX_TESTWORKDIR", m_folder.getPath() / "w");
    add(
        [](CFunctionTestItem&, qix::ITestRunner&)
        {
            if (runFirstTest() != 2)
            {
                throw std::runtime_error("the inner run was not refused");
            }
        });
    EXPECT_EQ(runMain({"program", "4"}), 0);
    EXPECT_THAT(output(), HasSubstr("Error: the log '" + (m_folder.getPath() / "w/_").string() +
                                    "/testLog.txt' is refused: another run of this process is "
                                    "writing it. Let QIX_TESTWORKDIR name another folder.\n"));
    EXPECT_EQ(test::readFile("w/_/testLog.txt"),
              "item\n\n\n1 OK, 0 Failed, 0 Aborted, 0 Skipped\n\n");
}

/// Runs whose log is there already.
class RunMainWithLog : public RunMain
{
protected:
    RunMainWithLog() { fs::create_directories("testWork/_"); }

    void expectRefusal(std::string const& reason)
    {
        EXPECT_EQ(runMain({"program", "0"}), 2);
        EXPECT_EQ(output(), "Num: 0\nError: the log '" +
                                (m_folder.getPath() / "testWork/_/testLog.txt").string() +
                                "' is refused: " + reason +
                                ". Let QIX_TESTWORKDIR name another folder.\n");
    }

    void expectAcceptance()
    {
        EXPECT_EQ(runMain({"program", "0"}), 0);
        EXPECT_EQ(test::readFile(m_log), "zero\n\n\n1 OK, 0 Failed, 0 Aborted, 0 Skipped\n\n");
    }

    char const* const m_log = "testWork/_/testLog.txt";
};

TEST_F(RunMainWithLog, refusesANamedPipe)
{
    ASSERT_EQ(mkfifo(m_log, 0666), 0);
    expectRefusal("it is a named pipe");
}

TEST_F(RunMainWithLog, refusesANamedPipeThatIsRead)
{
    ASSERT_EQ(mkfifo(m_log, 0666), 0);
    int const reader = open(m_log, O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    expectRefusal("it is a named pipe");
    close(reader);
}

TEST_F(RunMainWithLog, refusesALinkAndLeavesItsTarget)
{
    std::ofstream("target") << "precious";
    fs::create_symlink(fs::absolute("target"), m_log);
    expectRefusal("it is a symbolic link");
    EXPECT_EQ(test::readFile("target"), "precious");
}

TEST_F(RunMainWithLog, refusesALinkThatLeadsNowhere)
{
    fs::create_symlink(fs::absolute("target"), m_log);
    expectRefusal("it is a symbolic link");
    EXPECT_FALSE(fs::exists("target"));
}

TEST_F(RunMainWithLog, refusesADevice)
{
    if (mknod(m_log, S_IFCHR | 0666, makedev(1, 3)) != 0)
    {
        GTEST_SKIP() << "devices cannot be made here";
    }
    expectRefusal("it is a device");
}

TEST_F(RunMainWithLog, refusesAFileOfAnotherUserByWhateverName)
{
    std::ofstream("target") << "precious";
    if (chown("target", 4711, static_cast<gid_t>(-1)) != 0)
    {
        GTEST_SKIP() << "files cannot be given away here";
    }
    fs::create_hard_link("target", m_log);
    expectRefusal("it belongs to another user");
    EXPECT_EQ(test::readFile("target"), "precious");
}

TEST_F(RunMainWithLog, takesAFileOfTheFoldersOwner)
{
    std::ofstream(m_log) << "old";
    if (chown(m_log, 4711, static_cast<gid_t>(-1)) != 0 ||
        chown("testWork/_", 4711, static_cast<gid_t>(-1)) != 0)
    {
        GTEST_SKIP() << "files cannot be given away here";
    }
    expectAcceptance();
}

TEST_F(RunMainWithLog, takesAndEmptiesAFileOfItsOwn)
{
    std::ofstream(m_log) << std::string(1000, 'x');
    expectAcceptance();
}

TEST_F(RunMainWithLog, goesOnWithoutOneWhereItIsAFolder)
{
    fs::create_directory(m_log);
    EXPECT_EQ(runMain({"program", "0"}), 0);
}

void limitFileSize(rlim_t bytes)
{
    rlimit const limit = {bytes, RLIM_INFINITY};
    setrlimit(RLIMIT_FSIZE, &limit);
}

TEST_F(RunMain, goesOnWhenTheLogReachesTheLimitOfFileSizes)
{
    add(
        [](CFunctionTestItem& item, qix::ITestRunner&)
        {
            limitFileSize(64 * 1024);
            item.log(std::string(100 * 1024, 'x'));
        });
    EXPECT_EQ(runMain({"program", "4", "0"}), 0);
    EXPECT_THAT(output(), HasSubstr("2 OK"));
    EXPECT_EQ(fs::file_size("testWork/_/testLog.txt"), 64U * 1024U);
}

TEST_F(RunMain, leavesTheSignalOfFileSizesToPrograms)
{
    add(
        [](CFunctionTestItem&, qix::ITestRunner&)
        {
            CChildProcess child([]
                                { return execl("/bin/sh", "sh", "-c", "kill -XFSZ $$", nullptr); });
            if (child.waitForExit() != -SIGXFSZ)
            {
                throw std::runtime_error("the program goes on");
            }
        });
    EXPECT_EQ(runMain({"program", "4"}), 0) << output();
}

} // namespace
