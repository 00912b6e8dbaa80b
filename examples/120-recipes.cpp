// Short answers to how things are done in tests.

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

/// Takes long to make, so that all tests share one. It is made by the first test that asks.
std::vector<int> const& primes()
{
    static std::vector<int> const numbers = []
    {
        std::vector<int> found;
        for (int number = 2; found.size() < 1000; ++number)
        {
            bool isPrime = true;
            for (int const prime : found)
            {
                isPrime = isPrime && number % prime != 0;
            }
            if (isPrime)
            {
                found.push_back(number);
            }
        }
        return found;
    }();
    return numbers;
}

int parse(std::string const& text)
{
    if (text.empty())
    {
        throw std::invalid_argument("there is no number");
    }
    return std::stoi(text);
}

/// What the exception tells that parsing throws.
std::string errorOf(std::string const& text)
{
    try
    {
        parse(text);
    }
    catch (std::exception const& e)
    {
        return e.what();
    }
    return "nothing was thrown";
}

template <typename T>
void holdsSeven()
{
    T const value = 7;
    QIX_CHECK(value == 7);
}

} // namespace

QIX_TEST(sharing, findsFirst)
{
    QIX_CHECK(primes().front() == 2);
}

QIX_TEST(sharing, findsLast)
{
    QIX_CHECK(primes().back() == 7919);
}

QIX_TEST(errors, tellWhatIsMissing)
{
    QIX_CHECK(errorOf("") == "there is no number");
}

QIX_TEST(types, holdSeven)
{
    subTest("int", holdsSeven<int>);
    subTest("double", holdsSeven<double>);
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
