// A table of cases in one test: each row is a sub-test with a name and an outcome of its own.

#include <qix/test.h>

#include <string>

namespace
{

std::string toRoman(int number)
{
    struct Digit
    {
        int value;
        char const* text;
    };
    Digit const digits[] = {{10, "X"}, {9, "IX"}, {5, "V"}, {4, "IV"}, {1, "I"}};
    std::string roman;
    for (Digit const& digit : digits)
    {
        for (; number >= digit.value; number -= digit.value)
        {
            roman += digit.text;
        }
    }
    return roman;
}

struct Row
{
    char const* name;
    int number;
    char const* expected;
};

} // namespace

// The third row is wrong, and the fourth runs all the same.
QIX_TEST(roman, table)
{
    Row const rows[] = {
        {"one", 1, "I"}, {"four", 4, "IV"}, {"eight", 8, "IIX"}, {"nineteen", 19, "XIX"}};
    for (Row const& row : rows)
    {
        subTest(row.name, [&] { QIX_CHECK(toRoman(row.number) == row.expected); });
    }
}

// Rows can be skipped, and can have rows themselves.
QIX_TEST(roman, nested)
{
    for (int const number : {1, 50})
    {
        subTest(std::to_string(number),
                [&]
                {
                    if (number > 39)
                    {
                        QIX_SKIP();
                    }
                    subTest("isNotEmpty", [&] { QIX_CHECK(!toRoman(number).empty()); });
                });
    }
}
