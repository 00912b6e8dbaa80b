#pragma once

#include <zel/language.h>

namespace qix
{

/// Where something is written in the source. Its text is made only when it is shown.
struct SourceLocation
{
    char const* file; ///< as the compiler names it; not owned, and lives as long as the program
    int line;         ///< from 1
};

} // namespace qix
