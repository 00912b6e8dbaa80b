#pragma once

#include <array>
#include <cstddef>
#include <string_view>

namespace qix
{

/// The bytes that stand for themselves in a format: those that ASCII prints, but for some.
class CPlainBytes
{
public:
    /// \param others  what the format writes otherwise
    constexpr explicit CPlainBytes(std::string_view others) noexcept
    {
        for (unsigned byte = 0x20; byte < 0x7F; ++byte)
        {
            m_isPlain[byte] = others.find(static_cast<char>(byte)) == std::string_view::npos;
        }
    }

    /// How many of them the text begins with.
    std::size_t countIn(std::string_view text) const noexcept
    {
        std::size_t count = 0;
        while (count < text.size() && m_isPlain[static_cast<unsigned char>(text[count])])
        {
            ++count;
        }
        return count;
    }

private:
    std::array<bool, 256> m_isPlain = {};
};

} // namespace qix
