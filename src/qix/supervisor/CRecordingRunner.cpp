#include "supervisor/CRecordingRunner.h"

#include <qix/ILocatedItem.h>
#include <qix/detail/passedCheck.h>

#include "guards/posix/CForkGuard.h"
#include "model/outcomes.h"
#include "runner/filters.h"
#include "supervisor/CReplay.h"
#include "supervisor/outcomeMessages.h"
#include "supervisor/posix/processUsage.h"
#include "text/exceptionText.h"
#include "text/forcedUnwind.h"

#include <chrono>
#include <cstdio>
#include <ctime>

namespace qix
{

namespace
{

void addLocation(CMessageWriter& message, SourceLocation const& location)
{
    message.add(std::string_view(location.file == nullptr ? "" : location.file));
    message.add(static_cast<std::uint64_t>(location.line));
}

SourceLocation locationOf(ITestItem& item)
{
    auto const* const located = dynamic_cast<ILocatedItem const*>(&item);
    return located == nullptr ? SourceLocation{nullptr, 0} : located->getLocation();
}

/// What an item tells of itself before it runs.
struct Properties
{
    explicit Properties(ITestItem& item) : name(item.getName())
    {
        std::vector<zel::P<ITestItem>> children;
        item.getSubItems(children);
        hasChildren = !children.empty();
        duration = item.getDuration();
        isInteractive = item.isInteractive();
        containsAnyInteractive = item.containsAnyInteractive();
    }

    std::string name;
    bool hasChildren;
    ITestItem::Duration duration;
    bool isInteractive;
    bool containsAnyInteractive;
};

/// What the runner is going to print next stands behind what the test has printed.
void flushOutput()
{
    std::fflush(stdout);
}

} // namespace

void CRecordingRunner::recordFor(CPlannedRunner const& other, bool isMeasured)
{
    m_other = &other;
    m_isMeasured = isMeasured;
    planAs(other);
}

void CRecordingRunner::runUnit(Unit const& unit, IMessageSink& sink)
{
    m_sink = &sink;
    if (unit.node == noNode)
    {
        openAs(*m_other);
    }
    else
    {
        openAs(unit.node);
    }
    runOpen(*unit.item, m_isMeasured);
}

/// By clocks that stand still while the process is stopped.
Moment CRecordingRunner::now() const
{
    std::chrono::nanoseconds const suspended = m_sink->suspended();
    auto const steady = std::chrono::steady_clock::now().time_since_epoch() - suspended;
    return {std::time(nullptr) - suspended / std::chrono::seconds(1),
            steady / std::chrono::nanoseconds(1)};
}

/// Runs the item that is open, and closes it.
void CRecordingRunner::runOpen(ITestItem& item, bool isMeasured)
{
    std::size_t const itsDepth = depth();
    Moment const begin = now();
    detail::lastPassedCheck = {};
    TestOutcome const outcome = outcomeOf(item);
    if (outcome.kind == TestOutcome::Failed)
    {
        m_sink->noteFailure();
    }
    CMessageWriter message(MessageKind::ItemEnd);
    addMoment(message, begin);
    addMoment(message, now());
    addOutcome(message, outcome);
    std::vector<zel::String> const& lines = item.getLog();
    message.add(lines.size());
    for (zel::String const& line : lines)
    {
        message.add(line);
    }
    if (isMeasured)
    {
        addUsage(message, usageOfThisProcess());
    }
    flushOutput();
    m_sink->send(message.bytes());
    while (depth() >= itsDepth)
    {
        closeInnermost(outcome.kind);
    }
}

QIX_CATCHES_FORCED_UNWIND TestOutcome CRecordingRunner::outcomeOf(ITestItem& item)
{
    TestOutcome outcome;
    try
    {
        catchOutcome(
            [this, &item]
            {
                CForkGuard const guard;
                item.run(this);
            },
            [&outcome](TestOutcome::Kind kind, std::exception const& exception)
            { outcome = makeOutcome(kind, &exception); });
    }
    catch (abi::__forced_unwind const&)
    {
        // The thread is being cancelled, which nobody may stop.
        throw;
    }
    catch (...)
    {
        outcome.kind = TestOutcome::Failed;
        outcome.message = "it threw " + currentExceptionText() + ", which is no std::exception";
        outcome.failures.push_back({"", 0, "", outcome.message});
    }
    return outcome;
}

void CRecordingRunner::runChild(Child const& child)
{
    std::string const name =
        child.node == noNode && child.item != nullptr ? child.item->getName() : std::string();
    flushOutput();
    m_sink->send(CMessageWriter(MessageKind::Handed)
                     .add(child.node)
                     .add(child.item == nullptr ? 1 : 0)
                     .add(std::string_view(name))
                     .bytes());
    try
    {
        CPlannedRunner::runChild(child);
    }
    catch (std::exception const&)
    {
        m_sink->send(CMessageWriter(MessageKind::HandedEnd).bytes());
        throw;
    }
    m_sink->send(CMessageWriter(MessageKind::HandedEnd).bytes());
}

/// A null item needs nothing that could not be done where it is reported.
void CRecordingRunner::runItem(Child const& child)
{
    if (child.item == nullptr)
    {
        return;
    }
    std::optional<Properties> item;
    try
    {
        item.emplace(*child.item);
    }
    catch (std::exception const& e)
    {
        CMessageWriter message(MessageKind::NoProperties);
        addOutcome(message, makeOutcome(TestOutcome::Failed, &e));
        m_sink->send(message.bytes());
        throw;
    }
    CMessageWriter message(MessageKind::Properties);
    message.add(std::string_view(item->name))
        .add(item->hasChildren ? 1 : 0)
        .add(static_cast<std::uint64_t>(item->duration))
        .add(item->isInteractive ? 1 : 0)
        .add(item->containsAnyInteractive ? 1 : 0);
    addLocation(message, locationOf(*child.item));
    m_sink->send(message.bytes());
    if (CPlannedRunner::beginSubTest(item->name, item->duration, item->isInteractive,
                                     item->containsAnyInteractive))
    {
        runOpen(*child.item, false);
    }
}

bool CRecordingRunner::beginSubTest(std::string const& name, ITestItem::Duration duration,
                                    bool isInteractive, bool containsAnyInteractive)
{
    bool const isBegun =
        CPlannedRunner::beginSubTest(name, duration, isInteractive, containsAnyInteractive);
    CMessageWriter message(MessageKind::Begin);
    message.add(std::string_view(name))
        .add(static_cast<std::uint64_t>(duration))
        .add(isInteractive ? 1 : 0)
        .add(containsAnyInteractive ? 1 : 0);
    SourceLocation const* const location = CReportedLocation::get();
    addLocation(message, location == nullptr ? SourceLocation{nullptr, 0} : *location);
    addMoment(message, now());
    if (!isBegun)
    {
        flushOutput();
    }
    m_sink->send(message.bytes());
    return isBegun;
}

bool CRecordingRunner::beginFiltered(std::string const& name, ITestItem::Duration duration,
                                     bool isInteractive, bool containsAnyInteractive)
{
    if (findFilter({m_maxDuration, m_runInteractive, m_onlyInteractive},
                   {duration, isInteractive, containsAnyInteractive}))
    {
        return false;
    }
    m_running.push_back({name, m_beginCount, duration, isInteractive, std::time(nullptr)});
    ++m_beginCount;
    return true;
}

void CRecordingRunner::endSubTest_Failed(std::exception const& e)
{
    m_sink->noteFailure();
    tellEnd(TestOutcome::Failed, &e, true);
}

void CRecordingRunner::endSubTest_Aborted()
{
    tellEnd(TestOutcome::Aborted, CReportedException::get(), false);
}

void CRecordingRunner::endSubTest_Skipped()
{
    tellEnd(TestOutcome::Skipped, CReportedException::get(), isInnermostTold());
}

void CRecordingRunner::endSubTest_Success()
{
    tellEnd(TestOutcome::Ok, nullptr, isInnermostTold());
}

/// True when a character is printed for what ends.
bool CRecordingRunner::isInnermostTold() const
{
    return !m_running.empty() && m_running.back().duration != ITestItem::None;
}

void CRecordingRunner::tellEnd(TestOutcome::Kind kind, std::exception const* exception,
                               bool isPrinted)
{
    CMessageWriter message(MessageKind::End);
    addMoment(message, now());
    message.add(exception == nullptr ? 0 : 1);
    addOutcome(message, makeOutcome(kind, exception));
    if (isPrinted)
    {
        flushOutput();
    }
    m_sink->send(message.bytes());
    closeInnermost(kind);
}

/// Tests may end more than they have begun.
void CRecordingRunner::closeInnermost(TestOutcome::Kind kind)
{
    if (!m_running.empty())
    {
        m_running.pop_back();
        close(kind == TestOutcome::Failed ? RememberedTest::Outcome::Failed
                                          : RememberedTest::Outcome::Other);
    }
}

} // namespace qix
