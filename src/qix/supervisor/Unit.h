#pragma once

#include <qix/ITestItem.h>

#include "supervisor/IReplayTarget.h"
#include "supervisor/Message.h"

#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>

namespace qix
{

/// What one process runs without a break: a test, or an item that runs its children itself.
struct Unit
{
    std::uint32_t node = 0; ///< where it stands in the tree; noNode when it is not there
    ITestItem* item = nullptr;
    std::optional<std::chrono::nanoseconds> timeLimit;
};

/// Runs units in the process that was forked for them.
class IUnitRunner
{
public:
    virtual ~IUnitRunner() = default;

    /// Runs the unit and sends what is to be played back, up to its ItemEnd.
    virtual void runUnit(Unit const& unit, IMessageSink& sink) = 0;
};

/// How a crew of processes works.
struct CrewOptions
{
    unsigned processes = 1;     ///< that run tests at a time
    unsigned firstSlot = 1;     ///< the number of the first one
    bool isIsolated = false;    ///< each unit has a process of its own
    bool isCounted = true;      ///< among what has been done and what there is to do
    bool isInteractive = false; ///< the unit has the terminal for itself, and nothing is captured
};

} // namespace qix
