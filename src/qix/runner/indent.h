#pragma once

namespace qix
{

/// One level of the log's indentation.
constexpr char const indentOfOneLevel[] = "  ";

} // namespace qix
