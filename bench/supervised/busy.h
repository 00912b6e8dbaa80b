#pragma once

#include <cstdlib>
#include <ctime>

namespace bench
{

inline long usedMicroseconds()
{
    timespec used = {};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &used);
    return used.tv_sec * 1000000 + used.tv_nsec / 1000;
}

/// What each test does: it keeps the processor busy for as many microseconds as BENCH_MICROSECONDS
/// tells, by the clock of this process, so that it is the same work on a machine that has other
/// work.
inline void beBusy()
{
    static char const* const text = std::getenv("BENCH_MICROSECONDS");
    static long const microseconds = text == nullptr ? 0 : std::atol(text);
    if (microseconds > 0)
    {
        long const end = usedMicroseconds() + microseconds;
        while (usedMicroseconds() < end)
        {
        }
    }
}

} // namespace bench
