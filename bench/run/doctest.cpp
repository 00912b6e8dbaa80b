#include "count.h"

#define DOCTEST_CONFIG_IMPLEMENT
#include <doctest/doctest.h>

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
        // What the macro TEST_CASE expands to. Tests are told apart by file and line.
        doctest::detail::regTest(
            doctest::detail::TestCase(&emptyTest, __FILE__, static_cast<unsigned>(i),
                                      doctest_detail_test_suite_ns::getCurrentTestSuite()) *
            bench::keptTestName(i));
    }
    return doctest::Context(argc, argv).run();
}
