#pragma once

#include <ctime>

namespace test
{

/// Stands in for the system's clock while it lives, so that tests of long durations do not wait.
///
/// The test executable's time() and clock_gettime() come before those of the C library, also for
/// the libraries that it uses. The clock stands still but for advance().
class CFakeClock
{
public:
    CFakeClock();
    CFakeClock(CFakeClock const&) = delete;
    CFakeClock& operator=(CFakeClock const&) = delete;
    ~CFakeClock();

    /// \param seconds  may be negative
    void advance(std::time_t seconds) { m_now += seconds; }

    std::time_t getNow() const noexcept { return m_now; }

private:
    std::time_t m_now = 1000000000;
};

} // namespace test
