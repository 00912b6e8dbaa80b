// A main of its own that catches nothing.
#include "suite.h"

#include <cstdlib>
#include <stdexcept>

#include <unistd.h>

using namespace suite;

namespace
{

Item failToCreate()
{
    throw std::runtime_error("the factory is broken");
}

void logAndExit(Self&, ITestRunner&)
{
    group("talks")->log("before the end");
    _exit(5);
}

} // namespace

int main(int argc, char const** argv)
{
    addToRoot({lazyGroup("broken", {failToCreate}), leaf("exits", logAndExit)});
    return qix::CConsoleTestRunner::doMain(argc - 1, argv + 1) ? EXIT_SUCCESS : EXIT_FAILURE;
}
