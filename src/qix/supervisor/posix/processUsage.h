#pragma once

#include "model/TestProcess.h"

#include <sys/resource.h>

namespace qix
{

/// What the system tells of a process.
ProcessUsage usageOf(rusage const& usage) noexcept;

/// What this process, and those that it has started and waited for, have used so far.
ProcessUsage usageOfThisProcess() noexcept;

} // namespace qix
