#pragma once

#include <string>
#include <string_view>

namespace qix
{

/// A name as it is shown: what a terminal would not print as one line is escaped.
std::string shownName(std::string_view name);

} // namespace qix
