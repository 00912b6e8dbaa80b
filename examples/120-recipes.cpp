// Short answers to how things are done in tests.

#include <qix/matchers.h>
#include <qix/secret.h>
#include <qix/test.h>

#include <cstdlib>
#include <sstream>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace
{

/// Takes long to make, so that all tests of the group share one.
class CPrimes
{
public:
    CPrimes()
    {
        for (int number = 2; m_numbers.size() < 1000; ++number)
        {
            bool isPrime = true;
            for (int const prime : m_numbers)
            {
                isPrime = isPrime && number % prime != 0;
            }
            if (isPrime)
            {
                m_numbers.push_back(number);
            }
        }
    }

    std::vector<int> const& getNumbers() const { return m_numbers; }

private:
    std::vector<int> m_numbers;
};

int parse(std::string const& text)
{
    if (text.empty())
    {
        throw std::invalid_argument("there is no number");
    }
    return std::stoi(text);
}

} // namespace

// It is made before the first test of the group is run, and released behind the last one.
QIX_GROUP_FIXTURE(sharing, CPrimes);

QIX_TEST(sharing, findsFirst)
{
    QIX_CHECK(qix::groupFixture<CPrimes>().getNumbers().front() == 2);
}

QIX_TEST(sharing, findsLast)
{
    QIX_CHECK(qix::groupFixture<CPrimes>().getNumbers().back() == 7919);
}

QIX_TEST(errors, tellWhatIsMissing)
{
    QIX_CHECK_THROWS_WITH(parse(""), "there is no number");
    QIX_CHECK_THROWS_WITH_AS(parse("seven"), qix::matchers::containsText("stoi"),
                             std::invalid_argument);
}

QIX_TEST_TYPED(types, holdsSeven, (int, double))
{
    TypeParam const value = 7;
    QIX_CHECK(value == 7);
}

QIX_TEST(output, manyLines)
{
    std::istringstream report("first line\nsecond line\n");
    for (std::string line; std::getline(report, line);)
    {
        log(line);
    }
}

QIX_TEST(secrets, skipsWithoutFile)
{
    if (std::getenv("ZEL_TEST_SECRETS") == nullptr)
    {
        QIX_SKIP("ZEL_TEST_SECRETS is not set");
    }
    QIX_CHECK(!qix::getTestSecret("database", "password").empty());
}

QIX_TEST(threads, check)
{
    std::vector<std::thread> threads;
    for (int number = 0; number < 4; ++number)
    {
        threads.emplace_back([number] { QIX_CHECK(number < 4); });
    }
    for (std::thread& thread : threads)
    {
        thread.join();
    }
}
