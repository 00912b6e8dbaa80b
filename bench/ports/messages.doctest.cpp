// What failures are told with; what is tested are streams, numbers and texts. Most checks are wrong
// on purpose, and each text that has to be told has a number behind a "#".

#define DOCTEST_CONFIG_IMPLEMENT_WITH_MAIN
#include <doctest/doctest.h>

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
    INFO("#20 in a function");
    CHECK_MESSAGE(number > 0, "#21 the number is ", number);
}

} // namespace

TEST_CASE("a check has a message")
{
    CHECK_MESSAGE(parse("7") == 7, "#1 not told");
    CHECK_MESSAGE(parse("7") == 8, "#2 told");
    CHECK_MESSAGE(parse("12") < 10, "#3 ", "of ", 3, " parts");
}

TEST_CASE("a requirement has a message")
{
    REQUIRE_MESSAGE(parse("7") == 7, "#4 not told");
    REQUIRE_MESSAGE(parse("7") == 8, "#5 told");
    CHECK_MESSAGE(parse("7") == 9, "#6 not reached");
}

TEST_CASE("the loop tells the turn")
{
    std::map<std::string, int> const expected = {{"1", 1}, {"2", 3}, {"3", 3}, {"4", 5}};
    for (auto const& [text, number] : expected)
    {
        INFO("#7 the text is ", text);
        CAPTURE(number);
        CHECK(parse(text) == number);
    }
}

TEST_CASE("infos are told from outside to inside")
{
    INFO("#8 outermost");
    {
        INFO("#9 in the middle");
        {
            INFO("#10 innermost");
            CHECK(std::sqrt(4.0) == 3.0);
        }
        CHECK(std::sqrt(9.0) == 2.0);
    }
    CHECK(std::sqrt(9.0) == 3.0);
    CHECK(std::sqrt(16.0) == 3.0);
}

TEST_CASE("a function tells, too")
{
    INFO("#11 the caller");
    checkPositive(1);
    checkPositive(0);
    checkPositive(-1);
}

TEST_CASE("failures are noted without a check")
{
    FAIL_CHECK("#12 noted");
    FAIL_CHECK("#13 noted, with ", 2, " parts");
    CHECK(parse("3") == 3);
    FAIL("#14 the end");
    CHECK(parse("3") == 4);
}

TEST_CASE("an exception that leaves the test")
{
    INFO("#15 told with the exception");
    CHECK(parse("1") == 1);
    parse("one");
    CHECK(parse("1") == 2);
}

TEST_CASE("exceptions have messages")
{
    CHECK_THROWS_WITH(parse("one"), "no number: one");
    CHECK_THROWS_WITH(parse("two"), "no number: one");
    CHECK_THROWS_WITH_AS(parse("one"), "no number: one", std::invalid_argument);
    CHECK_THROWS_WITH_AS(parse("one"), "no number: one", std::out_of_range);
    CHECK_THROWS_WITH(parse("1"), "no number: 1");
    CHECK_THROWS_AS(parse("one"), std::logic_error);
    CHECK_THROWS(parse(""));
    CHECK_NOTHROW(parse("one"));
}

TEST_CASE("nothing is made while nothing fails")
{
    int made = 0;
    auto const make = [&made] { return ++made; };
    for (int number = 0; number < 3; ++number)
    {
        CHECK_MESSAGE(parse("7") == 7, "#16 ", make());
    }
    CHECK(made == 0);
}
