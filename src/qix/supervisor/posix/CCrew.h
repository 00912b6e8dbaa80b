#pragma once

#include "supervisor/IMessageSource.h"
#include "supervisor/PrintedText.h"
#include "supervisor/Unit.h"
#include "supervisor/posix/CDescriptor.h"
#include "supervisor/posix/CSlot.h"
#include "supervisor/posix/TSharedMemory.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include <sys/types.h>

namespace qix
{

class CRunTerminal;
struct RunProgress;

/// The processes that run the units of one run, and what they tell.
///
/// Each process takes the unit that is next, so that what the process of a slot tells is in the
/// order of the units, and the one that the supervisor waits for is always in front.
class CCrew : private IMessageSource
{
public:
    /// Forks the processes.
    /// \param units     outlive the crew
    /// \param runner    runs the units in the other processes
    /// \param terminal  outlives the crew
    CCrew(std::vector<Unit> const& units, CrewOptions const& options, IUnitRunner& runner,
          CRunTerminal& terminal);
    CCrew(CCrew const&) = delete;
    CCrew& operator=(CCrew const&) = delete;

    /// Waits until all processes have ended; units that have not begun are not run any more.
    ~CCrew() override;

    /// Waits until the unit has begun, or until no unit begins any more, since the run is
    /// interrupted. Those before it are skipped. Must be called with growing indices.
    IMessageSource& open(std::size_t unit);

    /// The number of the slot in which the unit runs that is open.
    unsigned slotOfOpen() const noexcept { return m_open->slot->number(); }

    /// What has been printed goes there from now on; null for the standard streams.
    void printTo(PrintedText* text) noexcept { m_printed = text; }

    /// Skips what is left of the unit that is open, and passes each process that was left behind to
    /// the function, as the command that started it.
    void close(std::function<void(std::string const&)> const& tellLeftover);

    /// True when a process has crashed or failed at its end, behind its last unit.
    bool hasEndedBadly() const noexcept { return m_state->hasEndedBadly != 0; }

    /// @{
    /// Lets all processes stop, and go on. They are not stopped at once.
    void suspend();
    void resume();
    bool isSuspended() const;
    /// @}

    /// Adds what the processes have done and are doing.
    void addTo(RunProgress& progress) const;

    /// A unit that has failed has passed when it was tried again.
    void takeBackFailure() noexcept { --m_state->failedUnits; }

    /// Waits for the ends of all processes. No unit begins any more.
    void awaitEnd();

    /// True when the unit has begun, and may have ended.
    bool hasBegun(std::size_t unit) const;

    /// Waits for the ends of all processes, and prints what they have printed at their ends.
    void finish();

private:
    /// A slot and what was taken from it and is not told yet.
    struct Place
    {
        std::unique_ptr<CSlot> slot;
        pid_t keeper = 0;
        std::string taken;
        std::size_t told = 0;       ///< of the bytes taken
        std::uint64_t consumed = 0; ///< of all bytes ever
        std::string message;        ///< the last one
        std::uint64_t unit = 0;     ///< the last one that has begun
        bool isBetween = true;      ///< it has ended, or there was none
    };

    CMessageReader next() override;
    void mute(bool isMuted) override { m_isMuted = isMuted; }

    void startKeeper(Place& place);
    void wakeKeepers() const;
    bool takeMessage(Place& place);
    bool hasBegun(Place& place, std::size_t unit);
    static PrintedText takePrinted(Place& place, CMessageReader message);
    void print(PrintedText const& text) const;
    void wait(Place* hungry);
    bool sleepUntilWoken(int milliseconds);
    void drainAll();
    void takeAll();
    void skipUntold();
    void printRest();
    void checkKeepers();
    void endIfInterrupted();
    bool areKeepersLeft() const;
    IMessageSource& openNothing();
    void replaceKeeper(Place& place);

    std::vector<Unit> const& m_units;
    CrewOptions m_options;
    IUnitRunner& m_runner;
    CRunTerminal& m_terminal;
    TSharedMemory<CrewState> m_state;
    Pipe m_wake;
    std::vector<Place> m_places;
    Place* m_open = nullptr;
    bool m_isAtEnd = false; ///< of the unit that is open
    std::vector<std::string> m_leftovers;
    PrintedText* m_printed = nullptr;
    bool m_isMuted = false;
    bool m_isInterrupted = false;
    bool m_isFinished = false;
    unsigned m_replaced = 0;
};

} // namespace qix
