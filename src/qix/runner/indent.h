#pragma once

#include <cstddef>
#include <string>

namespace qix
{

/// One level of the log's indentation.
constexpr char const indentOfOneLevel[] = "  ";

/// Takes back one level, as far as there is one.
inline void outdent(std::string& indent)
{
    constexpr std::size_t width = sizeof(indentOfOneLevel) - 1;
    indent.resize(indent.size() < width ? indent.size() : indent.size() - width);
}

} // namespace qix
