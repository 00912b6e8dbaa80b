#include "supervisor/posix/CRunTerminal.h"

#include "supervisor/posix/CCrew.h"

#include <algorithm>
#include <cstdio>
#include <thread>
#include <utility>

namespace qix
{

std::string describeProgress(RunProgress progress)
{
    constexpr std::int64_t nanosecondsOfSecond = 1'000'000'000;
    std::string text = '[' + std::to_string(progress.done) + '/' + std::to_string(progress.all);
    text += progress.failed == 0 ? "]" : ", " + std::to_string(progress.failed) + " failed]";
    std::stable_sort(progress.running.begin(), progress.running.end(),
                     [](RunProgress::Running const& left, RunProgress::Running const& right)
                     { return left.nanoseconds > right.nanoseconds; });
    char const* separator = " ";
    for (RunProgress::Running const& running : progress.running)
    {
        std::int64_t const seconds = running.nanoseconds / nanosecondsOfSecond;
        text += std::exchange(separator, ", ") + running.name;
        text += seconds > 0 ? ' ' + std::to_string(seconds) + " s" : "";
    }
    return text;
}

void CRunTerminal::add(CCrew& crew)
{
    m_crews.push_back(&crew);
}

void CRunTerminal::remove(CCrew& crew) noexcept
{
    m_crews.erase(std::remove(m_crews.begin(), m_crews.end(), &crew), m_crews.end());
}

void CRunTerminal::stopIfAsked()
{
    if (!CStopSignal::hasCome())
    {
        return;
    }
    auto const begin = std::chrono::steady_clock::now();
    hideProgress();
    std::fflush(stdout);
    stopCrews();
    m_stopSignal.stop();
    for (CCrew* const crew : m_crews)
    {
        crew->resume();
    }
    m_observer.goOnAfter(std::chrono::steady_clock::now() - begin);
}

/// Whoever cannot be stopped soon, since it waits for the supervisor say, stops once it can.
void CRunTerminal::stopCrews()
{
    constexpr int mostRounds = 1000;
    constexpr std::chrono::milliseconds pause(1);
    for (CCrew* const crew : m_crews)
    {
        crew->suspend();
    }
    auto const isRunning = [](CCrew const* crew) { return !crew->isSuspended(); };
    for (int round = 0;
         round < mostRounds && std::any_of(m_crews.begin(), m_crews.end(), isRunning); ++round)
    {
        std::this_thread::sleep_for(pause);
    }
}

void CRunTerminal::showProgress()
{
    if (!m_line.isDue())
    {
        return;
    }
    RunProgress progress;
    for (CCrew const* const crew : m_crews)
    {
        crew->addTo(progress);
    }
    m_line.show(describeProgress(std::move(progress)));
}

} // namespace qix
