// Tests that Bazel shares out among shards. Two of them go wrong when they are told to.
#include <qix/test.h>

#include <csignal>
#include <cstdlib>

namespace
{

int priceOf(int apples)
{
    return 2 * apples;
}

} // namespace

QIX_TEST(prices, ofNothing)
{
    QIX_CHECK(priceOf(0) == 0);
}

QIX_TEST(prices, ofOneApple)
{
    QIX_CHECK(priceOf(1) == 2);
}

QIX_TEST(prices, ofManyApples)
{
    int const expected = std::getenv("SHOP_FAILS") == nullptr ? 20 : 21;
    QIX_CHECK(priceOf(10) == expected);
}

QIX_TEST(orders, areEmptyAtFirst)
{
}

QIX_TEST(orders, growByOne)
{
}

QIX_TEST(orders, areSent)
{
    if (std::getenv("SHOP_IS_KILLED") != nullptr)
    {
        std::raise(SIGKILL);
    }
}

QIX_TEST(stock, isCounted)
{
}

QIX_TEST(stock, isFilledUp)
{
}

QIX_TEST(stock, isNeverNegative)
{
}
