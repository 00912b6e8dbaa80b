// A main of its own that starts twice, and a third time with an argument that is missing.
#include "suite.h"

#include <cstdio>
#include <stdexcept>

int main()
{
    suite::addToRoot({suite::leaf("test")});
    char const* arguments[] = {"*", nullptr};
    qix::CConsoleTestRunner::doMain(1, arguments);
    qix::CConsoleTestRunner::doMain(1, arguments);
    try
    {
        qix::CConsoleTestRunner::doMain(2, arguments);
    }
    catch (std::logic_error const& e)
    {
        std::printf("%s\n", e.what());
    }
    return 0;
}
