#include "text/formatLocation.h"

namespace qix
{

std::string formatLocation(SourceLocation const& location)
{
    return std::string(location.file) + ":" + std::to_string(location.line);
}

} // namespace qix
