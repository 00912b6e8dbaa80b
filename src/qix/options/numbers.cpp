#include "options/numbers.h"

#include <limits>

namespace qix
{

std::optional<std::uint64_t> toNumber(std::string const& text)
{
    constexpr std::uint64_t highest = std::numeric_limits<std::uint64_t>::max();
    std::uint64_t number = 0;
    for (char const character : text)
    {
        if (character < '0' || character > '9')
        {
            return std::nullopt;
        }
        auto const digit = static_cast<std::uint64_t>(character - '0');
        if (number > (highest - digit) / 10)
        {
            return std::nullopt;
        }
        number = 10 * number + digit;
    }
    return text.empty() ? std::nullopt : std::optional<std::uint64_t>(number);
}

} // namespace qix
