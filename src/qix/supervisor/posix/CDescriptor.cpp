#include "supervisor/posix/CDescriptor.h"

#include <array>
#include <cerrno>
#include <system_error>

#include <fcntl.h>

namespace qix
{

Pipe makePipe()
{
    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC) != 0)
    {
        throw std::system_error(errno, std::generic_category(), "a pipe to a test process");
    }
    return {CDescriptor(ends[0]), CDescriptor(ends[1])};
}

} // namespace qix
