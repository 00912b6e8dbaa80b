#pragma once

#include <cstdlib>
#include <fstream>
#include <unistd.h>

/// What the copies of the ports have in front of each check.
namespace ports
{

/// Counts, and writes the count to the file that the environment tells when the process ends. One
/// that a test has forked writes nothing.
class CCheckCounter
{
public:
    CCheckCounter() = default;
    CCheckCounter(CCheckCounter const&) = delete;
    CCheckCounter& operator=(CCheckCounter const&) = delete;

    ~CCheckCounter()
    {
        if (m_process == getpid())
        {
            std::ofstream(std::getenv("PORTS_COUNT")) << m_count;
        }
    }

    void count() noexcept { ++m_count; }

private:
    pid_t m_process = getpid();
    long m_count = 0;
};

inline CCheckCounter counter;

inline void countCheck() noexcept
{
    counter.count();
}

} // namespace ports
