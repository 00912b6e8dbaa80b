#pragma once

#include "supervisor/Unit.h"
#include "supervisor/posix/CStatusLine.h"
#include "supervisor/posix/CStopSignal.h"

#include <chrono>
#include <cstdint>
#include <string>
#include <vector>

namespace qix
{

class CCrew;

/// How far a run has come.
struct RunProgress
{
    struct Running
    {
        std::string name;
        std::int64_t nanoseconds = 0; ///< so long by now
    };

    std::uint64_t done = 0;
    std::uint64_t all = 0;
    std::uint64_t failed = 0;
    std::vector<Running> running;
};

/// What is shown of it; what has run longest comes first.
std::string describeProgress(RunProgress progress);

/// Knows of a run what its processes do not.
class IRunObserver
{
public:
    virtual ~IRunObserver() = default;

    virtual std::string nameOf(Unit const& unit) const = 0;

    /// The run goes on, behind a break that counts for nothing.
    virtual void goOnAfter(std::chrono::nanoseconds pause) = 0;
};

/// What all crews of a run have to do with the terminal: they are stopped and continued together
/// with the supervisor, and one line tells what they are running.
class CRunTerminal
{
public:
    /// \param observer  outlives the object
    explicit CRunTerminal(IRunObserver& observer) : m_observer(observer) {}

    /// @{
    /// Called by crews for themselves.
    void add(CCrew& crew);
    void remove(CCrew& crew) noexcept;
    /// @}

    IRunObserver const& observer() const noexcept { return m_observer; }

    /// Stops all processes of the run if the terminal has asked for that, and comes back when they
    /// go on.
    void stopIfAsked();

    /// Shows how far the run has come, now and then.
    void showProgress();

    /// To be called before anything is printed.
    void hideProgress() noexcept { m_line.hide(); }

private:
    void stopCrews();

    IRunObserver& m_observer;
    CStopSignal m_stopSignal;
    CStatusLine m_line;
    std::vector<CCrew*> m_crews;
};

} // namespace qix
