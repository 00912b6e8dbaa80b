#include <qix/CConsoleTestRunner.h>
#include <zel/CError.h>
#include <zel/debug.h>

#include "guards/posix/CForkGuard.h"
#include "guards/posix/runNotes.h"
#include "model/outcomes.h"
#include "runner/CListeners.h"
#include "runner/CRunEvents.h"
#include "runner/consoleColors.h"
#include "runner/filters.h"
#include "runner/indent.h"
#include "runner/nullItem.h"
#include "runner/warnings.h"
#include "text/messageOf.h"

#include <cstddef>
#include <limits>

namespace qix
{

namespace
{

/// The run time that a test is expected to take: whole seconds, both bounds inclusive.
struct ExpectedTime
{
    std::time_t shortest;
    std::time_t longest;
};

ExpectedTime expectedTimeOf(ITestItem::Duration duration)
{
    using Limits = std::numeric_limits<std::time_t>;
    switch (duration)
    {
    case ITestItem::Short:
        return {0, 20};
    case ITestItem::Long:
        return {5, 180};
    case ITestItem::VeryLong:
        return {60, 10800};
    case ITestItem::Hours:
        return {3600, Limits::max()};
    case ITestItem::None:
        break;
    }
    return {Limits::min(), Limits::max()};
}

/// Item names are a part of the format: what a "%" in the name of a group does is a promise.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-security"
void printAsFormat(std::string const& format)
{
    std::printf(format.c_str());
}
#pragma GCC diagnostic pop

/// Takes back one level, as far as there is one.
void outdent(std::string& indent)
{
    constexpr std::size_t width = sizeof(indentOfOneLevel) - 1;
    indent.resize(indent.size() < width ? indent.size() : indent.size() - width);
}

void printProgress(char character)
{
    std::putchar(character);
    std::fflush(stdout);
}

void printPassed()
{
    constexpr char mark = '.';
    if (*consoleColors.passed == '\0')
    {
        printProgress(mark);
        return;
    }
    std::printf("%s%c%s", consoleColors.passed, mark, consoleColors.none);
    std::fflush(stdout);
}

/// Prints the header of an item with children. Asking for the children makes those of a group
/// that are pending, so that the filters see them.
/// \return  whether there are any
bool printHeader(ITestItem& item, std::string const& indent)
{
    std::vector<zel::P<ITestItem>> children;
    item.getSubItems(children);
    if (!children.empty())
    {
        printAsFormat("\n" + indent + "> " + item.getName() + " ");
        std::fflush(stdout);
    }
    return !children.empty();
}

bool beginItem(ITestRunner& runner, ITestItem& item, TestInfo::Kind kind)
{
    CAnnouncedItem const announced(&item, kind);
    return runner.beginSubTest(item.getName(), item.getDuration(), item.isInteractive(),
                               item.containsAnyInteractive());
}

/// A missing item passes every filter, so that it is never overlooked.
bool beginNullItem(ITestRunner& runner)
{
    CAnnouncedItem const announced(nullptr, TestInfo::Test);
    return runner.beginSubTest(nullItemName, ITestItem::None, false, true);
}

void reportNullItem(CConsoleTestRunner& runner)
{
    runner.logIndent(std::string(nullItemName) + "\n");
    if (beginNullItem(runner))
    {
        runner.endSubTest_Failed(zel::CError("There is no test item: a factory returned null."));
    }
}

void runGuarded(ITestItem& item, ITestRunner* runner)
{
    CForkGuard const guard;
    noteItemBegin();
    item.run(runner);
}

void endAs(ITestRunner& runner, TestOutcome::Kind kind, std::exception const& exception)
{
    CReportedException const reported(&exception);
    switch (kind)
    {
    case TestOutcome::Ok:
        return runner.endSubTest_Success();
    case TestOutcome::Aborted:
        return runner.endSubTest_Aborted();
    case TestOutcome::Skipped:
        return runner.endSubTest_Skipped();
    case TestOutcome::Failed:
        return runner.endSubTest_Failed(exception);
    }
}

/// Ends the item, and before it the sub-tests that it has left open, innermost first.
/// \param running  the sub-tests that have been begun and not ended
/// \param depth    their number, the item's own included, when the item was begun
template <typename Records, typename End>
void endItem(CConsoleTestRunner& runner, Records const& running, ITestItem* item, std::size_t depth,
             End const& end)
{
    for (std::size_t open = running.size(); open > depth; --open)
    {
        end();
    }
    runner.logItemOutput(item);
    // An item that has been ended already, and failed in the course of it, is not ended again.
    if (running.size() == depth)
    {
        end();
    }
}

void warn(std::string const& warning)
{
    std::printf("\n\n%s\n", warning.c_str());
    std::fflush(stdout);
    noteWarning(warning);
}

void warnAboutDuration(CConsoleTestRunner const& runner, ITestItem::Duration duration,
                       std::time_t elapsed)
{
    ExpectedTime const expected = expectedTimeOf(duration);
    if (elapsed >= expected.shortest && elapsed <= expected.longest)
    {
        return;
    }
    std::string const breadcrumbs = runner.getTestBreadcrumbs();
    std::string const test = breadcrumbs.substr(0, breadcrumbs.find('\0'));
    std::string const seconds = std::to_string(static_cast<int>(elapsed));
    if (elapsed < expected.shortest)
    {
        warn("TOO QUICK: test " + test + " was quicker than expected (only " + seconds +
             " seconds).");
    }
    else
    {
        warn("TOO SLOW: test " + test + " was slower than expected (" + seconds + " seconds).");
    }
}

/// The names of the running sub-tests, the outermost first, and of one inside them.
template <typename Records>
std::vector<std::string> namesOf(Records const& running, std::string const& name)
{
    std::vector<std::string> names;
    names.reserve(running.size() + 1);
    for (auto const& record : running)
    {
        names.push_back(record.name);
    }
    names.push_back(name);
    return names;
}

/// Keeps for listeners how the innermost running sub-test is about to end.
void noteEnding(ITestRunner const* runner, std::size_t depth, TestOutcome::Kind kind,
                std::exception const* exception = nullptr)
{
    if (CListeners::areThere())
    {
        CRunEvents::ofThisThread().noteEnding(runner, depth, kind, exception);
    }
}

std::vector<ITestItem*> selectedOf(std::vector<zel::P<ITestItem>> const& items,
                                   std::vector<bool> const& selected)
{
    std::vector<ITestItem*> chosen;
    for (std::size_t i = 0; i < items.size(); ++i)
    {
        if (selected[i])
        {
            chosen.push_back(items[i].get());
        }
    }
    return chosen;
}

template <typename Failures>
void printReport(Failures const& failures, std::string const& summary)
{
    if (!failures.empty())
    {
        std::puts("\n\nFailed Tests:");
    }
    for (auto const& failure : failures)
    {
        std::printf("- %s%s%s\n  %s\n", consoleColors.failed, failure.name.c_str(),
                    consoleColors.none, failure.message.c_str());
    }
    std::fputs(summary.c_str(), stdout);
    std::fflush(stdout);
}

} // namespace

CConsoleTestRunner::CConsoleTestRunner(ITestItem* root)
{
    root->getSubItems(m_items);
    m_selected.resize(m_items.size(), false);
    resetCounters();
}

CConsoleTestRunner::~CConsoleTestRunner()
{
    if (CListeners::areThere())
    {
        CRunEvents::ofThisThread().endAll(this);
    }
    closeLog();
}

bool CConsoleTestRunner::go()
{
    resetCounters();
    CNotedRun const noted;
    // Whatever ends the run, what the selection has printed is seen.
    std::fflush(stdout);
    openLog();
    CRunScope run([this] { return RunCounts{m_nOk, m_nFailed, m_nAborted, m_nSkipped}; });
    if (CListeners::areThere())
    {
        run.begin({selectedOf(m_items, m_selected), static_cast<ITestItem::Duration>(m_maxDuration),
                   m_runInteractive, m_onlyInteractive});
    }
    for (std::size_t i = 0; i < m_items.size(); ++i)
    {
        if (m_selected[i])
        {
            runTestItem(m_items[i].get());
        }
    }
    std::string const summary = "\n" + std::to_string(m_nOk) + " OK, " + std::to_string(m_nFailed) +
                                " Failed, " + std::to_string(m_nAborted) + " Aborted, " +
                                std::to_string(m_nSkipped) + " Skipped\n\n";
    logNoIndent("\n" + summary);
    closeLog();
    printReport(m_failures, summary);
    return run.end() && m_nFailed == 0;
}

void CConsoleTestRunner::runTestItem(ITestItem* item)
{
    if (item == nullptr)
    {
        reportNullItem(*this);
        return;
    }
    logIndent(item->getName() + "\n");
    bool const isGroup = printHeader(*item, m_indent);
    if (!beginItem(*this, *item, isGroup ? TestInfo::Group : TestInfo::Test))
    {
        return;
    }
    std::size_t const depth = m_running.size();
    catchOutcome(
        [this, item, depth]
        {
            runGuarded(*item, this);
            endItem(*this, m_running, item, depth, [this] { endSubTest_Success(); });
        },
        [this, item, depth](TestOutcome::Kind kind, std::exception const& exception)
        { endItem(*this, m_running, item, depth, [&] { endAs(*this, kind, exception); }); });
}

bool CConsoleTestRunner::beginSubTest(std::string const& name, ITestItem::Duration duration,
                                      bool isInteractive, bool containsAnyInteractive)
{
    auto const filter = findFilter({m_maxDuration, m_runInteractive, m_onlyInteractive},
                                   {duration, isInteractive, containsAnyInteractive});
    if (filter)
    {
        printProgress('o');
        ++m_nSkipped;
        if (CListeners::areThere())
        {
            CRunEvents::ofThisThread().filter(namesOf(m_running, name), duration, isInteractive,
                                              *filter);
        }
        return false;
    }
    if (CListeners::areThere())
    {
        CRunEvents::ofThisThread().begin(this, namesOf(m_running, name), duration, isInteractive);
    }
    m_running.push_back({name, m_beginCount, duration, isInteractive, std::time(nullptr)});
    noteTestBegin(name);
    ++m_beginCount;
    m_indent += indentOfOneLevel;
    return true;
}

void CConsoleTestRunner::endSubTest_Failed(std::exception const& e)
{
    std::string const message = messageOf(e);
    std::string const breadcrumbs = getTestBreadcrumbs();
    std::printf("\n\n%sTEST FAILED: %s%s\n%s\n", consoleColors.failed, breadcrumbs.c_str(),
                consoleColors.none, message.c_str());
    std::fflush(stdout);
    zel::debugBreak();
    m_failures.push_back({breadcrumbs, message});
    doTestGroupFinishLogging("XXX -> FAILED (" + message + ")");
    noteEnding(this, m_running.size(), TestOutcome::Failed, &e);
    finalizeSubTest(false);
    ++m_nFailed;
}

void CConsoleTestRunner::endSubTest_Aborted()
{
    doTestGroupFinishLogging("-> aborted");
    noteEnding(this, m_running.size(), TestOutcome::Aborted);
    finalizeSubTest(false);
    ++m_nAborted;
}

void CConsoleTestRunner::endSubTest_Skipped()
{
    if (m_running.back().duration != ITestItem::None)
    {
        printProgress('o');
    }
    doTestGroupFinishLogging("-> skipped");
    noteEnding(this, m_running.size(), TestOutcome::Skipped);
    finalizeSubTest(false);
    ++m_nSkipped;
}

void CConsoleTestRunner::endSubTest_Success()
{
    if (m_running.back().duration != ITestItem::None)
    {
        printPassed();
    }
    doTestGroupFinishLogging("-> ok");
    noteEnding(this, m_running.size(), TestOutcome::Ok);
    finalizeSubTest(true);
    ++m_nOk;
}

void CConsoleTestRunner::finalizeSubTest(bool success)
{
    RunningRecord const& record = m_running.back();
    std::time_t const elapsed = std::time(nullptr) - record.startTime;
    if (success && !record.interactive)
    {
        warnAboutDuration(*this, record.duration, elapsed);
    }
    std::size_t const depth = m_running.size();
    m_running.pop_back();
    noteTestEnd();
    outdent(m_indent);
    if (CListeners::areThere())
    {
        CRunEvents::ofThisThread().end(this, depth, success);
    }
}

void CConsoleTestRunner::resetCounters()
{
    m_nOk = 0;
    m_nAborted = 0;
    m_nFailed = 0;
    m_nSkipped = 0;
    m_beginCount = 0;
    m_failures.clear();
}

std::string CConsoleTestRunner::getTestBreadcrumbs() const
{
    std::string breadcrumbs;
    for (RunningRecord const& record : m_running)
    {
        if (!breadcrumbs.empty())
        {
            breadcrumbs += ".";
        }
        breadcrumbs += record.name;
    }
    return breadcrumbs;
}

} // namespace qix
