// Tests for types and for values; what is tested are numbers, containers and their limits.

#include <qix/combine.h>
#include <qix/test.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <numeric>
#include <string>
#include <tuple>
#include <type_traits>
#include <vector>

QIX_TEST_TYPED(Limits, areKnown, (int, unsigned, long, double, char))
{
    QIX_CHECK(std::numeric_limits<TypeParam>::is_specialized);
    QIX_CHECK(TypeParam() < std::numeric_limits<TypeParam>::max());
}

// Wrong on purpose for what has no sign.
QIX_TEST_TYPED(Limits, areOnBothSidesOfZero, (int, unsigned, long, double, char))
{
    QIX_CHECK(std::numeric_limits<TypeParam>::lowest() < TypeParam());
}

QIX_TEST_TYPED(Limits, growBySize, (int, unsigned, long, double, char))
{
    if (!std::is_integral_v<TypeParam>)
    {
        QIX_SKIP() << "floating point has other digits";
    }
    int const digits = std::numeric_limits<TypeParam>::digits;
    QIX_REQUIRE(digits > 0);
    QIX_CHECK(digits + (std::is_signed_v<TypeParam> ? 1 : 0) ==
              static_cast<int>(8 * sizeof(TypeParam)));
}

template <typename T>
class CFilled : public qix::CTestItem
{
protected:
    void setUp() override { values.assign(3, T()); }

    std::vector<T> values;
};

QIX_TEST_TYPED_F(CFilled, Filled, hasDefaults, (int, float, bool))
{
    for (TypeParam const value : this->values)
    {
        QIX_CHECK(value == TypeParam());
    }
}

QIX_TEST_TYPED_F(CFilled, Filled, grows, (int, float, bool))
{
    this->values.push_back(TypeParam(1));
    QIX_CHECK(this->values.size() == 4U);
    QIX_CHECK(this->values.back() == TypeParam(1));
}

namespace
{

auto const roots = qix::values(0.0, 1.0, 1.5, 16.0, -2.0);

} // namespace

// Wrong on purpose for the last value.
QIX_TEST_EACH(Root, undoesSquaring, roots)
{
    QIX_CHECK(std::sqrt(param * param) == param);
}

QIX_TEST_EACH(Root, isNotNegative, roots)
{
    QIX_CHECK(std::sqrt(std::abs(param)) >= 0.0);
}

QIX_TEST_EACH(Repeated, hasTheLetterOnly,
              qix::combine(qix::values('a', 'b', 'c'), qix::values(0, 1, 7)))
{
    auto const& [letter, count] = param;
    std::string const text(static_cast<std::size_t>(count), letter);
    QIX_CHECK(std::count(text.begin(), text.end(), letter) == count);
    QIX_CHECK(text.find_first_not_of(letter) == std::string::npos);
}

namespace
{

std::vector<int> powers()
{
    std::vector<int> made;
    for (int power = 1; power < 1000; power *= 2)
    {
        made.push_back(power);
    }
    return made;
}

} // namespace

QIX_TEST_EACH(Power, hasOneBit, powers())
{
    QIX_CHECK((param & (param - 1)) == 0);
    QIX_CHECK(std::gcd(param, 1024) == param);
}
