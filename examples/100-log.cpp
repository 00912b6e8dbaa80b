// Every kind of outcome, and output, as something to read in the log.

#include <qix/test.h>

#include <csignal>

QIX_TEST(shop, sellsApple)
{
    log("one apple");
    log("2 euros");
}

QIX_TEST(shop, countsStock)
{
    log("counted 7");
    QIX_CHECK(3 + 4 == 8);
}

QIX_TEST(shop, acceptsCards)
{
    QIX_SKIP();
}

QIX_TEST(shop, ordersFromSupplier)
{
    QIX_ABORT("the supplier does not answer");
}

QIX_TEST(shop.prices, addTax)
{
    for (char const* country : {"AT", "DE"})
    {
        subTest(country, [] { QIX_CHECK(19 < 20); });
    }
}

QIX_TEST(shop.prices, convertCurrency)
{
}

// It says that it takes from 5 seconds to 3 minutes, and takes no time at all.
QIX_TEST(nightly, counts, Long)
{
}

QIX_TEST(crash, before)
{
}

QIX_TEST(crash, usesBadPointer)
{
    log("this line is lost");
    std::raise(SIGSEGV);
}
