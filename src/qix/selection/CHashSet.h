#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace qix
{

/// A set of hashes of a number that is known before: quicker than one that allocates each.
class CHashSet
{
public:
    /// \param count  how many hashes are inserted at most
    explicit CHashSet(std::size_t count) : m_slots(roomFor(count), 0) {}

    /// False when the hash is in the set already.
    bool insert(std::uint64_t hash)
    {
        // 0 marks an empty slot. Who takes two hashes for one looks at the texts.
        std::uint64_t const value = hash == 0 ? 1 : hash;
        std::size_t slot = value & (m_slots.size() - 1);
        while (m_slots[slot] != 0)
        {
            if (m_slots[slot] == value)
            {
                return false;
            }
            slot = (slot + 1) & (m_slots.size() - 1);
        }
        m_slots[slot] = value;
        return true;
    }

private:
    /// A power of two, half of which stays empty.
    static std::size_t roomFor(std::size_t count) noexcept
    {
        std::size_t room = 1;
        while (room <= 2 * count)
        {
            room *= 2;
        }
        return room;
    }

    std::vector<std::uint64_t> m_slots;
};

} // namespace qix
