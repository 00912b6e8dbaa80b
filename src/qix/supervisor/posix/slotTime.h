#pragma once

#include "supervisor/posix/SharedState.h"

#include <chrono>
#include <cstdint>

namespace qix
{

/// A clock that stands still while the processes of the slot are stopped. In nanoseconds, from a
/// moment on that is the same for all processes.
inline std::int64_t slotTime(SlotState const& state) noexcept
{
    return std::chrono::steady_clock::now().time_since_epoch() / std::chrono::nanoseconds(1) -
           state.suspended;
}

} // namespace qix
