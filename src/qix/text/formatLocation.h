#pragma once

#include <qix/SourceLocation.h>

#include <string>

namespace qix
{

/// The location in the format of compilers, "file:line", which editors recognise.
std::string formatLocation(SourceLocation const& location);

} // namespace qix
