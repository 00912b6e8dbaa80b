// Runs as another user, whose id is the first argument; the others are selection lines.
#include "suite.h"

#include <cstdlib>

#include <unistd.h>

int main(int argc, char** argv)
{
    auto const user = static_cast<uid_t>(std::strtoul(argv[1], nullptr, 10));
    if (geteuid() == 0 && setresuid(user, user, user) != 0)
    {
        return 3;
    }
    argv[1] = argv[0];
    return suite::run(argc - 1, argv + 1, {suite::leaf("test")});
}
