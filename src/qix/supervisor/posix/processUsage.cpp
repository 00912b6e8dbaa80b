#include "supervisor/posix/processUsage.h"

#include <algorithm>

namespace qix
{

namespace
{

std::chrono::nanoseconds durationOf(timeval const& time) noexcept
{
    return std::chrono::seconds(time.tv_sec) + std::chrono::microseconds(time.tv_usec);
}

} // namespace

ProcessUsage usageOf(rusage const& usage) noexcept
{
    constexpr std::uint64_t unit = 1024;
    return {static_cast<std::uint64_t>(usage.ru_maxrss) * unit,
            durationOf(usage.ru_utime) + durationOf(usage.ru_stime)};
}

ProcessUsage usageOfThisProcess() noexcept
{
    rusage own = {};
    rusage others = {};
    getrusage(RUSAGE_SELF, &own);
    getrusage(RUSAGE_CHILDREN, &others);
    ProcessUsage const first = usageOf(own);
    ProcessUsage const second = usageOf(others);
    return {std::max(first.peakMemory, second.peakMemory),
            first.processorTime + second.processorTime};
}

} // namespace qix
