// What a crew has to do with the terminal.
#include "supervisor/posix/CCrew.h"
#include "supervisor/posix/CRunTerminal.h"
#include "supervisor/posix/slotTime.h"

#include <algorithm>
#include <csignal>

#include <sys/wait.h>

namespace qix
{

namespace
{

/// It is still to be waited for, then.
bool hasEnded(pid_t child) noexcept
{
    siginfo_t info = {};
    return waitid(P_PID, static_cast<id_t>(child), &info, WEXITED | WNOHANG | WNOWAIT) != 0 ||
           info.si_pid == child;
}

} // namespace

void CCrew::suspend()
{
    m_state->isSuspended = 1;
    wakeKeepers();
}

void CCrew::resume()
{
    m_state->isSuspended = 0;
    wakeKeepers();
}

/// They wait for this signal, too.
void CCrew::wakeKeepers() const
{
    for (Place const& place : m_places)
    {
        if (place.keeper > 0)
        {
            kill(place.keeper, SIGTSTP);
        }
    }
}

bool CCrew::isSuspended() const
{
    return std::all_of(m_places.begin(), m_places.end(),
                       [](Place const& place) {
                           return place.keeper <= 0 || place.slot->state().isSuspended != 0 ||
                                  hasEnded(place.keeper);
                       });
}

/// Units of other crews are tried again, or are counted by nobody.
void CCrew::addTo(RunProgress& progress) const
{
    std::uint64_t taken = std::min<std::uint64_t>(m_state->nextUnit, m_units.size());
    for (Place const& place : m_places)
    {
        SlotState const& state = place.slot->state();
        std::uint64_t const unit = state.unit;
        taken -= state.isUnitLeft != 0 && unit < m_units.size() ? 1 : 0;
        if (state.isInUnit != 0 && unit < m_units.size())
        {
            progress.running.push_back(
                {m_terminal.observer().nameOf(m_units[unit]), slotTime(state) - state.unitBegin});
        }
    }
    if (m_options.isCounted)
    {
        progress.done += taken;
        progress.all += m_units.size();
        progress.failed += m_state->failedUnits;
    }
}

} // namespace qix
