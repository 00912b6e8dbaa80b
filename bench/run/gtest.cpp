#include "count.h"

#include <gtest/gtest.h>

namespace
{

class CEmptyTest : public testing::Test
{
    void TestBody() override {}
};

} // namespace

int main(int argc, char** argv)
{
    testing::InitGoogleTest(&argc, argv);
    int const count = bench::testCount();
    for (int i = 0; i < count; ++i)
    {
        testing::RegisterTest("bench", bench::testName(i).c_str(), nullptr, nullptr, __FILE__,
                              __LINE__, []() -> testing::Test* { return new CEmptyTest; });
    }
    return RUN_ALL_TESTS();
}
