#pragma once

#include <array>
#include <cstddef>
#include <cstdlib>
#include <string>
#include <vector>

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

/// The name of a test as a literal would be: it stays, and lies beside the others.
inline char const* keptTestName(int number)
{
    constexpr std::size_t longest = sizeof("test2147483647");
    static std::vector<std::array<char, longest>> names(static_cast<std::size_t>(testCount()));
    char* const name = names[static_cast<std::size_t>(number)].data();
    testName(number).copy(name, longest - 1);
    return name;
}

} // namespace bench
