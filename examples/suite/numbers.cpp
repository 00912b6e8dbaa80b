// Tests of the conversion between numbers and text.

#include <qix/test.h>

#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <random>
#include <stdexcept>
#include <string>
#include <string_view>

namespace
{

/// The shortest text that gives the number again.
template <typename Number>
std::string_view toText(Number number, char (&buffer)[64])
{
    std::to_chars_result const result = std::to_chars(buffer, buffer + sizeof(buffer), number);
    return std::string_view(buffer, static_cast<std::size_t>(result.ptr - buffer));
}

template <typename Number>
Number toNumber(std::string_view text)
{
    Number number{};
    std::from_chars_result const result =
        std::from_chars(text.data(), text.data() + text.size(), number);
    if (result.ec != std::errc() || result.ptr != text.data() + text.size())
    {
        throw std::invalid_argument("not a number: " + std::string(text));
    }
    return number;
}

template <typename Number>
bool survives(Number number)
{
    char buffer[64];
    return toNumber<Number>(toText(number, buffer)) == number;
}

template <typename Float, typename Bits>
Float fromBits(Bits bits)
{
    static_assert(sizeof(Float) == sizeof(Bits));
    Float number;
    std::memcpy(&number, &bits, sizeof(number));
    return number;
}

} // namespace

QIX_TEST(numbers, integerLimitsSurvive)
{
    subTest("int", [] { QIX_CHECK(survives(std::numeric_limits<int>::min())); });
    subTest("unsigned", [] { QIX_CHECK(survives(std::numeric_limits<unsigned>::max())); });
    subTest("int64", [] { QIX_CHECK(survives(std::numeric_limits<std::int64_t>::min())); });
    subTest("uint64", [] { QIX_CHECK(survives(std::numeric_limits<std::uint64_t>::max())); });
}

QIX_TEST(numbers, writesShortestText)
{
    char buffer[64];
    QIX_CHECK(toText(0.1, buffer) == "0.1");
    QIX_CHECK(toText(1e23, buffer) == "1e+23");
    QIX_CHECK(toText(-0.0, buffer) == "-0");
}

QIX_TEST(numbers, refusesJunk)
{
    QIX_CHECK_THROWS_AS(toNumber<int>(""), std::invalid_argument);
    QIX_CHECK_THROWS_AS(toNumber<int>("12x"), std::invalid_argument);
    QIX_CHECK_THROWS_AS(toNumber<std::int8_t>("128"), std::invalid_argument);
}

QIX_TEST(numbers, randomDoublesSurvive, Long)
{
    constexpr int count = 200000000;
    std::mt19937_64 random;
    for (int i = 0; i < count; ++i)
    {
        double const number = fromBits<double>(std::uint64_t(random()));
        QIX_REQUIRE(!std::isfinite(number) || survives(number));
    }
    log(std::to_string(count) + " doubles");
}

QIX_TEST(numbers, everyFloatSurvives, VeryLong)
{
    std::uint32_t bits = 0;
    do
    {
        float const number = fromBits<float>(bits);
        QIX_REQUIRE(!std::isfinite(number) || survives(number));
        ++bits;
    } while (bits != 0);
}
