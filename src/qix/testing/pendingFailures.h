#pragma once

#include <cstddef>

namespace qix
{

/// Notes the failures on this thread whose messages were left by exceptions: all but the \p outer
/// ones, whose messages are still being made. Those that nobody can note, since no test is running,
/// are dropped.
void notePendingFailures(std::size_t outer);

} // namespace qix
