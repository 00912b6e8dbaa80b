#pragma once

#include <string>

#include <sys/types.h>

namespace qix
{

/// For each thread of a process that is running a line, and one for each function that it is in,
/// the innermost first, without those that run tests. Empty when there is no debugger, or when that
/// may not look at the process.
std::string describeThreads(pid_t process);

} // namespace qix
