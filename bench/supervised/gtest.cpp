#include "../run/count.h"
#include "busy.h"

#include <gtest/gtest.h>

namespace
{

class CBusyTest : public testing::Test
{
    void TestBody() override { bench::beBusy(); }
};

} // namespace

int main(int argc, char** argv)
{
    testing::InitGoogleTest(&argc, argv);
    int const count = bench::testCount();
    for (int i = 0; i < count; ++i)
    {
        testing::RegisterTest("bench", bench::testName(i).c_str(), nullptr, nullptr, __FILE__,
                              __LINE__, []() -> testing::Test* { return new CBusyTest; });
    }
    return RUN_ALL_TESTS();
}
