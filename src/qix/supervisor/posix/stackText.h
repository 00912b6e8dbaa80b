#pragma once

#include "supervisor/posix/SharedState.h"

#include <string>

namespace qix
{

/// A line for each function that was running, the innermost first, with file and line where the
/// debug information is there and addr2line is installed. Empty when nothing was noted.
std::string describeStack(CrashState const& state);

} // namespace qix
