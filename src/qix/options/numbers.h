#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace qix
{

/// The number, or nothing when the text is no decimal number of 64 bits.
std::optional<std::uint64_t> toNumber(std::string const& text);

} // namespace qix
