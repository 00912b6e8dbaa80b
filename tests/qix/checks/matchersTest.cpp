#include "checks/bodyTest.h"

#include <qix/googleMockMatchers.h>
#include <qix/matchers.h>
#include <zel/CInvalidArgError.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <limits>
#include <list>
#include <map>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <variant>
#include <vector>

namespace
{

using namespace qix::matchers;
using test::run;
using test::valuesOf;
using test::withoutPlaces;

using Ints = std::vector<int>;

/// "ok", or what the failed check tells below its expression.
template <typename Value, typename Matcher>
std::string told(Value const& value, Matcher const& matcher)
{
    std::string const text = run([&] { QIX_CHECK_THAT(value, matcher); });
    std::size_t const line = text.find("\n    ");
    return line == std::string::npos ? text : text.substr(line + 5);
}

class CIsEven
{
public:
    bool matches(int value) const { return value % 2 == 0; }
    void describe(qix::CValueWriter& out) const { out.text("is even"); }
};

struct Size
{
    int width = 3;
    int getHeight() const { return 4; }
};

int leaves()
{
    throw std::runtime_error("cannot open \"file\"");
}

TEST(Matchers, areChecked)
{
    EXPECT_EQ(withoutPlaces(run([] { QIX_CHECK_THAT(7, lessThan(3)) << "why"; })),
              "QIX_CHECK_THAT(7, lessThan(3)) failed\n    with 7\n    expected: < 3\n    why");
    bool isReached = false;
    EXPECT_NE(run(
                  [&]
                  {
                      QIX_REQUIRE_THAT(7, lessThan(3));
                      isReached = true;
                  }),
              "ok");
    EXPECT_FALSE(isReached);
}

TEST(Matchers, compare)
{
    EXPECT_EQ(told(7, equalTo(7)), "ok");
    EXPECT_EQ(told(7u, equalTo(7)), "ok");
    EXPECT_EQ(told(std::string("a"), equalTo("a")), "ok");
    EXPECT_EQ(told(-1, lessThan(1u)), "ok");
    EXPECT_EQ(told(7, atMost(7)), "ok");
    EXPECT_EQ(told(7, atLeast(7)), "ok");
    EXPECT_EQ(told(7, equalTo(8)), "with 7\n    expected: == 8");
    EXPECT_EQ(told(7, notEqualTo(7)), "with 7\n    expected: != 7");
    EXPECT_EQ(told(7, greaterThan(7)), "with 7\n    expected: > 7");
    EXPECT_EQ(told(7, 8), "with 7\n    expected: 8");
}

TEST(Matchers, areNear)
{
    EXPECT_EQ(told(0.1 + 0.2, near(0.3)), "ok");
    EXPECT_EQ(told(1.0, near(1.5).absolute(0.5)), "ok");
    EXPECT_EQ(told(100, near(101).relative(0.01)), "ok");
    EXPECT_EQ(told(std::nextafter(1.0, 2.0), near(1.0).ulps(1)), "ok");
    EXPECT_EQ(told(-std::numeric_limits<float>::denorm_min(), near(0.0f).ulps(1)), "ok");
    double const infinity = std::numeric_limits<double>::infinity();
    EXPECT_EQ(told(infinity, near(infinity)), "ok");
    EXPECT_NE(told(1e308, near(infinity).absolute(1e308)), "ok");
    EXPECT_NE(told(std::nan(""), near(1.0).ulps(100)), "ok");
    EXPECT_EQ(told(1.0, near(1.75).absolute(0.5)), "with 1\n    expected: near 1.75, absolute 0.5\n"
                                                   "    the difference is 0.75, allowed is 0.5");
    EXPECT_EQ(
        told(1.0f + 2 * std::numeric_limits<float>::epsilon(), near(1.0f).ulps(1)),
        "with 1.0000002\n    expected: near 1, ULPs 1\n"
        "    the difference is 2.384185791015625e-07, allowed is 0; in ULPs 2, allowed are 1");
    EXPECT_THROW(near(1.0).absolute(-1), zel::CInvalidArgError);
}

TEST(Matchers, readTexts)
{
    std::string const text = "one \u00dcber two";
    char const* const null = nullptr;
    EXPECT_EQ(told(text, containsText("\u00dcb")), "ok");
    EXPECT_EQ(told(text.c_str(), startsWith("one")), "ok");
    EXPECT_EQ(told(std::string_view(text), endsWith("two")), "ok");
    EXPECT_EQ(told(text, equalsWithoutCase("ONE \u00dcBER TWO")), "ok");
    EXPECT_EQ(told(text.c_str(), equalsText(text)), "ok");
    EXPECT_EQ(told(text.c_str(), text), "ok");
    EXPECT_EQ(told(text, matchesRegex("one.*two")), "ok");
    EXPECT_EQ(told(text, containsRegex("t[vw]o")), "ok");
    EXPECT_NE(told(text, matchesRegex("t[vw]o")), "ok");
    EXPECT_NE(told(text, endsWith("one \u00dcber two and more")), "ok");
    EXPECT_EQ(told(null, equalsText("")), "with nullptr\n    expected: the text \"\"");
    EXPECT_EQ(told("abc", startsWith("b")), "with \"abc\"\n    expected: starts with \"b\"");
    EXPECT_NE(told("abc", matchesRegex("(")).find("\"(\" is no regular expression"),
              std::string::npos);
}

TEST(Matchers, tellWhereTextsDiffer)
{
    std::string const text(60, 'a');
    EXPECT_NE(told(text, equalsText(text + "b")).find("first difference at position 60: "),
              std::string::npos);
    EXPECT_NE(told("a\nb\n", equalsText("a\nc\n")).find("    - b\n    + c"), std::string::npos);
}

TEST(Matchers, readElements)
{
    EXPECT_EQ(told(Ints{1, 2, 3}, elementsAre(1, lessThan(3), 3)), "ok");
    EXPECT_EQ(told(Ints{}, elementsAre()), "ok");
    EXPECT_EQ(told(Ints{1, 2, 3}, elementsAre(1, lessThan(2), 3)),
              "with {1, 2, 3}\n    expected: {1, < 2, 3}\n    element 1 is 2, expected < 2");
    EXPECT_EQ(told(Ints{1, 2, 3}, elementsAre(1, 2)),
              "with {1, 2, 3}\n    expected: {1, 2}\n    there are 3 elements, expected 2");
    EXPECT_EQ(told(Ints{1}, elementsAre(1, 2)),
              "with {1}\n    expected: {1, 2}\n    there are 1 elements, expected 2");
    EXPECT_EQ(
        told(std::vector<double>{1}, elementsAre(near(2).absolute(0.5))),
        "with {1}\n    expected: {near 2, absolute 0.5}\n"
        "    element 0 is 1, expected near 2, absolute 0.5: the difference is 1, allowed is 0.5");
}

TEST(Matchers, readElementsInAnyOrder)
{
    EXPECT_EQ(told(Ints{3, 1, 2}, elementsInAnyOrder(1, 2, 3)), "ok");
    EXPECT_EQ(told(Ints{1, 2}, elementsInAnyOrder(lessThan(3), 1)), "ok");
    EXPECT_EQ(told(Ints{1, 2}, elementsInAnyOrder(1, 3)),
              "with {1, 2}\n    expected: in any order {1, 3}\n"
              "    no element is 3; not expected is element 1, 2");
    EXPECT_EQ(told(Ints{1, 1}, elementsInAnyOrder(1)),
              "with {1, 1}\n    expected: in any order {1}\n    not expected is element 1, 1");
}

TEST(Matchers, readContainers)
{
    Ints const numbers = {1, 2, 3};
    EXPECT_EQ(told(numbers, contains(greaterThan(2))), "ok");
    EXPECT_EQ(told(numbers, contains(7)), "with {1, 2, 3}\n    expected: contains 7");
    EXPECT_EQ(told(numbers, each(lessThan(4))), "ok");
    EXPECT_EQ(told(numbers, each(lessThan(3))),
              "with {1, 2, 3}\n    expected: each is < 3\n    element 2 is 3, expected < 3");
    EXPECT_EQ(told(numbers, hasSize(3)), "ok");
    EXPECT_EQ(told(numbers, hasSize(lessThan(3))),
              "with {1, 2, 3}\n    expected: the size is < 3\n    the size is 3");
    EXPECT_EQ(told(std::string(), isEmpty()), "ok");
    EXPECT_EQ(told(numbers, isEmpty()), "with {1, 2, 3}\n    expected: is empty");
    EXPECT_EQ(told(std::map<int, char>{{1, 'a'}}, contains(pairOf(1, 'a'))), "ok");
}

TEST(Matchers, compareRanges)
{
    Ints const numbers = {1, 2, 3};
    std::list<long> const others = {2, 3};
    EXPECT_EQ(told(range(numbers.begin() + 1, numbers.end()), sameElements(others)), "ok");
    EXPECT_EQ(told(numbers, sameElements(range(others.begin(), others.end()))),
              "with {1, 2, 3}\n    expected: {2, 3}\n    element 0 is 1, expected 2");
    EXPECT_EQ(told(Ints{2}, sameElements(others)),
              "with {2}\n    expected: {2, 3}\n    element 1 is the end, expected 3");
    EXPECT_EQ(told(Ints{2, 3, 4}, sameElements(others)),
              "with {2, 3, 4}\n    expected: {2, 3}\n    element 2 is 4, expected the end");
}

TEST(Matchers, lookIntoObjects)
{
    int const seven = 7;
    std::unique_ptr<int> const pointer = std::make_unique<int>(7);
    std::variant<int, std::string> const variant = "text";
    EXPECT_EQ(told(std::unique_ptr<int>(), isNull()), "ok");
    EXPECT_EQ(told(&seven, isNotNull()), "ok");
    EXPECT_EQ(told(pointer, pointsTo(7)), "ok");
    EXPECT_NE(told(&seven, pointsTo(8)).find("expected: points to 8\n    it is 7"),
              std::string::npos);
    EXPECT_EQ(told(std::optional<int>(7), hasValue(7)), "ok");
    EXPECT_EQ(told(std::optional<int>(), hasNoValue()), "ok");
    EXPECT_EQ(told(std::optional<int>(), hasValue(7)),
              "with nullopt\n    expected: has the value 7\n    there is none");
    EXPECT_EQ(told(variant, holds<std::string>("text")), "ok");
    EXPECT_EQ(told(variant, holds<std::string>(startsWith("t"))), "ok");
    EXPECT_NE(told(variant, holds<int>()).find("it holds another one, with index 1"),
              std::string::npos);
    EXPECT_EQ(told(std::make_pair(1, 2), pairOf(1, greaterThan(1))), "ok");
    EXPECT_EQ(told(std::make_pair(1, 2), pairOf(1, 3)),
              "with (1, 2)\n    expected: (1, 3)\n    second is 2");
    EXPECT_EQ(told(Size(), field("width", &Size::width, 3)), "ok");
    EXPECT_NE(
        told(Size(), field("width", &Size::width, 4)).find("expected: width is 4\n    width is 3"),
        std::string::npos);
    EXPECT_NE(told(Size(), property("height", &Size::getHeight, 3)).find("height is 4"),
              std::string::npos);
}

TEST(Matchers, areCombined)
{
    EXPECT_EQ(told(7, isNot(8)), "ok");
    EXPECT_EQ(told(7, isNot(7)), "with 7\n    expected: not (7)");
    EXPECT_EQ(told(7, allOf(greaterThan(6), lessThan(8))), "ok");
    EXPECT_EQ(told(7, allOf(greaterThan(6), lessThan(7))),
              "with 7\n    expected: (> 6 and < 7)\n    it is not: < 7");
    EXPECT_EQ(told(7, anyOf(6, lessThan(8))), "ok");
    EXPECT_EQ(told(7, anyOf(6, 8)), "with 7\n    expected: (6 or 8)");
}

TEST(Matchers, ofAUsersOwn)
{
    EXPECT_EQ(told(2, CIsEven()), "ok");
    EXPECT_EQ(told(3, CIsEven()), "with 3\n    expected: is even");
    EXPECT_EQ(told(Ints{2, 3}, each(CIsEven())),
              "with {2, 3}\n    expected: each is is even\n    element 1 is 3, expected is even");
}

TEST(Matchers, ofGoogleMock)
{
    EXPECT_EQ(told(Ints{1, 2}, testing::ElementsAre(1, testing::Gt(1))), "ok");
    EXPECT_EQ(told(std::string("text"), testing::HasSubstr("ex")), "ok");
    EXPECT_EQ(told(7, testing::_), "ok");
    std::string const text = told(Ints{1, 2}, testing::ElementsAre(1, testing::Gt(2)));
    EXPECT_NE(text.find("with {1, 2}\n    expected: has 2 elements"), std::string::npos) << text;
    EXPECT_NE(text.find("element #1 doesn't match"), std::string::npos) << text;
    EXPECT_EQ(told(Ints{1, 2}, each(testing::Lt(3))), "ok");
}

TEST(Matchers, ofMessages)
{
    EXPECT_EQ(run(
                  []
                  {
                      QIX_CHECK_THROWS_WITH(leaves(), "cannot open \"file\"");
                      QIX_CHECK_THROWS_WITH(leaves(), startsWith("cannot"));
                      QIX_CHECK_THROWS_WITH(throw "text", "text");
                      QIX_CHECK_THROWS_WITH(throw std::string("text"), containsText("ex"));
                      QIX_REQUIRE_THROWS_WITH([[maybe_unused]] int const x = leaves(),
                                              endsWith("\"file\""));
                      QIX_CHECK_THROWS_WITH_AS(leaves(), startsWith("cannot"), std::exception);
                      QIX_REQUIRE_THROWS_WITH_AS(throw "text", "text", char const*);
                  }),
              "ok");
    EXPECT_EQ(valuesOf([] { QIX_CHECK_THROWS_WITH(leaves(), startsWith("b")) << "why"; }),
              "it threw std::runtime_error: cannot open \"file\"\n"
              "    expected the message: starts with \"b\"\n    why");
    EXPECT_EQ(valuesOf([] { QIX_CHECK_THROWS_WITH(throw "text", "t"); }),
              "it threw char const*: text\n    expected the message: \"t\"");
    EXPECT_EQ(valuesOf([] { QIX_CHECK_THROWS_WITH(throw 7, "t"); }),
              "it threw int\n    expected the message: \"t\"");
    EXPECT_EQ(valuesOf([] { QIX_CHECK_THROWS_WITH_AS(leaves(), "x", std::logic_error); }),
              "it threw std::runtime_error: cannot open \"file\"");
    EXPECT_EQ(valuesOf([] { QIX_CHECK_THROWS_WITH(static_cast<void>(0), "t"); }),
              "nothing was thrown");
    bool isReached = false;
    EXPECT_NE(run(
                  [&]
                  {
                      QIX_REQUIRE_THROWS_WITH(leaves(), "x");
                      isReached = true;
                  }),
              "ok");
    EXPECT_FALSE(isReached);
}

} // namespace
