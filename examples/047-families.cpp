// One test for each type, and one for each value.

#include <qix/combine.h>
#include <qix/test.h>

#include <cmath>
#include <limits>
#include <string>
#include <vector>

// TypeParam is each of the types in turn. Wrong on purpose: nothing is below zero unsigned.
QIX_TEST_TYPED(limits, areOnBothSidesOfZero, (int, unsigned, double))
{
    QIX_CHECK(std::numeric_limits<TypeParam>::lowest() < TypeParam());
    QIX_CHECK(TypeParam() < std::numeric_limits<TypeParam>::max());
}

namespace
{

template <typename T>
class CFilledVector : public qix::CTestItem
{
protected:
    std::vector<T> m_values = std::vector<T>(3);
};

} // namespace

// The fixture is the class that the template makes for the type.
QIX_TEST_TYPED_F(CFilledVector, vector, isFilledWithDefaults, (int, std::string))
{
    QIX_CHECK(this->m_values.front() == TypeParam());
}

// The body sees each value as param. Wrong on purpose for the last one.
QIX_TEST_EACH(squareRoot, undoesSquaring, qix::values(0.0, 1.0, 1.5, -2.0))
{
    QIX_CHECK(std::sqrt(param * param) == param);
}

// Each value of one list with each of another.
QIX_TEST_EACH(text, repeats, qix::combine(qix::values('a', 'b'), qix::values(0, 3)))
{
    auto const& [letter, count] = param;
    QIX_CHECK(std::string(static_cast<std::size_t>(count), letter).find(letter) ==
              (count == 0 ? std::string::npos : 0));
}

namespace
{

std::vector<std::string> namesOfDays()
{
    return {"Monday", "Tuesday", "Sunday"};
}

} // namespace

// A function makes the values when the group is first asked for its tests.
QIX_TEST_EACH(text, endsOnDay, namesOfDays())
{
    QIX_CHECK(param.substr(param.size() - 3) == "day");
}
