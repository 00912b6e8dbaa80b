#pragma once

#include <cstddef>
#include <string>

namespace qix
{

/// As much of the beginning as has room in so many columns of a terminal, in whole characters of
/// the locale. A question mark stands for each byte that is none, and for what a terminal would
/// obey.
std::string fitToColumns(std::string const& text, std::size_t columns);

} // namespace qix
