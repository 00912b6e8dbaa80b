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

// The ready main would tell of the crash.
int main(int argc, char const** argv)
{
    addToRoot({dying("kill", [] { static_cast<void>(raise(SIGKILL)); }),
               dying("abort", [] { std::abort(); }), dying("exit at once", [] { _exit(5); })});
    return qix::CConsoleTestRunner::doMain(argc - 1, argv + 1) ? EXIT_SUCCESS : EXIT_FAILURE;
}
