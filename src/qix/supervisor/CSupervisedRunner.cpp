#include "supervisor/CSupervisedRunner.h"

#include "model/CFlagWhileAlive.h"
#include "runner/CListeners.h"
#include "runner/CRunEvents.h"
#include "runner/printError.h"
#include "supervisor/CRecordedUnit.h"
#include "supervisor/CReplay.h"
#include "supervisor/posix/CInterrupts.h"
#include "supervisor/timeLimits.h"

#include <csignal>
#include <ctime>
#include <limits>
#include <utility>

namespace qix
{

namespace
{

constexpr std::size_t noUnit = std::numeric_limits<std::size_t>::max();

} // namespace

/// Opens a unit when it is first asked: the filters may leave it out before. What nobody has
/// planned gets a process for itself then.
class CSupervisedRunner::CUnitSource : public IMessageSource
{
public:
    CUnitSource(CSupervisedRunner& runner, Child const& child) : m_runner(runner), m_child(child) {}

    CMessageReader next() override
    {
        if (m_source == nullptr)
        {
            m_source = &open();
        }
        return m_source->next();
    }

    void mute(bool isMuted) override { m_source->mute(isMuted); }

    void close()
    {
        if (m_crew != nullptr)
        {
            closeCrew(*m_crew);
        }
    }

private:
    IMessageSource& open()
    {
        std::size_t const unit =
            m_child.node == noNode ? noUnit : m_runner.m_unitOfNode[m_child.node];
        bool const isPlanned = unit != noUnit && unit >= m_runner.m_nextUnit;
        if (isPlanned)
        {
            m_runner.m_nextUnit = unit + 1;
        }
        m_crew = isPlanned ? m_runner.m_crew.get() : &makeCrew();
        bool const isRetried = m_runner.m_options.retries > 0 && !m_child.item->isInteractive();
        return isRetried ? openWithRetries(isPlanned ? unit : 0) : openOnce(isPlanned ? unit : 0);
    }

    IMessageSource& openOnce(std::size_t unit)
    {
        IMessageSource& source = m_crew->open(unit);
        m_runner.m_process.worker = m_crew->slotOfOpen();
        return source;
    }

    /// A crew that runs nothing but this.
    CCrew& makeCrew()
    {
        m_ownUnit.assign(1, {noNode, m_child.item, timeLimitOf(*m_child.item, m_runner.m_options)});
        CrewOptions options;
        options.firstSlot = m_runner.processes() + 1;
        options.isCounted = false;
        options.isInteractive = m_child.item->isInteractive();
        m_ownCrew =
            std::make_unique<CCrew>(m_ownUnit, options, *m_runner.m_recorder, *m_runner.m_terminal);
        return *m_ownCrew;
    }

    /// What counts is the first try, unless a later one passes.
    IMessageSource& openWithRetries(std::size_t unit)
    {
        TestProcess& process = m_runner.m_process;
        bool const isCounted = m_crew == m_runner.m_crew.get();
        m_recorded = record(*std::exchange(m_crew, nullptr), unit, process.worker);
        std::optional<std::string> const failure = m_recorded->firstFailure();
        bool isFlaky = false;
        for (std::uint64_t left = m_runner.m_options.retries;
             left > 0 && failure && !isFlaky && CInterrupts::signal() == 0; --left)
        {
            unsigned worker = 0;
            auto again = record(makeCrew(), 0, worker);
            isFlaky = !again->firstFailure();
            if (isFlaky && !m_runner.m_options.failsByFlaky)
            {
                if (isCounted)
                {
                    m_runner.m_crew->takeBackFailure();
                }
                m_recorded = std::move(again);
                process.worker = worker;
            }
        }
        if (isFlaky)
        {
            m_runner.noteFlaky(m_child.node);
            process.firstFailure = failure;
        }
        return *m_recorded;
    }

    std::unique_ptr<CRecordedUnit> record(CCrew& crew, std::size_t unit, unsigned& worker)
    {
        PrintedText printed;
        crew.printTo(&printed);
        auto recorded = std::make_unique<CRecordedUnit>(crew.open(unit), printed);
        crew.printTo(nullptr);
        worker = crew.slotOfOpen();
        closeCrew(crew);
        return recorded;
    }

    void closeCrew(CCrew& crew)
    {
        crew.close([this](std::string const& command) { m_runner.tellLeftover(command); });
        if (m_ownCrew.get() == &crew)
        {
            crew.finish();
            m_runner.m_hasEndedBadly = m_runner.m_hasEndedBadly || crew.hasEndedBadly();
        }
    }

    CSupervisedRunner& m_runner;
    Child m_child;
    IMessageSource* m_source = nullptr;
    CCrew* m_crew = nullptr; ///< which has not been closed
    std::vector<Unit> m_ownUnit;
    std::unique_ptr<CCrew> m_ownCrew;
    std::unique_ptr<CRecordedUnit> m_recorded;
};

CSupervisedRunner::CSupervisedRunner(ITestItem* root, RunOptions const& options)
    : CPlannedRunner(root), m_options(options), m_recorder(zel::newObj<CRecordingRunner>(root))
{
}

unsigned CSupervisedRunner::processes() const
{
    return static_cast<unsigned>(m_options.jobs.value_or(1));
}

bool CSupervisedRunner::runPlan()
{
    CInterrupts const interrupts;
    m_terminal.emplace(static_cast<IRunObserver&>(*this));
    m_recorder->recordFor(*this, m_options.isolate);
    listUnits();
    CrewOptions options;
    options.processes = processes();
    options.isIsolated = m_options.isolate;
    m_crew = std::make_unique<CCrew>(m_units, options, *m_recorder, *m_terminal);
    bool const hasPassed = CPlannedRunner::runPlan();
    m_crew->finish();
    m_hasEndedBadly = m_hasEndedBadly || m_crew->hasEndedBadly();
    m_crew.reset();
    m_terminal.reset();
    return hasPassed;
}

bool CSupervisedRunner::hasStopped() const noexcept
{
    return CInterrupts::signal() != 0 || CPlannedRunner::hasStopped();
}

std::string CSupervisedRunner::reasonForStop() const
{
    switch (CInterrupts::signal())
    {
    case 0:
        return CPlannedRunner::reasonForStop();
    case SIGINT:
        return "SIGINT";
    default:
        return "SIGTERM";
    }
}

/// In the order in which they will be wanted.
void CSupervisedRunner::listUnits()
{
    m_units.clear();
    m_nextUnit = 0;
    m_unitOfNode.assign(plan().tree().size(), noUnit);
    addUnits(noNode);
}

void CSupervisedRunner::addUnits(NodeIndex parent)
{
    for (NodeIndex const node : childrenOf(parent))
    {
        ITestItem* const item = plan().tree()[node].item.get();
        bool const isRun = item != nullptr && plan().isWanted(node) && !plan().isFilteredOut(node);
        if (isRun && isLibraryGroup(*item))
        {
            addUnits(node);
        }
        else if (isRun && !item->isInteractive())
        {
            m_unitOfNode[node] = m_units.size();
            m_units.push_back({node, item, timeLimitOf(node, plan(), m_options)});
        }
    }
}

std::vector<NodeIndex> CSupervisedRunner::childrenOf(NodeIndex parent) const
{
    auto const ordered = order().find(parent);
    if (ordered != order().end())
    {
        return ordered->second;
    }
    CTestTree const& tree = plan().tree();
    std::vector<NodeIndex> children;
    NodeIndex const end = tree.endOf(parent);
    for (NodeIndex node = CTestTree::firstChild(parent); node < end; node = tree[node].end)
    {
        children.push_back(node);
    }
    return children;
}

/// Once the run is interrupted, that is told only which has begun before.
void CSupervisedRunner::runChild(Child const& child)
{
    bool const isLeftOut = CInterrupts::signal() != 0 && !m_isReplaying && !hasAnyBegun(child.node);
    if (!isLeftOut)
    {
        CPlannedRunner::runChild(child);
    }
}

bool CSupervisedRunner::hasAnyBegun(NodeIndex node)
{
    if (node == noNode)
    {
        return false;
    }
    m_crew->awaitEnd();
    CTestTree const& tree = plan().tree();
    bool isFound = false;
    for (NodeIndex test = node; test < tree[node].end && !isFound; ++test)
    {
        std::size_t const unit = m_unitOfNode[test];
        isFound = unit != noUnit && m_crew->hasBegun(unit);
    }
    return isFound;
}

void CSupervisedRunner::runItem(Child const& child)
{
    bool const isOwn = m_isReplaying || child.item == nullptr || isLibraryGroup(*child.item);
    if (isOwn)
    {
        CPlannedRunner::runItem(child);
    }
    else
    {
        runUnit(child);
    }
}

void CSupervisedRunner::runUnit(Child const& child)
{
    m_process = TestProcess();
    m_unitDepth = CPlannedRunner::depth();
    CUnitSource source(*this, child);
    CReplay replay(source, *this);
    zel::P<ITestItem> const standIn = replay.standInFor(*child.item);
    {
        CFlagWhileAlive const replaying(m_isReplaying);
        CPlannedRunner::runItem({child.node, standIn.get()});
    }
    source.close();
    m_process = TestProcess();
}

/// Of what is inside a unit nothing but the worker is known.
TestProcess CSupervisedRunner::testProcess() const
{
    if (CPlannedRunner::depth() == m_unitDepth)
    {
        return m_process;
    }
    TestProcess inside;
    inside.worker = m_process.worker;
    return inside;
}

void CSupervisedRunner::runHanded(std::uint32_t node, ITestItem* item)
{
    runChild({node, item});
}

/// A test may have ended more than it has begun.
bool CSupervisedRunner::isAtDepth(std::size_t depth) const
{
    return depth > 0 && depth <= m_running.size();
}

void CSupervisedRunner::setBegin(std::size_t depth, Moment const& begin)
{
    if (isAtDepth(depth))
    {
        setTimes(depth, static_cast<std::time_t>(begin.seconds),
                 Clock::time_point(std::chrono::nanoseconds(begin.nanoseconds)));
    }
}

void CSupervisedRunner::setNow(std::size_t depth, Moment const& now)
{
    std::time_t const seconds = std::time(nullptr) - static_cast<std::time_t>(now.seconds);
    auto const later = Clock::now() - Clock::time_point(std::chrono::nanoseconds(now.nanoseconds));
    for (; isAtDepth(depth); ++depth)
    {
        setTimes(depth, m_running[depth - 1].startTime + seconds, getBeginTime(depth) + later);
    }
}

void CSupervisedRunner::setTimes(std::size_t depth, std::time_t seconds, Clock::time_point begin)
{
    m_running[depth - 1].startTime = seconds;
    setBeginTime(depth, begin);
    if (CListeners::areThere())
    {
        CRunEvents::ofThisThread().setBegin(this, depth, begin);
    }
}

std::string CSupervisedRunner::nameOf(Unit const& unit) const
{
    return unit.node == noNode ? unit.item->getName() : plan().tree().idOf(unit.node);
}

/// What is played back is told by clocks that have stood still.
void CSupervisedRunner::goOnAfter(std::chrono::nanoseconds pause)
{
    for (std::size_t depth = 1; depth <= m_unitDepth && isAtDepth(depth); ++depth)
    {
        setTimes(depth, m_running[depth - 1].startTime + pause / std::chrono::seconds(1),
                 getBeginTime(depth) + pause);
    }
}

void CSupervisedRunner::noteFlaky(NodeIndex node)
{
    m_flaky.push_back(node == noNode ? getTestBreadcrumbs() : plan().tree().idOf(node));
}

void CSupervisedRunner::tellLeftover(std::string const& command) const
{
    std::fflush(stdout);
    printError("", ("a test has left a process behind, which was ended: " + command).c_str());
}

} // namespace qix
