// Matchers; what is tested are containers, texts, numbers and what points to them.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

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

using namespace testing;

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

TEST(Order, ofNumbers)
{
    EXPECT_THAT(7, Eq(7));
    EXPECT_THAT(7, Ne(8));
    EXPECT_THAT(7, Lt(8));
    EXPECT_THAT(7, Le(7));
    EXPECT_THAT(7, Gt(6));
    EXPECT_THAT(7, Ge(7));
    EXPECT_THAT(7, Lt(7));
}

TEST(Near, inSeveralWays)
{
    EXPECT_THAT(0.1 + 0.2, DoubleEq(0.3));
    EXPECT_THAT(1.05, DoubleNear(1.0, 0.1));
    EXPECT_THAT(1.2, DoubleNear(1.0, 0.1));
    EXPECT_THAT(1.0F, FloatEq(1.0F));
}

TEST(Text, ofSeveralKinds)
{
    std::ostringstream stream;
    stream << 12 << " apples";
    EXPECT_THAT(stream.str(), HasSubstr("app"));
    EXPECT_THAT(stream.str(), StartsWith("12"));
    EXPECT_THAT(stream.str(), EndsWith("les"));
    EXPECT_THAT(stream.str(), MatchesRegex("[0-9]+ apples"));
    EXPECT_THAT(stream.str(), ContainsRegex("a.p"));
    EXPECT_THAT(stream.str(), StrCaseEq("12 APPLES"));
    EXPECT_THAT("12 apples", StrEq(stream.str()));
    EXPECT_THAT(stream.str(), StartsWith("13"));
    EXPECT_THAT(stream.str(), HasSubstr("pear"));
}

TEST(Elements, inTheirOrder)
{
    EXPECT_THAT(countedFrom(1), ElementsAre(1, 2, 3, 4));
    EXPECT_THAT(countedFrom(1), ElementsAre(1, Gt(1), Lt(4), 4));
    EXPECT_THAT(countedFrom(1), ElementsAre(1, 2, 4, 3));
    EXPECT_THAT(countedFrom(2), ElementsAreArray({2, 3, 4, 5}));
}

TEST(Elements, inAnyOrder)
{
    EXPECT_THAT(countedFrom(1), UnorderedElementsAre(4, 1, 3, 2));
    EXPECT_THAT(countedFrom(1), UnorderedElementsAre(4, 1, 3, 3));
}

TEST(Elements, someOrAll)
{
    EXPECT_THAT(countedFrom(1), Contains(3));
    EXPECT_THAT(countedFrom(1), Contains(Gt(3)));
    EXPECT_THAT(countedFrom(1), Contains(9));
    EXPECT_THAT(countedFrom(1), Each(Gt(0)));
    EXPECT_THAT(countedFrom(1), Each(Gt(1)));
    EXPECT_THAT(countedFrom(1), SizeIs(4));
    EXPECT_THAT(std::vector<int>(), IsEmpty());
    EXPECT_THAT(countedFrom(1), Not(IsEmpty()));
}

TEST(Elements, ofMaps)
{
    std::map<std::string, int> const ages = {{"Ann", 30}, {"Bob", 20}};
    EXPECT_THAT(ages, ElementsAre(Pair("Ann", 30), Pair("Bob", Lt(30))));
    EXPECT_THAT(ages, Contains(Pair("Cid", _)));
}

TEST(Pointers, smartOrNot)
{
    int const number = 7;
    int const* const none = nullptr;
    EXPECT_THAT(&number, NotNull());
    EXPECT_THAT(none, IsNull());
    EXPECT_THAT(&number, Pointee(7));
    EXPECT_THAT(std::make_unique<int>(8), Pointee(Gt(7)));
    EXPECT_THAT(std::make_shared<int>(8), Pointee(7));
}

TEST(Holders, optionalAndVariant)
{
    EXPECT_THAT(std::optional<int>(7), Optional(7));
    EXPECT_THAT(std::optional<int>(7), Optional(Lt(7)));
    EXPECT_THAT(std::optional<int>(), Eq(std::nullopt));
    std::variant<int, std::string> const held = "text";
    EXPECT_THAT(held, VariantWith<std::string>("text"));
    EXPECT_THAT(held, VariantWith<int>(7));
}

TEST(Objects, byTheirParts)
{
    Person const ann = {"Ann", 30};
    EXPECT_THAT(ann, Field("age", &Person::age, 30));
    EXPECT_THAT(ann, Property("getName", &Person::getName, StartsWith("A")));
    EXPECT_THAT(ann,
                AllOf(Field("age", &Person::age, Gt(18)), Field("name", &Person::name, "Bob")));
}

TEST(Combined, allAnyAndNot)
{
    EXPECT_THAT(7, AllOf(Gt(0), Lt(10), Ne(8)));
    EXPECT_THAT(7, AnyOf(Lt(0), Eq(7)));
    EXPECT_THAT(7, Not(Eq(8)));
    EXPECT_THAT(7, AnyOf(Lt(0), Gt(10)));
    EXPECT_THAT(7, _);
}

TEST(Combined, endTheTest)
{
    ASSERT_THAT(countedFrom(1), SizeIs(4));
    ASSERT_THAT(countedFrom(1), SizeIs(5));
    EXPECT_THAT(countedFrom(1), IsEmpty());
}

TEST(Thrown, hasAMessage)
{
    EXPECT_THAT([] { throw std::runtime_error("no file"); },
                ThrowsMessage<std::runtime_error>(HasSubstr("file")));
    EXPECT_THAT([] { throw std::runtime_error("no file"); },
                ThrowsMessage<std::runtime_error>(StartsWith("file")));
}
