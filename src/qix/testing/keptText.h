#pragma once

#include <string>

namespace qix
{

/// What the check that is failing on this thread tells beside its expression; it is kept no longer.
std::string takeKeptText();

} // namespace qix
