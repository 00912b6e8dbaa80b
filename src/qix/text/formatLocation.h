#pragma once

#include <qix/SourceLocation.h>

#include <string>

namespace qix
{

/// The location as compilers write it, which editors and terminals can follow.
std::string formatLocation(SourceLocation const& location);

} // namespace qix
