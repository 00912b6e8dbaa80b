#pragma once

#include <qix/ITestItem.h>

#include "options/RunOptions.h"
#include "selection/CTestPlan.h"

#include <chrono>
#include <optional>

namespace qix
{

/// What a test may take; nothing when it may take any time.
std::optional<std::chrono::nanoseconds> timeLimitOf(ITestItem const& test,
                                                    RunOptions const& options);

/// The same of what is handed to a process as a whole. An item that runs its children itself may
/// take what these may take together.
std::optional<std::chrono::nanoseconds> timeLimitOf(NodeIndex node, CTestPlan const& plan,
                                                    RunOptions const& options);

} // namespace qix
