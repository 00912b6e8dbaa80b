#include "reporters/posix/hostName.h"

#include <unistd.h>

namespace qix
{

std::string hostName()
{
    constexpr std::size_t longest = 256;
    char name[longest + 1] = {};
    return gethostname(name, longest) == 0 ? name : "";
}

} // namespace qix
