#include <qix/CConsoleTestRunner.h>
#include <qix/CTestAbortedException.h>
#include <qix/CTestSkippedException.h>
#include <zel/CError.h>
#include <zel/debug.h>

#include "guards/posix/CForkGuard.h"
#include "runner/indent.h"
#include "runner/nullItem.h"
#include "text/messageOf.h"

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

void runGuarded(ITestItem& item, ITestRunner* runner)
{
    CForkGuard const guard;
    item.run(runner);
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
    writeReport();
    return m_nFailed == 0;
}

void CConsoleTestRunner::runTestItem(ITestItem* item)
{
    if (item == nullptr)
    {
        reportNullItem();
        return;
    }
    logIndent(item->getName() + "\n");
    printHeader(*item);
    if (!beginSubTest(item->getName(), item->getDuration(), item->isInteractive(),
                      item->containsAnyInteractive()))
    {
        return;
    }
    std::size_t const depth = m_running.size();
    try
    {
        runGuarded(*item, this);
        endItem(item, depth, [this] { endSubTest_Success(); });
    }
    catch (CTestAbortedException const&)
    {
        endItem(item, depth, [this] { endSubTest_Aborted(); });
    }
    catch (CTestSkippedException const&)
    {
        endItem(item, depth, [this] { endSubTest_Skipped(); });
    }
    catch (std::exception const& e)
    {
        endItem(item, depth, [this, &e] { endSubTest_Failed(e); });
    }
}

/// Prints the header of an item with children. Asking for the children makes those of a group
/// that are pending, so that the filters see them.
void CConsoleTestRunner::printHeader(ITestItem& item)
{
    std::vector<zel::P<ITestItem>> children;
    item.getSubItems(children);
    if (!children.empty())
    {
        printAsFormat("\n" + m_indent + "> " + item.getName() + " ");
        std::fflush(stdout);
    }
}

/// A missing item passes every filter, so that it is never overlooked.
void CConsoleTestRunner::reportNullItem()
{
    logIndent(std::string(nullItemName) + "\n");
    if (beginSubTest(nullItemName, ITestItem::None, false, true))
    {
        endSubTest_Failed(zel::CError("There is no test item: a factory returned null."));
    }
}

/// Ends the item, and before it the sub-tests that it has left open, innermost first.
/// \param depth  the number of running sub-tests, the item's own included, when it was begun
template <typename End>
void CConsoleTestRunner::endItem(ITestItem* item, std::size_t depth, End const& end)
{
    for (std::size_t open = m_running.size(); open > depth; --open)
    {
        end();
    }
    logItemOutput(item);
    // An item that has been ended already, and failed in the course of it, is not ended again.
    if (m_running.size() == depth)
    {
        end();
    }
}

bool CConsoleTestRunner::beginSubTest(std::string const& name, ITestItem::Duration duration,
                                      bool isInteractive, bool containsAnyInteractive)
{
    if (isRefused(duration, isInteractive, containsAnyInteractive))
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

bool CConsoleTestRunner::isRefused(ITestItem::Duration duration, bool isInteractive,
                                   bool containsAnyInteractive) const noexcept
{
    return m_maxDuration < duration || (isInteractive && !m_runInteractive) ||
           (!containsAnyInteractive && m_onlyInteractive);
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
        warnAboutDuration(record.duration, elapsed);
    }
    m_running.pop_back();
    outdent(m_indent);
}

void CConsoleTestRunner::warnAboutDuration(ITestItem::Duration duration, std::time_t elapsed) const
{
    ExpectedTime const expected = expectedTimeOf(duration);
    if (elapsed < expected.shortest)
    {
        std::printf("\n\nTOO QUICK: test %s was quicker than expected (only %d seconds).\n",
                    getTestBreadcrumbs().c_str(), static_cast<int>(elapsed));
        std::fflush(stdout);
    }
    else if (elapsed > expected.longest)
    {
        std::printf("\n\nTOO SLOW: test %s was slower than expected (%d seconds).\n",
                    getTestBreadcrumbs().c_str(), static_cast<int>(elapsed));
        std::fflush(stdout);
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

void CConsoleTestRunner::printProgress(char character) const
{
    std::putchar(character);
    std::fflush(stdout);
}

} // namespace qix
