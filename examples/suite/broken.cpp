// A test that fails on purpose, to see what a failure looks like. Run it with "+broken".

#include <qix/test.h>

QIX_TEST(broken, tenthsAddUp)
{
    log("0.1 and 0.2 have no exact binary form.");
    QIX_CHECK(0.1 + 0.2 == 0.3);
}
