// Tests that end their own process, each in another way.
#include "suite.h"

#include <csignal>
#include <cstdlib>

#include <unistd.h>

using namespace suite;

namespace
{

Item dying(std::string const& name, void (*die)())
{
    return group(
        "around " + name,
        {leaf("before"), leaf(name, [die](Self&, ITestRunner&) { die(); }), leaf("never run")});
}

} // namespace

int main(int argc, char** argv)
{
    return run(argc, argv,
               {dying("kill", [] { static_cast<void>(raise(SIGKILL)); }),
                dying("abort", [] { std::abort(); }), dying("exit at once", [] { _exit(5); })});
}
