// A plug-in: a shared object with tests, and nothing else.

#include <qix/test.h>

QIX_TEST(prices, addUp)
{
    QIX_CHECK(2 * 3 == 6);
}
