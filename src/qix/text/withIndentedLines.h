#pragma once

#include <string>

namespace qix
{

/// The text with all lines after the first one indented; trailing line ends are dropped.
std::string withIndentedLines(std::string const& text);

} // namespace qix
