// Matchers; what is tested are containers, texts, numbers and what points to them.

#include <qix/matchers.h>
#include <qix/test.h>

#include <array>
#include <limits>
#include <map>
#include <memory>
#include <numeric>
#include <optional>
#include <sstream>
#include <stdexcept>
#include <string>
#include <utility>
#include <variant>
#include <vector>

using namespace qix::matchers;

namespace
{

struct Person
{
    std::string const& getName() const { return name; }

    std::string name;
    int age;
};

std::vector<int> countedFrom(int first)
{
    std::vector<int> numbers(4);
    std::iota(numbers.begin(), numbers.end(), first);
    return numbers;
}

} // namespace

QIX_TEST(Order, ofNumbers)
{
    QIX_CHECK_THAT(7, equalTo(7));
    QIX_CHECK_THAT(7, notEqualTo(8));
    QIX_CHECK_THAT(7, lessThan(8));
    QIX_CHECK_THAT(7, atMost(7));
    QIX_CHECK_THAT(7, greaterThan(6));
    QIX_CHECK_THAT(7, atLeast(7));
    QIX_CHECK_THAT(7, lessThan(7));
}

QIX_TEST(Near, inSeveralWays)
{
    QIX_CHECK_THAT(0.1 + 0.2, near(0.3).ulps(4));
    QIX_CHECK_THAT(1.05, near(1.0).absolute(0.1));
    QIX_CHECK_THAT(1.2, near(1.0).absolute(0.1));
    QIX_CHECK_THAT(1.0F, near(1.0F).ulps(4));
}

QIX_TEST(Text, ofSeveralKinds)
{
    std::ostringstream stream;
    stream << 12 << " apples";
    QIX_CHECK_THAT(stream.str(), containsText("app"));
    QIX_CHECK_THAT(stream.str(), startsWith("12"));
    QIX_CHECK_THAT(stream.str(), endsWith("les"));
    QIX_CHECK_THAT(stream.str(), matchesRegex("[0-9]+ apples"));
    QIX_CHECK_THAT(stream.str(), containsRegex("a.p"));
    QIX_CHECK_THAT(stream.str(), equalsWithoutCase("12 APPLES"));
    QIX_CHECK_THAT("12 apples", equalsText(stream.str()));
    QIX_CHECK_THAT(stream.str(), startsWith("13"));
    QIX_CHECK_THAT(stream.str(), containsText("pear"));
}

QIX_TEST(Elements, inTheirOrder)
{
    QIX_CHECK_THAT(countedFrom(1), elementsAre(1, 2, 3, 4));
    QIX_CHECK_THAT(countedFrom(1), elementsAre(1, greaterThan(1), lessThan(4), 4));
    QIX_CHECK_THAT(countedFrom(1), elementsAre(1, 2, 4, 3));
    QIX_CHECK_THAT(countedFrom(2), sameElements(std::vector<int>{2, 3, 4, 5}));
}

QIX_TEST(Elements, inAnyOrder)
{
    QIX_CHECK_THAT(countedFrom(1), elementsInAnyOrder(4, 1, 3, 2));
    QIX_CHECK_THAT(countedFrom(1), elementsInAnyOrder(4, 1, 3, 3));
}

QIX_TEST(Elements, someOrAll)
{
    QIX_CHECK_THAT(countedFrom(1), contains(3));
    QIX_CHECK_THAT(countedFrom(1), contains(greaterThan(3)));
    QIX_CHECK_THAT(countedFrom(1), contains(9));
    QIX_CHECK_THAT(countedFrom(1), each(greaterThan(0)));
    QIX_CHECK_THAT(countedFrom(1), each(greaterThan(1)));
    QIX_CHECK_THAT(countedFrom(1), hasSize(4));
    QIX_CHECK_THAT(std::vector<int>(), isEmpty());
    QIX_CHECK_THAT(countedFrom(1), isNot(isEmpty()));
}

QIX_TEST(Elements, ofMaps)
{
    std::map<std::string, int> const ages = {{"Ann", 30}, {"Bob", 20}};
    QIX_CHECK_THAT(ages, elementsAre(pairOf("Ann", 30), pairOf("Bob", lessThan(30))));
    QIX_CHECK_THAT(ages, contains(pairOf("Cid", anything())));
}

QIX_TEST(Pointers, smartOrNot)
{
    int const number = 7;
    int const* const none = nullptr;
    QIX_CHECK_THAT(&number, isNotNull());
    QIX_CHECK_THAT(none, isNull());
    QIX_CHECK_THAT(&number, pointsTo(7));
    QIX_CHECK_THAT(std::make_unique<int>(8), pointsTo(greaterThan(7)));
    QIX_CHECK_THAT(std::make_shared<int>(8), pointsTo(7));
}

QIX_TEST(Holders, optionalAndVariant)
{
    QIX_CHECK_THAT(std::optional<int>(7), hasValue(7));
    QIX_CHECK_THAT(std::optional<int>(7), hasValue(lessThan(7)));
    QIX_CHECK_THAT(std::optional<int>(), hasNoValue());
    std::variant<int, std::string> const held = "text";
    QIX_CHECK_THAT(held, holds<std::string>("text"));
    QIX_CHECK_THAT(held, holds<int>(7));
}

QIX_TEST(Objects, byTheirParts)
{
    Person const ann = {"Ann", 30};
    QIX_CHECK_THAT(ann, field("age", &Person::age, 30));
    QIX_CHECK_THAT(ann, property("getName", &Person::getName, startsWith("A")));
    QIX_CHECK_THAT(ann, allOf(field("age", &Person::age, greaterThan(18)),
                              field("name", &Person::name, "Bob")));
}

QIX_TEST(Combined, allAnyAndNot)
{
    QIX_CHECK_THAT(7, allOf(greaterThan(0), lessThan(10), notEqualTo(8)));
    QIX_CHECK_THAT(7, anyOf(lessThan(0), equalTo(7)));
    QIX_CHECK_THAT(7, isNot(equalTo(8)));
    QIX_CHECK_THAT(7, anyOf(lessThan(0), greaterThan(10)));
    QIX_CHECK_THAT(7, anything());
}

QIX_TEST(Combined, endTheTest)
{
    QIX_REQUIRE_THAT(countedFrom(1), hasSize(4));
    QIX_REQUIRE_THAT(countedFrom(1), hasSize(5));
    QIX_CHECK_THAT(countedFrom(1), isEmpty());
}

QIX_TEST(Thrown, hasAMessage)
{
    QIX_CHECK_THROWS_WITH_AS(throw std::runtime_error("no file"), containsText("file"),
                             std::runtime_error);
    QIX_CHECK_THROWS_WITH_AS(throw std::runtime_error("no file"), startsWith("file"),
                             std::runtime_error);
}
