// What the compiler refuses, one case for each value of CASE; without any the file compiles.

#include <qix/test.h>

QIX_TEST(refused, cases)
{
    int const one = 1;
    QIX_CHECK(one == 1);
#if CASE == 1
    QIX_CHECK(one == 1 && one == 2);
#elif CASE == 2
    QIX_CHECK(one == 1 || one == 2);
#elif CASE == 3
    QIX_CHECK(0 < one < 2);
#elif CASE == 4
    QIX_CHECK(one == 1, "a message");
#elif CASE == 5
    QIX_CHECK(one, "a message");
#elif CASE == 6
    QIX_CHECK(one = 2);
#endif
}

#if CASE == 7
QIX_TEST(refused, attribute, Quick)
{
}
#elif CASE == 8
QIX_TEST(refused, twoDurations, Short, Long)
{
}
#elif CASE == 9
QIX_TEST(refused, threeAttributes, Short, Interactive, Long)
{
}
#endif
