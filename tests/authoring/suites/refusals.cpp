// Everything about the names of tests that is refused.

#include <qix/test.h>

QIX_TEST(ledger, twice)
{
}

QIX_TEST(ledger, twice)
{
}

QIX_TEST(100 %, test)
{
}

QIX_TEST(ledger..import, test)
{
}

QIX_TEST(, test)
{
}

QIX_TEST(ledger.twice, test)
{
}

QIX_TEST(ledger.export, test)
{
}

QIX_TEST(ledger, export)
{
}

QIX_TEST(ledger, isFine)
{
    QIX_FAIL("nothing may run");
}
