#pragma once

#include <cstdint>
#include <string_view>

namespace qix
{

/// A hash of texts that can be taken piece by piece, and is the same on every machine: FNV-1a.
class CTextHash
{
public:
    void add(std::string_view text) noexcept
    {
        for (char const character : text)
        {
            addByte(static_cast<unsigned char>(character));
        }
    }

    void add(std::uint64_t number) noexcept
    {
        for (unsigned shift = 0; shift < 64; shift += 8)
        {
            addByte((number >> shift) & 0xFFU);
        }
    }

    std::uint64_t get() const noexcept { return m_value; }

private:
    void addByte(std::uint64_t byte) noexcept { m_value = (m_value ^ byte) * 0x100000001B3U; }

    std::uint64_t m_value = 0xCBF29CE484222325U;
};

} // namespace qix
