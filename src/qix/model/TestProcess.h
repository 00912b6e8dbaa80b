#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>

namespace qix
{

/// What a process has used, with those that it has started and waited for.
struct ProcessUsage
{
    std::uint64_t peakMemory = 0; ///< in bytes; of the one that had most
    std::chrono::nanoseconds processorTime = std::chrono::nanoseconds::zero();
};

/// What is known of the process that has run a test.
struct TestProcess
{
    unsigned worker = 0; ///< the number of its slot; 0 when the test ran in the process of the run
    std::optional<ProcessUsage> usage;       ///< when the test had the process for itself
    std::optional<std::string> firstFailure; ///< when the test is flaky: what was told first
};

} // namespace qix
