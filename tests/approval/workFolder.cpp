// One test that tells where it runs: by its log, and by a file that it leaves there.
#include "suite.h"

#include <cstdio>

using namespace suite;

int main(int argc, char** argv)
{
    auto const leaveFile = [](Self&, ITestRunner&)
    {
        if (std::FILE* file = std::fopen("left behind", "w"))
        {
            std::fclose(file);
        }
    };
    return run(argc, argv, {leaf("leaves a file", leaveFile)});
}
