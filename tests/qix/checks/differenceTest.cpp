#include "checks/bodyTest.h"

#include <qix/approx.h>

#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <deque>
#include <exception>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace
{

using test::valuesOf;

struct Large
{
    std::array<int, 12> numbers = {};
    bool operator==(Large const& other) const { return numbers == other.numbers; }
};

/// Has bytes behind the number that belong to no member.
struct Padded
{
    int number = 0;
    std::array<long, 5> numbers = {};
    long end = 0;
    bool operator==(Padded const& other) const { return end == other.end; }
};

struct Owner
{
    int member;
};

std::vector<int> numbersWith(std::size_t index, int value)
{
    std::vector<int> numbers(100, 1);
    numbers[index] = value;
    return numbers;
}

/// What stands behind the line of the values.
std::string explanationOf(std::function<void()> body)
{
    std::string const text = valuesOf(std::move(body));
    std::size_t const end = text.find("\n    ");
    return end == std::string::npos ? "" : text.substr(end + 5);
}

TEST(Differences, ofShortValuesAreSeen)
{
    EXPECT_EQ(valuesOf([] { QIX_CHECK(std::string("a") == "b"); }), "with \"a\" == \"b\"");
}

TEST(Differences, ofLinesAreToldByLines)
{
    std::string const left = "one\ntwo\nthree\nfour\n";
    EXPECT_EQ(explanationOf([&] { QIX_CHECK(left == "one\n2\n3\nfour\n"); }),
              "the lines differ from line 2 on (- left, + right):\n"
              "    - two\n    - three\n    + 2\n    + 3");
}

TEST(Differences, ofLongTextsAreToldByTheirPlace)
{
    std::string const left = std::string(60, 'a') + "b" + std::string(60, 'c');
    std::string const right = std::string(60, 'a') + "X" + std::string(60, 'c');
    EXPECT_EQ(explanationOf([&] { QIX_CHECK(left == right); }),
              "first difference at position 60: ...\"" + std::string(20, 'a') + "b" +
                  std::string(19, 'c') + "\"... and ...\"" + std::string(20, 'a') + "X" +
                  std::string(19, 'c') + "\"...");
}

TEST(Differences, ofContainersAreToldByTheirIndex)
{
    EXPECT_EQ(explanationOf([] { QIX_CHECK(numbersWith(73, 7) == numbersWith(73, 8)); }),
              "first difference at index 73: 7 and 8");
    EXPECT_EQ(explanationOf([] { QIX_CHECK(numbersWith(0, 1) == std::vector<int>(101, 1)); }),
              "first difference at index 100: (end) and 1");
}

TEST(Differences, ofContainersAreToldHoweverShortTheyAre)
{
    std::vector<int> const one = {1, 2};
    EXPECT_EQ(explanationOf(
                  [&] {
                      QIX_CHECK(one == std::vector<int>({1, 3}));
                  }),
              "first difference at index 1: 2 and 3");
    EXPECT_EQ(explanationOf([&] { QIX_CHECK(one == std::vector<int>()); }),
              "first difference at index 0: 1 and (end)");
}

TEST(Differences, ofStructuresAreToldByTheirBytes)
{
    Large left;
    Large right;
    right.numbers[10] = 7;
    EXPECT_EQ(explanationOf([&] { QIX_CHECK(left == right); }),
              "first different byte at 40; from byte 32 on "
              "<16 bytes: 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00> and "
              "<16 bytes: 00 00 00 00 00 00 00 00 07 00 00 00 00 00 00 00>");
}

#if __has_builtin(__builtin_clear_padding)
TEST(Differences, ofStructuresWithPaddingAreToldByTheBytesOfTheirValues)
{
    Padded left = {};
    Padded right = {};
    // What is in the padding is no difference.
    std::memset(reinterpret_cast<unsigned char*>(&left) + 4, 7, 4);
    right.end = 7;
    EXPECT_EQ(explanationOf([&] { QIX_CHECK(left == right); }),
              "first different byte at 48; from byte 40 on "
              "<16 bytes: 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00> and "
              "<16 bytes: 00 00 00 00 00 00 00 00 07 00 00 00 00 00 00 00>");
}
#endif

TEST(Differences, ofNearNumbersAreToldWithTheirBound)
{
    EXPECT_EQ(explanationOf([] { QIX_CHECK(1.0 == qix::approx(1.75).absolute(0.5)); }),
              "the difference is 0.75, allowed is 0.5");
}

TEST(Differences, showWhatPointersPointTo)
{
    std::unique_ptr<int> const seven = std::make_unique<int>(7);
    std::unique_ptr<int> const eight = std::make_unique<int>(8);
    std::string const text = valuesOf([&] { QIX_CHECK(seven == eight); });
    EXPECT_NE(text.find(" -> 7 == 0x"), std::string::npos) << text;
    EXPECT_NE(text.find(" -> 8"), std::string::npos) << text;
    EXPECT_EQ(valuesOf([] { QIX_CHECK(std::unique_ptr<int>() != nullptr); }),
              "with nullptr != nullptr");
    int Owner::*const member = nullptr;
    EXPECT_EQ(valuesOf([&] { QIX_CHECK(member != nullptr); }), "with nullptr != nullptr");
}

TEST(Differences, ofExceptionsAreToldWithTheirCauses)
{
    auto const throwNested = []
    {
        try
        {
            throw std::out_of_range("inner");
        }
        catch (std::exception const&)
        {
            std::throw_with_nested(std::runtime_error("outer"));
        }
    };
    std::string const text = valuesOf([&] { QIX_CHECK_NOTHROW(throwNested()); });
    EXPECT_NE(text.find("std::runtime_error"), std::string::npos) << text;
    EXPECT_NE(text.find(": outer\n    caused by std::out_of_range: inner"), std::string::npos)
        << text;
    EXPECT_EQ(valuesOf([] { QIX_CHECK_NOTHROW(throw "text"); }), "it threw char const*: text");
}

} // namespace
