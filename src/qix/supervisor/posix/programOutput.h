#pragma once

#include <chrono>
#include <string>
#include <vector>

namespace qix
{

/// What the program prints on standard output, or nothing when it cannot be started. It is ended,
/// and what it has printed by then is nothing, when it takes longer. \param command  the program's
/// name, which is looked for in PATH, and its arguments
std::string programOutput(std::vector<std::string> const& command, std::chrono::seconds longest);

} // namespace qix
