#pragma once

#include <cstdlib>
#include <string>

namespace bench
{

/// How many tests to run: the environment variable BENCH_TESTS, or else 1000. A variable, since
/// each framework takes the arguments for itself.
inline int testCount()
{
    char const* const text = std::getenv("BENCH_TESTS");
    return text == nullptr ? 1000 : std::atoi(text);
}

inline std::string testName(int number)
{
    return "test" + std::to_string(number);
}

} // namespace bench
