#pragma once

#include <string>

namespace qix
{

/// The text with all lines behind the first one indented, so that they belong to it visibly;
/// line ends behind the last one are dropped.
std::string withIndentedLines(std::string const& text);

} // namespace qix
