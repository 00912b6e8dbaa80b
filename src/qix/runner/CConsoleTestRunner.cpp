#include <qix/CConsoleTestRunner.h>
#include <qix/CTestAbortedException.h>
#include <qix/CTestSkippedException.h>
#include <zel/CError.h>
#include <zel/debug.h>

#include "guards/posix/CForkGuard.h"
#include "runner/indent.h"
#include "runner/nullItem.h"
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

/// Prints the header of an item with children. Asking for the children makes those of a group
/// that are pending, so that the filters see them.
void printHeader(ITestItem& item, std::string const& indent)
{
    std::vector<zel::P<ITestItem>> children;
    item.getSubItems(children);
    if (!children.empty())
    {
        printAsFormat("\n" + indent + "> " + item.getName() + " ");
        std::fflush(stdout);
    }
}

/// A missing item passes every filter, so that it is never overlooked.
void reportNullItem(CConsoleTestRunner& runner)
{
    runner.logIndent(std::string(nullItemName) + "\n");
    if (runner.beginSubTest(nullItemName, ITestItem::None, false, true))
    {
        runner.endSubTest_Failed(zel::CError("There is no test item: a factory returned null."));
    }
}

void runGuarded(ITestItem& item, ITestRunner* runner)
{
    CForkGuard const guard;
    item.run(runner);
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

void warnAboutDuration(CConsoleTestRunner const& runner, ITestItem::Duration duration,
                       std::time_t elapsed)
{
    ExpectedTime const expected = expectedTimeOf(duration);
    if (elapsed < expected.shortest)
    {
        std::printf("\n\nTOO QUICK: test %s was quicker than expected (only %d seconds).\n",
                    runner.getTestBreadcrumbs().c_str(), static_cast<int>(elapsed));
        std::fflush(stdout);
    }
    else if (elapsed > expected.longest)
    {
        std::printf("\n\nTOO SLOW: test %s was slower than expected (%d seconds).\n",
                    runner.getTestBreadcrumbs().c_str(), static_cast<int>(elapsed));
        std::fflush(stdout);
    }
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
        std::printf("- %s\n  %s\n", failure.name.c_str(), failure.message.c_str());
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
    closeLog();
}

bool CConsoleTestRunner::go()
{
    resetCounters();
    // Whatever ends the run, what the selection has printed is seen.
    std::fflush(stdout);
    openLog();
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
    return m_nFailed == 0;
}

void CConsoleTestRunner::runTestItem(ITestItem* item)
{
    if (item == nullptr)
    {
        reportNullItem(*this);
        return;
    }
    logIndent(item->getName() + "\n");
    printHeader(*item, m_indent);
    if (!beginSubTest(item->getName(), item->getDuration(), item->isInteractive(),
                      item->containsAnyInteractive()))
    {
        return;
    }
    std::size_t const depth = m_running.size();
    try
    {
        runGuarded(*item, this);
        endItem(*this, m_running, item, depth, [this] { endSubTest_Success(); });
    }
    catch (CTestAbortedException const&)
    {
        endItem(*this, m_running, item, depth, [this] { endSubTest_Aborted(); });
    }
    catch (CTestSkippedException const&)
    {
        endItem(*this, m_running, item, depth, [this] { endSubTest_Skipped(); });
    }
    catch (std::exception const& e)
    {
        endItem(*this, m_running, item, depth, [this, &e] { endSubTest_Failed(e); });
    }
}

bool CConsoleTestRunner::beginSubTest(std::string const& name, ITestItem::Duration duration,
                                      bool isInteractive, bool containsAnyInteractive)
{
    bool const isFilteredOut = m_maxDuration < duration || (isInteractive && !m_runInteractive) ||
                               (!containsAnyInteractive && m_onlyInteractive);
    if (isFilteredOut)
    {
        printProgress('o');
        ++m_nSkipped;
        return false;
    }
    m_running.push_back({name, m_beginCount, duration, isInteractive, std::time(nullptr)});
    ++m_beginCount;
    m_indent += indentOfOneLevel;
    return true;
}

void CConsoleTestRunner::endSubTest_Failed(std::exception const& e)
{
    std::string const message = messageOf(e);
    std::string const breadcrumbs = getTestBreadcrumbs();
    std::printf("\n\nTEST FAILED: %s\n%s\n", breadcrumbs.c_str(), message.c_str());
    std::fflush(stdout);
    zel::debugBreak();
    m_failures.push_back({breadcrumbs, message});
    doTestGroupFinishLogging("XXX -> FAILED (" + message + ")");
    finalizeSubTest(false);
    ++m_nFailed;
}

void CConsoleTestRunner::endSubTest_Aborted()
{
    doTestGroupFinishLogging("-> aborted");
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
    finalizeSubTest(false);
    ++m_nSkipped;
}

void CConsoleTestRunner::endSubTest_Success()
{
    if (m_running.back().duration != ITestItem::None)
    {
        printProgress('.');
    }
    doTestGroupFinishLogging("-> ok");
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
    m_running.pop_back();
    outdent(m_indent);
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
