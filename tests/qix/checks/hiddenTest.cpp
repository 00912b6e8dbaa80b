#include "checks/bodyTest.h"

#include <qix/hidden.h>
#include <zel/String.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace
{

using test::run;
using test::valuesOf;

TEST(Hidden, comparesAsTheValueDoes)
{
    zel::String const password = "swordfish";
    EXPECT_EQ(run(
                  [&]
                  {
                      QIX_CHECK(qix::hidden(password) == "swordfish");
                      QIX_CHECK("swordfish" == qix::hidden(password));
                      QIX_CHECK(qix::hidden(password) == qix::hidden(zel::String("swordfish")));
                      QIX_CHECK(qix::hidden(password) != zel::String("perch"));
                      QIX_CHECK(qix::hidden(7) < 8U);
                      QIX_CHECK(7 <= qix::hidden(7U));
                      QIX_CHECK(qix::hidden(7) > -1);
                      QIX_CHECK(7 >= qix::hidden(7));
                  }),
              "ok");
    EXPECT_FALSE(qix::hidden(7) == 8);
    EXPECT_FALSE(qix::hidden(7) != 7);
}

// What a secret is compared with may be the secret as well.
TEST(Hidden, neitherSideIsShown)
{
    std::string const secret = "swordfish";
    EXPECT_EQ(valuesOf([&] { QIX_CHECK(qix::hidden(secret) == "perch"); }),
              "with <hidden> == <hidden>");
    EXPECT_EQ(valuesOf([&] { QIX_CHECK("perch" == qix::hidden(secret)); }),
              "with <hidden> == <hidden>");
    EXPECT_EQ(
        valuesOf([&]
                 { QIX_CHECK(qix::hidden(std::vector<int>(100)) == std::vector<int>(100, 1)); }),
        "with <hidden> == <hidden>");
}

TEST(Hidden, isHiddenInsideOfOtherValues)
{
    qix::CValueWriter out;
    out.value(std::vector<qix::THidden<int>>(2, qix::hidden(42)));
    EXPECT_EQ(out.written(), "{<hidden>, <hidden>}");
}

TEST(Hidden, keepsWhatWouldGoAway)
{
    auto const kept = qix::hidden(std::string(100, 'x'));
    EXPECT_TRUE(kept == std::string(100, 'x'));
}

} // namespace
