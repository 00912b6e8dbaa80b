#include "program/posix/standardDescriptors.h"

#include <initializer_list>

#include <fcntl.h>
#include <unistd.h>

namespace qix
{

namespace
{

bool isOpen(int descriptor) noexcept
{
    return fcntl(descriptor, F_GETFD) != -1;
}

} // namespace

void reserveClosedStandardDescriptors() noexcept
{
    // In ascending order, since a file that is opened gets the lowest number that is free.
    for (int const descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
    {
        if (!isOpen(descriptor))
        {
            int const failingMode = descriptor == STDIN_FILENO ? O_WRONLY : O_RDONLY;
            static_cast<void>(open("/dev/null", failingMode));
        }
    }
}

} // namespace qix
