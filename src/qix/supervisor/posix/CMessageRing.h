#pragma once

#include "supervisor/Message.h"
#include "supervisor/posix/SharedState.h"

#include <cstddef>
#include <string>

namespace qix
{

/// Carries messages from the processes of one slot to the supervisor through shared memory: none of
/// them is lost when a process ends, and none costs a system call while the other side is busy.
class CMessageRing : public IMessageSink
{
public:
    static constexpr std::size_t size = 1U << 20U;

    /// All that is passed outlives the ring.
    /// \param room  of this size, shared
    /// \param wake  the pipe that wakes the supervisor
    CMessageRing(CrewState& crew, SlotState& slot, char* room, int wake)
        : m_crew(crew), m_slot(slot), m_room(room), m_wake(wake)
    {
    }

    /// Waits while there is no room.
    void send(std::string_view message) override;

    /// Ends the message of a process that has ended before it could.
    void completeTorn();

    /// Wakes the supervisor if it waits.
    void wakeSupervisor();

    /// Waits until the supervisor has done all that it was told.
    void awaitSupervisor();

    /// Adds to the text all that has been sent and was not taken.
    void takeInto(std::string& bytes);

    bool isEmpty() const noexcept { return m_slot.written == m_slot.taken; }

private:
    void sendPart(std::string_view part);
    void copyIn(std::uint64_t position, std::string_view bytes) noexcept;

    CrewState& m_crew;
    SlotState& m_slot;
    char* m_room;
    int m_wake;
};

} // namespace qix
