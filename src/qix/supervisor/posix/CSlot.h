#pragma once

#include "supervisor/Unit.h"
#include "supervisor/posix/CCapturedStream.h"
#include "supervisor/posix/CMessageRing.h"
#include "supervisor/posix/SharedState.h"
#include "supervisor/posix/TSharedMemory.h"

#include <string>
#include <vector>

#include <sys/types.h>

namespace qix
{

/// A place at which one process at a time runs tests, and all that it has in common with the
/// supervisor.
class CSlot
{
public:
    /// \param crew  shared, outlives the slot
    /// \param wake  the pipe that wakes the supervisor
    CSlot(unsigned number, CrewState& crew, int wake);

    unsigned number() const noexcept { return m_number; }
    SlotState& state() const noexcept { return *m_state; }
    CMessageRing& ring() noexcept { return m_ring; }
    CCapturedStream& out() noexcept { return m_out; }
    CCapturedStream& err() noexcept { return m_err; }

private:
    unsigned m_number;
    TSharedMemory<SlotState> m_state;
    CMessageRing m_ring;
    CCapturedStream m_out;
    CCapturedStream m_err;
};

/// What the processes of a slot know.
struct SlotWork
{
    CSlot& slot;
    CrewState& crew;
    std::vector<Unit> const& units;
    CrewOptions const& options;
    IUnitRunner& runner;
};

/// Tells how much has been printed, as far as that is captured and is not told already.
class CPrintedTeller
{
public:
    explicit CPrintedTeller(SlotWork const& work) : m_work(work) {}

    /// Takes what has been printed by others as told.
    void begin() noexcept;

    void tell();

    /// What is printed from now on belongs to a new unit.
    void beginUnit() const noexcept;

private:
    bool isNothingNew() const noexcept;

    SlotWork const& m_work;
    std::uint64_t m_out = 0;
    std::uint64_t m_err = 0;
};

} // namespace qix
