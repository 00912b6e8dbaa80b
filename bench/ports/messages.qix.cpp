// What failures are told with; what is tested are streams, numbers and texts. Most checks are wrong
// on purpose, and each text that has to be told has a number behind a "#".

#include <qix/test.h>

#include <cmath>
#include <map>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

namespace
{

int parse(std::string const& text)
{
    std::istringstream stream(text);
    int number = 0;
    if (!(stream >> number))
    {
        throw std::invalid_argument("no number: " + text);
    }
    return number;
}

void checkPositive(int number)
{
    QIX_INFO("#20 in a function");
    QIX_CHECK(number > 0) << "#21 the number is " << number;
}

} // namespace

QIX_TEST(messages, "a check has a message")
{
    QIX_CHECK(parse("7") == 7) << "#1 not told";
    QIX_CHECK(parse("7") == 8) << "#2 told";
    QIX_CHECK(parse("12") < 10) << "#3 "
                                << "of " << 3 << " parts";
}

QIX_TEST(messages, "a requirement has a message")
{
    QIX_REQUIRE(parse("7") == 7) << "#4 not told";
    QIX_REQUIRE(parse("7") == 8) << "#5 told";
    QIX_CHECK(parse("7") == 9) << "#6 not reached";
}

QIX_TEST(messages, "the loop tells the turn")
{
    std::map<std::string, int> const expected = {{"1", 1}, {"2", 3}, {"3", 3}, {"4", 5}};
    for (auto const& [text, number] : expected)
    {
        QIX_INFO("#7 the text is " << text);
        QIX_CAPTURE(number);
        QIX_CHECK(parse(text) == number);
    }
}

QIX_TEST(messages, "infos are told from outside to inside")
{
    QIX_INFO("#8 outermost");
    {
        QIX_INFO("#9 in the middle");
        {
            QIX_INFO("#10 innermost");
            QIX_CHECK(std::sqrt(4.0) == 3.0);
        }
        QIX_CHECK(std::sqrt(9.0) == 2.0);
    }
    QIX_CHECK(std::sqrt(9.0) == 3.0);
    QIX_CHECK(std::sqrt(16.0) == 3.0);
}

QIX_TEST(messages, "a function tells, too")
{
    QIX_INFO("#11 the caller");
    checkPositive(1);
    checkPositive(0);
    checkPositive(-1);
}

QIX_TEST(messages, "failures are noted without a check")
{
    QIX_NOTE_FAILURE("#12 noted");
    QIX_NOTE_FAILURE("#13 noted, with ") << 2 << " parts";
    QIX_CHECK(parse("3") == 3);
    QIX_FAIL("#14 the end");
    QIX_CHECK(parse("3") == 4);
}

QIX_TEST(messages, "an exception that leaves the test")
{
    QIX_INFO("#15 told with the exception");
    QIX_CHECK(parse("1") == 1);
    parse("one");
    QIX_CHECK(parse("1") == 2);
}

QIX_TEST(messages, "exceptions have messages")
{
    QIX_CHECK_THROWS_WITH(parse("one"), "no number: one");
    QIX_CHECK_THROWS_WITH(parse("two"), "no number: one");
    QIX_CHECK_THROWS_WITH_AS(parse("one"), "no number: one", std::invalid_argument);
    QIX_CHECK_THROWS_WITH_AS(parse("one"), "no number: one", std::out_of_range);
    QIX_CHECK_THROWS_WITH(parse("1"), "no number: 1");
    QIX_CHECK_THROWS_AS(parse("one"), std::logic_error);
    QIX_CHECK_THROWS(parse(""));
    QIX_CHECK_NOTHROW(parse("one"));
}

QIX_TEST(messages, "nothing is made while nothing fails")
{
    int made = 0;
    auto const make = [&made] { return ++made; };
    for (int number = 0; number < 3; ++number)
    {
        QIX_CHECK(parse("7") == 7) << "#16 " << make();
    }
    QIX_CHECK(made == 0);
}
