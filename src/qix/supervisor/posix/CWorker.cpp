#include "supervisor/posix/CWorker.h"

#include "supervisor/posix/processTree.h"
#include "supervisor/posix/slotTime.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <thread>

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace qix
{

namespace
{

/// How far the units that are run may be in front of the one that the supervisor has come to.
constexpr std::uint64_t farthestAhead = 1U << 14U;

constexpr std::chrono::microseconds pause(200);

/// No process can be started in less.
constexpr std::chrono::microseconds quick(20);

/// How long nobody looks at what quick units have left of the process.
constexpr std::chrono::microseconds longestUnseen(500);

constexpr std::int64_t inNanoseconds(std::chrono::nanoseconds time) noexcept
{
    return time.count();
}

long faultsOfChildren() noexcept
{
    rusage usage = {};
    getrusage(RUSAGE_CHILDREN, &usage);
    return usage.ru_minflt + usage.ru_nvcsw + usage.ru_nivcsw;
}

bool hasChildren() noexcept
{
    siginfo_t info = {};
    return waitid(P_ALL, 0, &info, WEXITED | WNOHANG | WNOWAIT) == 0 || errno != ECHILD;
}

/// Those whose parents have ended are children of the keeper.
std::vector<pid_t> listLeftovers(pid_t keeper)
{
    std::vector<pid_t> processes = listDescendants(keeper);
    processes.erase(std::remove(processes.begin(), processes.end(), getpid()), processes.end());
    return processes;
}

} // namespace

CWorker::CWorker(SlotWork const& work) : m_work(work), m_keeper(getppid()), m_printed(work)
{
}

void CWorker::run()
{
    m_printed.begin();
    while (std::optional<std::uint64_t> const unit = takeUnit())
    {
        runUnit(*unit);
        if (m_work.options.isIsolated || !m_isIntact)
        {
            break;
        }
    }
    m_work.slot.state().unitBegin = slotTime(m_work.slot.state());
    m_work.slot.state().isEnding = 1;
    // What has been counted, and what sanitizers have to tell, is written by exit() only.
    std::exit(EXIT_SUCCESS);
}

std::optional<std::uint64_t> CWorker::takeUnit()
{
    SlotState& state = m_work.slot.state();
    if (state.isUnitLeft == 0)
    {
        state.unit = m_work.crew.nextUnit.fetch_add(1);
        state.isUnitLeft = 1;
    }
    std::uint64_t const unit = state.unit;
    if (unit >= m_work.units.size())
    {
        state.isUnitLeft = 0;
        return std::nullopt;
    }
    while (!mayBegin(unit))
    {
        std::this_thread::sleep_for(pause);
    }
    return m_work.crew.isStopped == 0 ? std::optional(unit) : std::nullopt;
}

bool CWorker::mayBegin(std::uint64_t unit) const noexcept
{
    CrewState const& crew = m_work.crew;
    std::uint64_t const wanted = crew.wantedUnit;
    return unit <= wanted || crew.isStopped != 0 ||
           (unit < wanted + farthestAhead && crew.isOverfull == 0);
}

void CWorker::runUnit(std::uint64_t index)
{
    SlotState& state = m_work.slot.state();
    Unit const& unit = m_work.units[index];
    state.unitBegin = slotTime(state);
    state.isInUnit = 1;
    m_hasFailed = false;
    m_work.slot.ring().send(CMessageWriter(MessageKind::UnitBegin).add(index).bytes());
    m_work.runner.runUnit(unit, *this);
    endUnit(index);
}

void CWorker::endUnit(std::uint64_t index)
{
    SlotState& state = m_work.slot.state();
    lookAtProcess();
    m_printed.beginUnit();
    m_work.crew.failedUnits += m_hasFailed ? 1 : 0;
    if (m_work.options.isIsolated)
    {
        // The keeper tells of the end when the process has ended.
        state.isInUnit = 0;
        return;
    }
    m_work.slot.ring().send(CMessageWriter(MessageKind::UnitEnd).bytes());
    state.isInUnit = 0;
    state.isUnitLeft = 0;
    // A descriptor of this process may be some other file by now.
    if (m_work.crew.wantedUnit == index && m_isIntact)
    {
        m_work.slot.ring().wakeSupervisor();
    }
}

/// Costs more than a quick unit, and so is done once for several of these.
void CWorker::lookAtProcess()
{
    std::int64_t const end = slotTime(m_work.slot.state());
    bool const isQuick = end - m_work.slot.state().unitBegin < inNanoseconds(quick) &&
                         end - m_lastLook < inNanoseconds(longestUnseen);
    if (isQuick && !m_work.options.isIsolated)
    {
        return;
    }
    endLeftovers();
    m_isIntact = isIntact();
    m_lastLook = end;
}

bool CWorker::isIntact() const noexcept
{
    return m_work.options.isInteractive || (m_work.slot.out().isCapturedAs(STDOUT_FILENO) &&
                                            m_work.slot.err().isCapturedAs(STDERR_FILENO));
}

void CWorker::tellLeftover(pid_t process)
{
    m_work.slot.ring().send(
        CMessageWriter(MessageKind::Leftover).add(std::string_view(commandOf(process))).bytes());
}

std::chrono::nanoseconds CWorker::suspended() const
{
    return std::chrono::nanoseconds(m_work.slot.state().suspended);
}

void CWorker::send(std::string_view message)
{
    m_printed.tell();
    m_work.slot.ring().send(message);
    if (m_work.options.isInteractive)
    {
        m_work.slot.ring().awaitSupervisor();
    }
}

/// Most tests start no process, and so much is found out by two system calls.
void CWorker::endLeftovers()
{
    long const faults = faultsOfChildren();
    bool const hasStarted = hasChildren() || faults != m_childFaults;
    if (!hasStarted)
    {
        return;
    }
    bool isFirstRound = true;
    for (std::vector<pid_t> left = listLeftovers(m_keeper); !left.empty();
         left = listLeftovers(m_keeper))
    {
        for (pid_t const process : left)
        {
            if (isFirstRound)
            {
                tellLeftover(process);
            }
            kill(process, SIGKILL);
        }
        isFirstRound = false;
        reapAll();
        std::this_thread::sleep_for(pause);
    }
    reapAll();
    m_childFaults = faultsOfChildren();
}

} // namespace qix
