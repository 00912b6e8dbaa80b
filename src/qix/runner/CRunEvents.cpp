#include "runner/CRunEvents.h"

#include <algorithm>
#include <limits>
#include <new>
#include <utility>

namespace qix
{

namespace
{

thread_local CRunScope* t_innermostRun = nullptr;

constexpr std::uint64_t allListeners = std::numeric_limits<std::uint64_t>::max();

void tell(CListeners::Snapshot const& listeners, std::uint64_t lastListener,
          std::function<void(ITestListener&)> const& tellOne)
{
    bool const haveAllReturned = CListeners::tell(listeners, lastListener, tellOne);
    if (!haveAllReturned && t_innermostRun != nullptr)
    {
        t_innermostRun->noteThrownByListener();
    }
}

void tellAll(std::function<void(ITestListener&)> const& tellOne)
{
    tell(CListeners::get().getSnapshot(), allListeners, tellOne);
}

std::optional<SourceLocation> reportedLocation()
{
    SourceLocation const* const location = CReportedLocation::get();
    return location == nullptr ? std::nullopt : std::optional(*location);
}

TestOutcome lostOutcome()
{
    TestOutcome outcome;
    outcome.kind = TestOutcome::Failed;
    outcome.message = "An exception has left the test run.";
    outcome.failures.push_back({"", 0, "", outcome.message});
    return outcome;
}

} // namespace

CRunEvents& CRunEvents::ofThisThread()
{
    static thread_local CRunEvents events;
    return events;
}

void CRunEvents::announce(ITestItem* item, TestInfo::Kind kind)
{
    m_announced = Announced{item, kind};
}

void CRunEvents::forgetAnnounced() noexcept
{
    m_announced.reset();
}

void CRunEvents::beginRun(RunInfo const& run)
{
    m_located = TFacetFinder<ILocatedItem>();
    tellAll([&](ITestListener& listener) { listener.onRunBegin(run); });
}

void CRunEvents::endRun(RunCounts const& counts)
{
    tellAll([&](ITestListener& listener) { listener.onRunEnd(counts); });
}

void CRunEvents::filter(std::vector<std::string> names, ITestItem::Duration duration,
                        bool isInteractive, ITestListener::Filter filter)
{
    TestInfo const info = makeInfo(std::move(names), duration, isInteractive);
    tellAll([&](ITestListener& listener) { listener.onTestFiltered(info, filter); });
}

void CRunEvents::begin(ITestRunner const* runner, std::vector<std::string> names,
                       ITestItem::Duration duration, bool isInteractive)
{
    CListeners::Snapshot const listeners = CListeners::get().getSnapshot();
    TestInfo info = makeInfo(std::move(names), duration, isInteractive);
    m_running.push_back({runner, t_innermostRun, std::move(info), listeners.lastNumber, {}, {}});
    Running& running = m_running.back();
    tell(listeners, allListeners,
         [&](ITestListener& listener) { listener.onTestBegin(running.info); });
    running.start = std::chrono::steady_clock::now();
}

TestInfo CRunEvents::makeInfo(std::vector<std::string> names, ITestItem::Duration duration,
                              bool isInteractive)
{
    auto const announced = std::exchange(m_announced, std::nullopt);
    return {announced ? announced->kind : TestInfo::SubTest,
            std::move(names),
            duration,
            isInteractive,
            announced ? announced->item : nullptr,
            announced ? locationOf(announced->item) : reportedLocation()};
}

std::optional<SourceLocation> CRunEvents::locationOf(ITestItem const* item)
{
    ILocatedItem const* const located = m_located.find(item);
    if (located == nullptr || located->getLocation().file == nullptr)
    {
        return std::nullopt;
    }
    return located->getLocation();
}

void CRunEvents::noteEnding(ITestRunner const* runner, std::size_t depth, TestOutcome::Kind kind,
                            std::exception const* exception)
{
    if (Running* const running = find(runner, depth))
    {
        running->outcome =
            makeOutcome(kind, exception == nullptr ? CReportedException::get() : exception);
    }
}

void CRunEvents::setBegin(ITestRunner const* runner, std::size_t depth,
                          std::chrono::steady_clock::time_point begin) noexcept
{
    if (Running* const running = find(runner, depth))
    {
        running->start = begin;
    }
}

void CRunEvents::end(ITestRunner const* runner, std::size_t depth, bool success)
{
    Running* const running = find(runner, depth);
    if (running == nullptr)
    {
        return;
    }
    if (!running->outcome)
    {
        running->outcome =
            makeOutcome(success ? TestOutcome::Ok : TestOutcome::Failed, CReportedException::get());
    }
    while (&m_running.back() != running)
    {
        endInnermost();
    }
    endInnermost();
}

void CRunEvents::endAll(ITestRunner const* runner)
{
    auto const isOfRunner = [&](Running const& running) { return running.runner == runner; };
    while (std::any_of(m_running.begin(), m_running.end(), isOfRunner))
    {
        endInnermost();
    }
}

void CRunEvents::endAll(CRunScope const* run)
{
    while (!m_running.empty() && m_running.back().run == run)
    {
        endInnermost();
    }
}

/// That which is running at the depth, or null when no listener was told of it.
CRunEvents::Running* CRunEvents::find(ITestRunner const* runner, std::size_t depth) noexcept
{
    for (auto running = m_running.rbegin(); running != m_running.rend(); ++running)
    {
        if (running->runner == runner && running->info.names.size() == depth)
        {
            return &*running;
        }
    }
    return nullptr;
}

void CRunEvents::endInnermost()
{
    auto const now = std::chrono::steady_clock::now();
    Running running = std::move(m_running.back());
    m_running.pop_back();
    TestOutcome outcome = running.outcome ? std::move(*running.outcome) : lostOutcome();
    outcome.elapsed = now - running.start;
    tell(CListeners::get().getSnapshot(), running.lastListener,
         [&](ITestListener& listener) { listener.onTestEnd(running.info, outcome); });
}

CRunScope::CRunScope(std::function<RunCounts()> counts)
    : m_outer(std::exchange(t_innermostRun, this)), m_counts(std::move(counts))
{
}

CRunScope::~CRunScope()
{
    if (m_isOpen)
    {
        endUnwound();
    }
    t_innermostRun = m_outer;
}

void CRunScope::begin(RunInfo const& run)
{
    CRunEvents::ofThisThread().beginRun(run);
}

void CRunScope::endUnwound() noexcept
{
    try
    {
        end();
    }
    catch (std::bad_alloc const&)
    {
        // What is leaving the run tells of it.
    }
}

bool CRunScope::end()
{
    m_isOpen = false;
    if (CListeners::areThere())
    {
        CRunEvents& events = CRunEvents::ofThisThread();
        events.endAll(this);
        events.endRun(m_counts());
    }
    return !m_hasListenerThrown;
}

} // namespace qix
