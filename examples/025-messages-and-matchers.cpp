// What more a failure can tell, and matchers.

#include <qix/matchers.h>
#include <qix/test.h>

#include <exception>
#include <map>
#include <stdexcept>
#include <string>
#include <vector>

namespace
{

std::vector<int> const primes = {2, 3, 5, 7, 11, 13};

void open(std::string const& name)
{
    throw std::runtime_error("cannot open " + name);
}

} // namespace

// What stands behind a check is evaluated only when that has failed.
QIX_TEST(telling, messages)
{
    std::map<std::string, int> const ages = {{"Ann", 30}, {"Bob", -1}};
    for (auto const& [name, age] : ages)
    {
        QIX_CHECK(age >= 0) << "the age of " << name << " in " << ages;
    }
}

// All that stand in scopes around the failure are told, also with an exception that leaves them.
QIX_TEST(telling, infos)
{
    QIX_INFO("with " << primes.size() << " primes");
    for (int const number : primes)
    {
        QIX_CAPTURE(number, number / 2);
        QIX_CHECK(number % 2 == 1);
    }
    open("primes.txt");
}

// What is thrown inside of another exception is told below it.
QIX_TEST(telling, exceptions)
{
    QIX_CHECK(!primes.empty());
    try
    {
        open("primes.txt");
    }
    catch (std::exception const&)
    {
        std::throw_with_nested(std::logic_error("cannot count the primes"));
    }
}

QIX_TEST(telling, thrownMessages)
{
    QIX_CHECK_THROWS_WITH(open("a.txt"), "cannot open a.txt");
    QIX_CHECK_THROWS_WITH(open("a.txt"), qix::matchers::startsWith("cannot read"));
    QIX_CHECK_THROWS_WITH_AS(open("a.txt"), "cannot open a.txt", std::logic_error);
}

// A matcher of your own: a class with two operations.
struct IsOdd
{
    bool matches(int value) const { return value % 2 == 1; }
    void describe(qix::CValueWriter& out) const { out.text("odd"); }
};

QIX_TEST(telling, matchers)
{
    using namespace qix::matchers;
    std::vector<int> const numbers = {3, 4};
    QIX_CHECK_THAT(numbers, elementsAre(3, greaterThan(4)));
    QIX_CHECK_THAT(numbers, elementsInAnyOrder(4, 5));
    QIX_CHECK_THAT(numbers, allOf(hasSize(2), each(IsOdd())));
    QIX_CHECK_THAT(0.25, near(0.5).absolute(0.125));
    QIX_CHECK_THAT("a text", anyOf(startsWith("b"), matchesRegex("a.*b")));
}
