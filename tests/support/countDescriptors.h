#pragma once

#include <cstddef>
#include <filesystem>
#include <iterator>

namespace test
{

/// How many descriptors the process has open, the one that looks at them included.
inline std::ptrdiff_t countDescriptors()
{
    using Folder = std::filesystem::directory_iterator;
    return std::distance(Folder("/proc/self/fd"), Folder());
}

} // namespace test
