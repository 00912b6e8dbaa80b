#include "program/posix/terminal.h"

#include <unistd.h>

namespace qix
{

bool isOutputTerminal()
{
    return isatty(STDOUT_FILENO) == 1;
}

} // namespace qix
