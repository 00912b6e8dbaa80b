// What the compiler rejects, one case for each macro QIX_REJECTED_...; without any the file
// compiles.

#include <qix/test.h>

QIX_TEST(rejected, cases)
{
    int const one = 1;
    char const* const text = "";
    QIX_CHECK(one == 1);
    QIX_CHECK(text != nullptr);
#if defined QIX_REJECTED_and
    QIX_CHECK(one == 1 && one == 2);
#elif defined QIX_REJECTED_or
    QIX_CHECK(one == 1 || one == 2);
#elif defined QIX_REJECTED_chainedComparison
    QIX_CHECK(0 < one < 2);
#elif defined QIX_REJECTED_commaMessage
    QIX_CHECK(one == 1, "a message");
#elif defined QIX_REJECTED_commaMessageBehindValue
    QIX_CHECK(one, "a message");
#elif defined QIX_REJECTED_assignment
    QIX_CHECK(one = 2);
#elif defined QIX_REJECTED_pointerWithCharacter
    QIX_CHECK(text != 'a');
#elif defined QIX_REJECTED_pointerWithNumber
    QIX_CHECK(text == one);
#elif defined QIX_REJECTED_characterWithPointer
    QIX_CHECK('a' != text);
#endif
}

#if defined QIX_REJECTED_unknownAttribute
QIX_TEST(rejected, attribute, Quick)
{
}
#elif defined QIX_REJECTED_twoDurations
QIX_TEST(rejected, twoDurations, Short, Long)
{
}
#elif defined QIX_REJECTED_twoDurationsAmongOthers
QIX_TEST(rejected, twoDurationsAmongOthers, Short, Interactive, Tags("net"), Long)
{
}
#elif defined QIX_REJECTED_nineTags
QIX_TEST(rejected, nineTags, Tags("1", "2", "3", "4", "5", "6", "7", "8", "9"))
{
}
#endif
