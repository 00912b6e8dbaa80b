// Tests for types and for values; what is tested are numbers, containers and their limits.

#include <gtest/gtest.h>

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

template <typename T>
class Limits : public testing::Test
{
};

using Numbers = testing::Types<int, unsigned, long, double, char>;
TYPED_TEST_SUITE(Limits, Numbers);

TYPED_TEST(Limits, areKnown)
{
    EXPECT_TRUE(std::numeric_limits<TypeParam>::is_specialized);
    EXPECT_LT(TypeParam(), std::numeric_limits<TypeParam>::max());
}

// Wrong on purpose for what has no sign.
TYPED_TEST(Limits, areOnBothSidesOfZero)
{
    EXPECT_LT(std::numeric_limits<TypeParam>::lowest(), TypeParam());
}

TYPED_TEST(Limits, growBySize)
{
    if (!std::is_integral_v<TypeParam>)
    {
        GTEST_SKIP() << "floating point has other digits";
    }
    int const digits = std::numeric_limits<TypeParam>::digits;
    ASSERT_GT(digits, 0);
    EXPECT_EQ(digits + (std::is_signed_v<TypeParam> ? 1 : 0),
              static_cast<int>(8 * sizeof(TypeParam)));
}

template <typename T>
class Filled : public testing::Test
{
protected:
    void SetUp() override { values.assign(3, T()); }

    std::vector<T> values;
};

using Elements = testing::Types<int, float, bool>;
TYPED_TEST_SUITE(Filled, Elements);

TYPED_TEST(Filled, hasDefaults)
{
    for (TypeParam const value : this->values)
    {
        EXPECT_EQ(value, TypeParam());
    }
}

TYPED_TEST(Filled, grows)
{
    this->values.push_back(TypeParam(1));
    EXPECT_EQ(this->values.size(), 4U);
    EXPECT_EQ(this->values.back(), TypeParam(1));
}

class Root : public testing::TestWithParam<double>
{
};

// Wrong on purpose for the last value.
TEST_P(Root, undoesSquaring)
{
    EXPECT_EQ(std::sqrt(GetParam() * GetParam()), GetParam());
}

TEST_P(Root, isNotNegative)
{
    EXPECT_GE(std::sqrt(std::abs(GetParam())), 0.0);
}

INSTANTIATE_TEST_SUITE_P(, Root, testing::Values(0.0, 1.0, 1.5, 16.0, -2.0));

class Repeated : public testing::TestWithParam<std::tuple<char, int>>
{
protected:
    void SetUp() override
    {
        auto const& [letter, count] = GetParam();
        text.assign(static_cast<std::size_t>(count), letter);
    }

    std::string text;
};

TEST_P(Repeated, hasTheLetterOnly)
{
    auto const& [letter, count] = GetParam();
    EXPECT_EQ(std::count(text.begin(), text.end(), letter), count);
    EXPECT_EQ(text.find_first_not_of(letter), std::string::npos);
}

INSTANTIATE_TEST_SUITE_P(, Repeated,
                         testing::Combine(testing::Values('a', 'b', 'c'),
                                          testing::Values(0, 1, 7)));

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

class Power : public testing::TestWithParam<int>
{
};

TEST_P(Power, hasOneBit)
{
    int const param = GetParam();
    EXPECT_EQ(param & (param - 1), 0);
    EXPECT_EQ(std::gcd(param, 1024), param);
}

INSTANTIATE_TEST_SUITE_P(, Power, testing::ValuesIn(powers()));
