#include "count.h"

#define BOOST_TEST_DYN_LINK
#define BOOST_TEST_NO_MAIN
#include <boost/test/unit_test.hpp>

namespace
{

void emptyTest()
{
}

bool registerTests()
{
    auto& suite = boost::unit_test::framework::master_test_suite();
    int const count = bench::testCount();
    for (int i = 0; i < count; ++i)
    {
        suite.add(boost::unit_test::make_test_case(&emptyTest, bench::testName(i), __FILE__,
                                                   static_cast<std::size_t>(i)));
    }
    return true;
}

} // namespace

int main(int argc, char** argv)
{
    return boost::unit_test::unit_test_main(&registerTests, argc, argv);
}
