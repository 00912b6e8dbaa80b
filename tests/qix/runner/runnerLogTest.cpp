#include "runner/RunnerTest.h"

#include "CChildProcess.h"
#include "countDescriptors.h"

#include <qix/CTestSkippedException.h>

#include <csignal>
#include <cstdio>
#include <filesystem>
#include <functional>
#include <stdexcept>
#include <string>
#include <utility>

namespace
{

using qix::CConsoleTestRunner;
using qix::CTestItemGroup;
using qix::ITestItem;
using qix::ITestRunner;
using test::CFunctionTestItem;
using testing::HasSubstr;
using testing::StartsWith;

class RunnerLog : public test::RunnerTest
{
};

/// Stands in for standard output while it lives, and looks at each write before it is made.
class CWatchedOutput
{
public:
    using Look = std::function<void(std::string const& written)>;

    explicit CWatchedOutput(Look look)
        : m_look(std::move(look)),
          m_old(std::exchange(stdout, fopencookie(this, "w", {nullptr, &write, nullptr, nullptr})))
    {
    }

    ~CWatchedOutput() { std::fclose(std::exchange(stdout, m_old)); }

    CWatchedOutput(CWatchedOutput const&) = delete;
    CWatchedOutput& operator=(CWatchedOutput const&) = delete;

private:
    static ssize_t write(void* self, char const* bytes, std::size_t count)
    {
        static_cast<CWatchedOutput*>(self)->m_look(std::string(bytes, count));
        return static_cast<ssize_t>(count);
    }

    Look m_look;
    std::FILE* m_old;
};

TEST_F(RunnerLog, resultIsWrittenBehindItsProgressCharacter)
{
    add("item",
        [](CFunctionTestItem&, ITestRunner& run)
        {
            run.beginSubTest("inner", ITestItem::None, false, false);
            run.endSubTest_Success();
        });
    std::string logAtProgress;
    CWatchedOutput const output(
        [&logAtProgress](std::string const& written)
        {
            if (written == ".")
            {
                logAtProgress = log();
            }
        });
    EXPECT_TRUE(runAll());
    EXPECT_EQ(logAtProgress, "item\n");
    EXPECT_THAT(log(), StartsWith("item\n  -> ok"));
}

TEST_F(RunnerLog, isClosedBeforeTheReportIsPrinted)
{
    bool isClosed = false;
    add("item");
    auto const before = test::countDescriptors();
    CWatchedOutput const output(
        [&](std::string const& written)
        {
            if (written.find("1 OK") != std::string::npos)
            {
                isClosed = test::countDescriptors() == before;
            }
        });
    EXPECT_TRUE(runAll());
    EXPECT_TRUE(isClosed);
}

TEST_F(RunnerLog, textEndsAtItsFirstNul)
{
    runner().openLog();
    runner().logNoIndent(std::string("one\0two", 7));
    runner().logIndent(std::string("three\0four\n", 11));
    EXPECT_EQ(log(), "onethree");
}

TEST_F(RunnerLog, showsTheTreeWithOutputAndResults)
{
    CTestItemGroup& group = addGroup("A");
    addTo(group, "t1");
    addTo(group, "t2",
          [](CFunctionTestItem& item, ITestRunner&)
          {
              item.log("hello");
              throw std::runtime_error("boom");
          });
    EXPECT_FALSE(runAll());
    EXPECT_EQ(log(), "A\n"
                     "  t1\n"
                     "  t2\n"
                     "    Output:\n"
                     "      hello\n"
                     "  -> ok\n"
                     "\n"
                     "2 OK, 1 Failed, 0 Aborted, 0 Skipped\n"
                     "\n");
}

TEST_F(RunnerLog, emptyRunHasASummaryOnly)
{
    add("a");
    EXPECT_TRUE(runner().go());
    EXPECT_EQ(log(), "\n\n0 OK, 0 Failed, 0 Aborted, 0 Skipped\n\n");
    EXPECT_EQ(output(), "\n0 OK, 0 Failed, 0 Aborted, 0 Skipped\n\n");
}

TEST_F(RunnerLog, isClosedBehindTheRun)
{
    auto const before = test::countDescriptors();
    runAll();
    runAll();
    EXPECT_EQ(test::countDescriptors(), before);
}

TEST_F(RunnerLog, reportIsFlushed)
{
    test::COutputCapture const inner;
    runner().go();
    EXPECT_EQ(inner.getFlushedText(), "\n0 OK, 0 Failed, 0 Aborted, 0 Skipped\n\n");
}

TEST_F(RunnerLog, outputLeavesTheIndentationAsItWas)
{
    CFunctionTestItem& item = add("a");
    item.log("line");
    runner().openLog();
    runner().logItemOutput(&item);
    EXPECT_EQ(runner().m_indent, "");
    runner().closeLog();
    EXPECT_EQ(log(), "Output:\n  line\n");
}

TEST_F(RunnerLog, skippedGroupHasAResultLine)
{
    add("item",
        [](CFunctionTestItem&, ITestRunner& run)
        {
            CFunctionTestItem child("child");
            run.runTestItem(&child);
            throw qix::CTestSkippedException();
        });
    EXPECT_TRUE(runAll());
    EXPECT_THAT(log(), StartsWith("item\n  child\n  -> skipped\n\n1 OK"));
}

TEST_F(RunnerLog, failedGroupHasAResultLineWithTheReason)
{
    add("item",
        [](CFunctionTestItem&, ITestRunner& run)
        {
            CFunctionTestItem child("child");
            run.runTestItem(&child);
            throw std::runtime_error("boom");
        });
    EXPECT_FALSE(runAll());
    EXPECT_THAT(log(), StartsWith("item\n  child\n  XXX -> FAILED (boom)\n\n1 OK, 1 Failed"));
}

TEST_F(RunnerLog, resultLineGoesOnWithTheNextItem)
{
    addTo(addGroup("A"), "a");
    add("next");
    EXPECT_TRUE(runAll());
    EXPECT_THAT(log(), StartsWith("A\n  a\n  -> oknext\n\n\n3 OK"));
}

TEST_F(RunnerLog, refusedItemsAppear)
{
    add("long", {}, ITestItem::Long);
    EXPECT_TRUE(runAll());
    EXPECT_THAT(log(), StartsWith("long\n\n\n0 OK, 0 Failed, 0 Aborted, 1 Skipped"));
}

TEST_F(RunnerLog, linesAreInTheEncodingOfTheLocale)
{
    add("a", [](CFunctionTestItem& item, ITestRunner&) { item.log(L"f\u00fcr"); });
    EXPECT_TRUE(runAll());
    EXPECT_THAT(log(), StartsWith("a\n  Output:\n    f\xc3\xbcr\n"));
}

TEST_F(RunnerLog, outputStandsOnceBehindItsItem)
{
    CFunctionTestItem item("item");
    runner().openLog();
    runner().m_indent = "  ";
    runner().logItemOutput(&item);
    EXPECT_EQ(log(), "");
    item.log("one");
    item.log("two");
    runner().logItemOutput(&item);
    EXPECT_EQ(log(), "  Output:\n    one\n    two\n");
    EXPECT_EQ(runner().m_indent, "  ");
}

TEST_F(RunnerLog, everyWriteLeavesTheProcessAtOnce)
{
    runner().openLog();
    runner().logNoIndent("one");
    EXPECT_EQ(log(), "one");
    runner().m_indent = "    ";
    runner().logIndent("two\n");
    EXPECT_EQ(log(), "one    two\n");
}

TEST_F(RunnerLog, groupResultNeedsSomethingThatWasBegunInside)
{
    runner().openLog();
    runner().beginSubTest("outer", ITestItem::None, false, false);
    runner().doTestGroupFinishLogging("no");
    EXPECT_EQ(log(), "");
    runner().beginSubTest("inner", ITestItem::None, false, false);
    runner().endSubTest_Success();
    runner().doTestGroupFinishLogging("yes");
    EXPECT_EQ(log(), "  yes");
}

TEST_F(RunnerLog, opensEmptyAndClosesTwice)
{
    runner().openLog();
    runner().logNoIndent("old");
    runner().openLog();
    EXPECT_EQ(log(), "");
    runner().closeLog();
    EXPECT_EQ(runner().m_log, nullptr);
    runner().closeLog();
    EXPECT_EQ(runner().m_log, nullptr);
}

TEST_F(RunnerLog, isClosedAfterARun)
{
    EXPECT_TRUE(runner().go());
    EXPECT_EQ(runner().m_log, nullptr);
}

TEST_F(RunnerLog, runGoesOnWithoutALog)
{
    std::filesystem::create_directory("testLog.txt");
    add("a", [](CFunctionTestItem& item, ITestRunner&) { item.log("line"); });
    addTo(addGroup("A"), "b");
    EXPECT_TRUE(runAll());
    EXPECT_EQ(output(), ".\n> A .\n3 OK, 0 Failed, 0 Aborted, 0 Skipped\n\n");
}

TEST_F(RunnerLog, isCompleteUpToTheTestThatKillsTheProcess)
{
    add("good");
    add("deadly", [](CFunctionTestItem&, ITestRunner&) { raise(SIGKILL); });
    runner().m_selected = {true, true};
    test::CChildProcess child([this] { return runner().go() ? 0 : 1; });
    EXPECT_EQ(child.waitForExit(), -SIGKILL);
    EXPECT_EQ(log(), "good\ndeadly\n");
}

TEST_F(RunnerLog, reportListsTheFailuresInTheirOrder)
{
    auto const fail = [](CFunctionTestItem& item, ITestRunner&)
    { throw std::runtime_error("reason of " + item.getName()); };
    add("b", fail);
    addTo(addGroup("G"), "a", fail);
    EXPECT_FALSE(runAll());
    EXPECT_THAT(output(), HasSubstr("reason of a\n"
                                    "\n\nFailed Tests:\n"
                                    "- b\n  reason of b\n"
                                    "- G.a\n  reason of a\n"
                                    "\n1 OK, 2 Failed, 0 Aborted, 0 Skipped\n\n"));
}

TEST(RunnerPad, fillsUpWithBlanks)
{
    EXPECT_EQ(CConsoleTestRunner::pad("ab", 4), "ab  ");
    EXPECT_EQ(CConsoleTestRunner::pad("ab", 2), "ab");
    EXPECT_EQ(CConsoleTestRunner::pad("ab", 1), "ab");
    EXPECT_EQ(CConsoleTestRunner::pad("ab", -1), "ab");
    EXPECT_EQ(CConsoleTestRunner::pad("", 1), " ");
}

} // namespace
