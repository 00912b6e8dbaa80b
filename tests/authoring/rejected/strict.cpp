// Compiles without a warning, however many are on.

#include <qix/test.h>

#include <cstddef>
#include <vector>

QIX_TEST(strict, checks)
{
    std::vector<int> const numbers = {1, 2, 3};
    std::size_t const size = 3;
    char const* const text = nullptr;
    QIX_CHECK(numbers.size() == 3);
    QIX_CHECK(3 == size);
    QIX_CHECK(numbers[0] < size);
    QIX_CHECK(0.5 == 0.5f);
    QIX_CHECK(0.1 + 0.2 == qix::approx(0.3));
    QIX_CHECK(text == nullptr);
    QIX_CHECK((size & 1) == 1);
    QIX_CHECK(size << 1 == 6);
    QIX_CHECK(numbers.empty() || numbers.size() == 3);
    QIX_REQUIRE_THROWS(numbers.at(7));
    QIX_CHECK_NOTHROW(numbers.at(0));
    subTest("row", [&] { QIX_CHECK(size > 0u); });
    log("line");
}

QIX_TEST(strict, attributes, Interactive, Long)
{
}
