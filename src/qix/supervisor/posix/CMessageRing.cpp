#include "supervisor/posix/CMessageRing.h"

#include <algorithm>
#include <chrono>
#include <cstring>
#include <thread>

#include <unistd.h>

namespace qix
{

namespace
{

constexpr std::chrono::microseconds pause(100);

} // namespace

/// A message counts once all of it is there, unless it is greater than the ring.
void CMessageRing::send(std::string_view message)
{
    auto const messageSize = static_cast<std::uint64_t>(message.size());
    std::string_view const length(reinterpret_cast<char const*>(&messageSize), sizeof messageSize);
    std::uint64_t const needed = length.size() + message.size();
    std::uint64_t const position = m_slot.written.load(std::memory_order_relaxed);
    if (position + needed - m_slot.taken.load(std::memory_order_acquire) <= size)
    {
        copyIn(position, length);
        copyIn(position + length.size(), message);
        m_slot.written.store(position + needed);
        return;
    }
    m_slot.owed = needed;
    sendPart(length);
    sendPart(message);
}

void CMessageRing::completeTorn()
{
    if (m_slot.owed != 0)
    {
        sendPart(std::string(static_cast<std::size_t>(m_slot.owed), '\0'));
        m_slot.endOfTorn = m_slot.written.load();
    }
}

void CMessageRing::sendPart(std::string_view part)
{
    while (!part.empty())
    {
        std::uint64_t const position = m_slot.written;
        std::size_t const room = size - static_cast<std::size_t>(position - m_slot.taken);
        std::string_view const bytes = part.substr(0, room);
        copyIn(position, bytes);
        m_slot.owed -= bytes.size();
        m_slot.written = position + bytes.size();
        part.remove_prefix(bytes.size());
        if (!part.empty())
        {
            wakeSupervisor();
            std::this_thread::sleep_for(pause);
        }
    }
}

void CMessageRing::copyIn(std::uint64_t position, std::string_view bytes) noexcept
{
    std::size_t const begin = position % size;
    std::size_t const first = std::min(bytes.size(), size - begin);
    std::memcpy(m_room + begin, bytes.data(), first);
    std::memcpy(m_room, bytes.data() + first, bytes.size() - first);
}

void CMessageRing::wakeSupervisor()
{
    if (m_crew.isWaiting != 0 && m_crew.isWaiting.exchange(0) != 0)
    {
        // A pipe that is full wakes as well.
        static_cast<void>(!write(m_wake, "", 1));
    }
}

void CMessageRing::awaitSupervisor()
{
    wakeSupervisor();
    while (!isEmpty() || m_slot.isHungry == 0)
    {
        std::this_thread::sleep_for(pause);
    }
}

void CMessageRing::takeInto(std::string& bytes)
{
    std::uint64_t const written = m_slot.written.load(std::memory_order_acquire);
    std::uint64_t taken = m_slot.taken.load(std::memory_order_relaxed);
    while (taken < written)
    {
        std::size_t const begin = taken % size;
        std::size_t const count =
            static_cast<std::size_t>(std::min<std::uint64_t>(written - taken, size - begin));
        bytes.append(m_room + begin, count);
        taken += count;
    }
    m_slot.taken = taken;
}

} // namespace qix
