// The only test of its executable is refused.

#include <qix/test.h>

QIX_TEST(100 %, test)
{
    QIX_FAIL("nothing may run");
}
