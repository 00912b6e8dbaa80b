#include "CFakeClock.h"

#include <sys/syscall.h>
#include <unistd.h>

namespace test
{

namespace
{

CFakeClock* g_clock = nullptr;

std::time_t readSystemClock()
{
    std::timespec now = {};
    std::timespec_get(&now, TIME_UTC);
    return now.tv_sec;
}

} // namespace

CFakeClock::CFakeClock()
{
    g_clock = this;
}

CFakeClock::~CFakeClock()
{
    g_clock = nullptr;
}

} // namespace test

/// What std::chrono::steady_clock asks.
extern "C" __attribute__((visibility("default"))) int clock_gettime(clockid_t clock,
                                                                    std::timespec* now) noexcept
{
    if (clock != CLOCK_MONOTONIC || test::g_clock == nullptr)
    {
        return static_cast<int>(syscall(SYS_clock_gettime, clock, now));
    }
    *now = {test::g_clock->getNow(), 0};
    return 0;
}

extern "C" __attribute__((visibility("default"))) std::time_t time(std::time_t* result) noexcept
{
    std::time_t const now =
        test::g_clock == nullptr ? test::readSystemClock() : test::g_clock->getNow();
    if (result != nullptr)
    {
        *result = now;
    }
    return now;
}
