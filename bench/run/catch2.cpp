#include "count.h"

#define CATCH_CONFIG_RUNNER
#include <catch2/catch.hpp>

namespace
{

void emptyTest()
{
}

} // namespace

int main(int argc, char** argv)
{
    int const count = bench::testCount();
    for (int i = 0; i < count; ++i)
    {
        // What the macro TEST_CASE expands to.
        Catch::AutoReg const registration(Catch::makeTestInvoker(&emptyTest),
                                          CATCH_INTERNAL_LINEINFO, Catch::StringRef(),
                                          Catch::NameAndTags(bench::testName(i)));
    }
    return Catch::Session().run(argc, argv);
}
