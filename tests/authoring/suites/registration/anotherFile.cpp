// Tests in another source file join the groups of the first one, behind its tests.

#include <qix/test.h>

QIX_TEST(second.inner.deep, fromAnotherFile)
{
}

QIX_TEST(second, fromAnotherFile)
{
}
