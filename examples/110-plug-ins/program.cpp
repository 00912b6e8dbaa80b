// Tests in shared objects that are loaded at run time. All modules share one root group, so what a
// plug-in registers while it is loaded is found by the runner.

#include <qix/main.h>

#include <cstdio>
#include <string>

#include <dlfcn.h>

namespace
{

bool isPlugIn(std::string const& argument)
{
    std::string const ending = ".so";
    return argument.size() > ending.size() &&
           argument.compare(argument.size() - ending.size(), ending.size(), ending) == 0;
}

} // namespace

// The plug-ins come first, and what is to be selected behind them. A plug-in stays loaded: its
// tests are used until the process ends.
int main(int argc, char** argv)
{
    int next = 1;
    for (; next < argc && isPlugIn(argv[next]); ++next)
    {
        if (dlopen(argv[next], RTLD_NOW) == nullptr)
        {
            std::fprintf(stderr, "%s\n", dlerror());
            return 2;
        }
    }
    argv[next - 1] = argv[0];
    return qix::runMain(argc - next + 1, argv + next - 1);
}
