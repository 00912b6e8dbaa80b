// Sections: parts of a test that share the code in front of them. The test is run from its
// beginning once for each innermost section, with everything made anew.

#include <qix/test.h>

#include <string>
#include <vector>

// Each section begins with three numbers. The last one is wrong on purpose.
QIX_TEST(vector, "changes its size")
{
    std::vector<int> numbers = {1, 2, 3};

    QIX_SECTION("when it grows")
    {
        numbers.push_back(4);
        QIX_CHECK(numbers.size() == 4);

        QIX_SECTION("keeps what was there")
        {
            QIX_CHECK(numbers.front() == 1);
        }
        QIX_SECTION("can be cleared")
        {
            numbers.clear();
            QIX_CHECK(numbers.empty());
        }
    }
    QIX_SECTION("when it shrinks")
    {
        numbers.pop_back();
        QIX_CHECK(numbers.size() == 3);
    }
}

// The names may be made as the test runs.
QIX_TEST(vector, "has room for")
{
    for (std::size_t size = 1; size < 1000; size *= 10)
    {
        QIX_SECTION(std::to_string(size) + " elements")
        {
            QIX_CHECK(std::vector<int>(size).size() == size);
        }
    }
}
