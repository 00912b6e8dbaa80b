#pragma once

#include <string>
#include <string_view>

namespace qix::detail
{

/// True for a name that is written as a string literal, or as several in a row.
bool isLiteral(std::string_view name) noexcept;

/// The text of string literals as they are written in the source, quotes and escapes included.
std::string literalText(std::string_view source);

} // namespace qix::detail
