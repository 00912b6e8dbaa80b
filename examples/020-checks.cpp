// All checks, and what each tells when it fails.

#include <qix/test.h>

#include <map>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

namespace
{

int parse(std::string const& text)
{
    return std::stoi(text);
}

} // namespace

// QIX_CHECK notes a failure and goes on; the values of both sides are shown.
QIX_TEST(checks, values)
{
    std::vector<int> const numbers = {1, 2, 3};
    std::map<std::string, double> const prices = {{"apple", 0.5}, {"pear", 0.75}};
    std::optional<int> const nothing;

    QIX_CHECK(numbers.size() == 4);
    QIX_CHECK(numbers == std::vector<int>{1, 2, 4});
    QIX_CHECK(prices.at("apple") > prices.at("pear"));
    QIX_CHECK(prices.empty());
    QIX_CHECK(std::string("blue") == "green");
    QIX_CHECK(nothing == 7);
}

// QIX_REQUIRE ends the test, where nothing below makes sense otherwise.
QIX_TEST(checks, requirements)
{
    std::vector<int> const numbers;
    QIX_REQUIRE(!numbers.empty());
    QIX_CHECK(numbers.front() == 1);
}

// Floating-point numbers are compared with a tolerance.
QIX_TEST(checks, tolerance)
{
    QIX_CHECK(0.1 + 0.2 == qix::approx(0.3));
    QIX_CHECK(99.0 == qix::approx(100).relative(0.02));
    QIX_CHECK(99.0 == qix::approx(100).absolute(0.5));
    QIX_CHECK(0.1 + 0.2 == 0.3);
}

QIX_TEST(checks, exceptions)
{
    QIX_CHECK_THROWS(parse("x"));
    QIX_CHECK_THROWS_AS(parse("x"), std::invalid_argument);
    QIX_CHECK_NOTHROW(parse("7"));

    QIX_CHECK_THROWS(parse("7"));
    QIX_CHECK_THROWS_AS(parse("x"), std::out_of_range);
    QIX_CHECK_NOTHROW(parse("x"));
}

// The other ways to end a test.
QIX_TEST(checks, fail)
{
    QIX_FAIL("not written yet");
}

QIX_TEST(checks, skip)
{
    QIX_SKIP();
}

QIX_TEST(checks, abort)
{
    QIX_ABORT("the server cannot be reached");
}
