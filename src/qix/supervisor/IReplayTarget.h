#pragma once

#include <qix/ITestItem.h>

#include "model/TestProcess.h"

#include <cstddef>
#include <cstdint>

namespace qix
{

/// A moment by both clocks of the runner.
struct Moment
{
    std::int64_t seconds = 0;     ///< of std::time()
    std::int64_t nanoseconds = 0; ///< of std::chrono::steady_clock
};

/// What is asked of the runner to which a test is played back, beside what tests ask.
class IReplayTarget
{
public:
    virtual ~IReplayTarget() = default;

    /// Does with the item what the runner in the test's process has done when it was handed over.
    /// \param node  where it stands in the tree; noNode when it is not there
    /// False when nothing begins any more, so that what is handed over is left out.
    virtual bool isGoingOn() const noexcept = 0;

    virtual void runHanded(std::uint32_t node, ITestItem* item) = 0;

    /// How many sub-tests are running, items among them.
    virtual std::size_t depth() const = 0;

    /// What runs at the depth, from 1 on, began then.
    virtual void setBegin(std::size_t depth, Moment const& begin) = 0;

    /// The process of the unit has used this.
    virtual void noteUsage(ProcessUsage const& usage) = 0;

    /// It is this moment for all that runs at the depth and deeper.
    virtual void setNow(std::size_t depth, Moment const& now) = 0;
};

} // namespace qix
