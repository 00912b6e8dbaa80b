#include "supervisor/posix/CKeeper.h"

#include "guards/posix/CCrashGuard.h"
#include "supervisor/outcomeMessages.h"
#include "supervisor/posix/CWorker.h"
#include "supervisor/posix/endOfProcess.h"
#include "supervisor/posix/processTree.h"
#include "supervisor/posix/processUsage.h"
#include "supervisor/posix/slotTime.h"
#include "supervisor/posix/stackText.h"
#include "supervisor/posix/threadStacks.h"

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <initializer_list>
#include <thread>
#include <utility>

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace qix
{

namespace
{

using Clock = std::chrono::steady_clock;

/// What a process has for its end after SIGTERM.
constexpr std::chrono::seconds grace(5);

/// What static objects and the writers of reports have at the end of a process.
constexpr std::chrono::seconds timeForExit(60);

constexpr std::chrono::milliseconds longestWait(100);
constexpr int exitKeeperLost = 3;

bool mayMakeGroups() noexcept
{
    return std::getenv("BAZEL_TEST") == nullptr;
}

sigset_t setOf(std::initializer_list<int> signals) noexcept
{
    sigset_t set;
    sigemptyset(&set);
    for (int const signal : signals)
    {
        sigaddset(&set, signal);
    }
    return set;
}

sigset_t awaitedSignals() noexcept
{
    return setOf({SIGCHLD, SIGTERM, SIGTSTP});
}

/// Those by which a terminal ends a whole group are the supervisor's.
sigset_t blockedSignals() noexcept
{
    return setOf({SIGCHLD, SIGTERM, SIGINT, SIGQUIT, SIGHUP, SIGTSTP, SIGPIPE});
}

/// The processes of a test that has just been ended may count for a while.
pid_t forkPatiently()
{
    constexpr int mostTries = 50;
    pid_t process = fork();
    for (int i = 0; process == -1 && i < mostTries; ++i)
    {
        std::this_thread::sleep_for(longestWait);
        process = fork();
    }
    if (process == -1)
    {
        _exit(exitKeeperLost);
    }
    return process;
}

std::string inSeconds(std::chrono::nanoseconds time)
{
    char text[32];
    std::snprintf(text, sizeof text, "%g", std::chrono::duration<double>(time).count());
    return text;
}

} // namespace

void CKeeper::run()
{
    prepare();
    while (!m_isAsked && isWorkLeft())
    {
        startWorker();
        superviseWorker();
        endLeftovers();
        tellEnd();
    }
    _exit(EXIT_SUCCESS);
}

void CKeeper::prepare()
{
    prctl(PR_SET_PDEATHSIG, SIGTERM);
    prctl(PR_SET_CHILD_SUBREAPER, 1);
    sigset_t const blocked = blockedSignals();
    sigprocmask(SIG_BLOCK, &blocked, &m_signalsOfTests);
    std::signal(SIGINT, SIG_DFL);
    std::signal(SIGTERM, SIG_DFL);
    std::signal(SIGTSTP, SIG_DFL);
    CCrashGuard::leaveSignals();
    noteEnding(m_work.slot.state().crash);
    if (m_work.options.isInteractive)
    {
        return;
    }
    if (mayMakeGroups())
    {
        setpgid(0, 0);
    }
    int const nothing = open("/dev/null", O_RDONLY | O_CLOEXEC);
    dup2(nothing, STDIN_FILENO);
    close(nothing);
    m_work.slot.out().captureAs(STDOUT_FILENO);
    m_work.slot.err().captureAs(STDERR_FILENO);
    enterFolder();
}

void CKeeper::enterFolder() const
{
    constexpr mode_t everythingAllowed = 0777;
    std::string const number = std::to_string(m_work.slot.number());
    std::string const folder = "slot-" + number;
    static_cast<void>(mkdir(folder.c_str(), everythingAllowed));
    if (chdir(folder.c_str()) != 0)
    {
        std::perror(folder.c_str());
    }
    setenv("QIX_SLOT", number.c_str(), 1);
}

bool CKeeper::isWorkLeft() const noexcept
{
    SlotState const& state = m_work.slot.state();
    return m_work.crew.isStopped == 0 &&
           (state.isUnitLeft != 0 || m_work.crew.nextUnit < m_work.units.size());
}

void CKeeper::startWorker()
{
    m_work.slot.state().isEnding = 0;
    forgetEnding(m_work.slot.state().crash);
    m_reason.clear();
    m_stacks.clear();
    pid_t const keeper = getpid();
    m_worker = forkPatiently();
    if (m_worker == 0)
    {
        prctl(PR_SET_PDEATHSIG, SIGKILL);
        // The debugger that the keeper starts may look at this process.
        prctl(PR_SET_PTRACER, keeper);
        if (getppid() != keeper)
        {
            _exit(exitKeeperLost);
        }
        runWorker();
    }
}

void CKeeper::runWorker()
{
    if (mayMakeGroups() && !m_work.options.isInteractive)
    {
        setpgid(0, 0);
    }
    sigprocmask(SIG_SETMASK, &m_signalsOfTests, nullptr);
    CWorker(m_work).run();
}

void CKeeper::superviseWorker()
{
    for (reap(); m_worker != 0; reap())
    {
        awaitEvent();
        if (m_isAsked && isInTest())
        {
            endWorker("the run was interrupted");
        }
        else if (isTimeUp())
        {
            endTooLong();
        }
    }
}

/// Behind its test, a process that runs no further one ends by itself. Sanitizers take their time.
bool CKeeper::isInTest() const noexcept
{
    SlotState const& state = m_work.slot.state();
    return state.isInUnit != 0 && state.isEnding == 0;
}

void CKeeper::endTooLong()
{
    m_stacks = describeThreads(m_worker);
    endWorker(describeTimeUp());
}

std::string CKeeper::describeTimeUp() const
{
    SlotState const& state = m_work.slot.state();
    if (state.isEnding != 0)
    {
        return "its process did not end in time";
    }
    return "the test has taken longer than its time limit of " +
           inSeconds(*m_work.units[state.unit].timeLimit) + " seconds, and its process was ended";
}

/// Also takes notice of processes that were left to this one.
void CKeeper::awaitEvent()
{
    awaitSignal();
    if (m_work.crew.isSuspended != 0 && !m_isAsked)
    {
        suspend();
    }
}

void CKeeper::awaitSignal()
{
    sigset_t const awaited = awaitedSignals();
    constexpr timespec time = {0, std::chrono::nanoseconds(longestWait).count()};
    int const signal = sigtimedwait(&awaited, nullptr, &time);
    if (isOrphaned())
    {
        endAll();
    }
    m_isAsked = m_isAsked || signal == SIGTERM;
}

/// Keeps all that runs here stopped until the supervisor goes on.
void CKeeper::suspend()
{
    SlotState& state = m_work.slot.state();
    auto const begin = Clock::now();
    std::vector<pid_t> const stopped = stopDescendants();
    state.isSuspended = 1;
    while (m_work.crew.isSuspended != 0 && !m_isAsked)
    {
        awaitSignal();
    }
    state.suspended += (Clock::now() - begin) / std::chrono::nanoseconds(1);
    state.isSuspended = 0;
    for (pid_t const process : stopped)
    {
        kill(process, SIGCONT);
    }
}

bool CKeeper::isOrphaned() const noexcept
{
    return getppid() != m_supervisor;
}

void CKeeper::reap()
{
    int status = 0;
    rusage usage = {};
    for (pid_t ended = wait4(-1, &status, WNOHANG, &usage); ended > 0;
         ended = wait4(-1, &status, WNOHANG, &usage))
    {
        if (ended == m_worker)
        {
            m_status = status;
            m_usage = usage;
            m_worker = 0;
        }
    }
}

bool CKeeper::isTimeUp() const
{
    SlotState const& state = m_work.slot.state();
    std::chrono::nanoseconds const taken(slotTime(state) - state.unitBegin);
    if (state.isEnding != 0)
    {
        return taken > timeForExit;
    }
    std::uint64_t const unit = state.unit;
    return state.isInUnit != 0 && unit < m_work.units.size() && m_work.units[unit].timeLimit &&
           taken > *m_work.units[unit].timeLimit;
}

void CKeeper::endWorker(std::string const& reason)
{
    m_reason = reason;
    std::vector<pid_t> const processes = listDescendants(getpid());
    for (pid_t const process : processes)
    {
        kill(process, SIGTERM);
        kill(process, SIGCONT);
    }
    awaitEnd(grace);
}

void CKeeper::awaitEnd(std::chrono::nanoseconds longest)
{
    SlotState const& state = m_work.slot.state();
    std::int64_t const deadline = slotTime(state) + longest.count();
    for (reap(); m_worker != 0 && slotTime(state) < deadline; reap())
    {
        awaitEvent();
    }
    if (m_worker != 0)
    {
        kill(m_worker, SIGKILL);
        wait4(std::exchange(m_worker, 0), &m_status, 0, &m_usage);
    }
}

/// Nobody is there any more who could be told anything.
void CKeeper::endAll()
{
    killDescendants();
    _exit(exitKeeperLost);
}

void CKeeper::endLeftovers()
{
    if (waitpid(-1, nullptr, WNOHANG) == -1)
    {
        return;
    }
    for (pid_t const process : listDescendants(getpid()))
    {
        m_work.slot.ring().send(CMessageWriter(MessageKind::Leftover)
                                    .add(std::string_view(commandOf(process)))
                                    .bytes());
    }
    killDescendants();
}

void CKeeper::tellEnd()
{
    SlotState& state = m_work.slot.state();
    bool const hasEndedWell = WIFEXITED(m_status) && WEXITSTATUS(m_status) == EXIT_SUCCESS;
    // The test may have ended while its process was being ended.
    bool const isInterrupted = m_isAsked && !m_reason.empty();
    if (state.isInUnit != 0)
    {
        tellDeath();
    }
    else if (!hasEndedWell && !isInterrupted)
    {
        m_work.crew.hasEndedBadly = 1;
        std::fprintf(stderr, "Error: behind its last test, %s\n",
                     (m_reason.empty() ? describeEnding(m_status, state.crash) : m_reason).c_str());
    }
    if (m_work.options.isIsolated && state.isInUnit == 0 && state.isEnding != 0)
    {
        m_work.slot.ring().send(CMessageWriter(MessageKind::UnitEnd).bytes());
        state.isUnitLeft = 0;
    }
    state.isInUnit = 0;
    m_work.slot.ring().wakeSupervisor();
}

/// What the process has noted itself when SIGTERM came, unless a debugger has told of all threads.
std::string CKeeper::describeStacks() const
{
    return m_stacks.empty() ? describeStack(m_work.slot.state().crash) : m_stacks;
}

void CKeeper::tellDeath()
{
    SlotState& state = m_work.slot.state();
    CMessageRing& ring = m_work.slot.ring();
    ring.completeTorn();
    CPrintedTeller(m_work).tell();
    std::string const text =
        m_reason.empty() ? describeEnding(m_status, state.crash) : m_reason + describeStacks();
    CMessageWriter message(MessageKind::Died);
    message.add(std::string_view(text));
    if (m_work.options.isIsolated)
    {
        addUsage(message, usageOf(m_usage));
    }
    ring.send(message.bytes());
    ++m_work.crew.failedUnits;
    state.isUnitLeft = 0;
}

} // namespace qix
