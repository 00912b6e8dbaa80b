#pragma once

#include <string>

namespace qix
{

/// The place as compilers write it, which editors and terminals can follow.
std::string placeText(char const* file, int line);

/// The type of the exception being handled and, when it has one, its message.
std::string currentExceptionText();

/// The text with all lines behind the first one indented, so that they belong to it visibly;
/// line ends behind the last one are dropped.
std::string withIndentedLines(std::string const& text);

} // namespace qix
