// Matchers in the code of strict users.

#include <qix/matchers.h>
#include <qix/test.h>

#include <list>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <variant>
#include <vector>

namespace accepted
{

using namespace qix::matchers;

/// Matches what its user means.
class CIsEven
{
public:
    bool matches(int value) const { return value % 2 == 0; }
    void describe(qix::CValueWriter& out) const { out.text("is even"); }
};

class CSize
{
public:
    int width = 3;
    int getHeight() const { return 4; }
};

QIX_TEST(accepted, matchers)
{
    std::vector<int> const numbers = {1, 2, 3};
    std::list<long> const others = {1, 2, 3};
    std::unique_ptr<int> const pointer = std::make_unique<int>(7);
    char const* const text = "text";
    QIX_CHECK_THAT(numbers, elementsAre(1, lessThan(3), equalTo(3u))) << "why";
    QIX_CHECK_THAT(numbers, elementsInAnyOrder(3, 2, 1));
    QIX_CHECK_THAT(numbers, sameElements(others));
    QIX_CHECK_THAT(range(others.begin(), others.end()), sameElements(numbers));
    QIX_CHECK_THAT(numbers, allOf(contains(2), each(atLeast(1)), hasSize(3), isNot(isEmpty())));
    QIX_CHECK_THAT(2, anyOf(CIsEven(), notEqualTo(2)));
    QIX_CHECK_THAT(0.1 + 0.2, near(0.3).absolute(0.1).relative(1).ulps(4));
    QIX_CHECK_THAT(0.1f, near(0.1f).ulps(4));
    QIX_CHECK_THAT(3, near(3));
    QIX_CHECK_THAT(text, allOf(equalsText("text"), startsWith("t"), endsWith("t")));
    QIX_REQUIRE_THAT(std::string(text), allOf("text", matchesRegex("t.*"), containsText("ex")));
    QIX_CHECK_THAT(pointer, allOf(isNotNull(), pointsTo(7)));
    QIX_CHECK_THAT(pointer.get(), isNot(isNull()));
    QIX_CHECK_THAT(std::optional<int>(7), allOf(hasValue(), hasValue(7), isNot(hasNoValue())));
    QIX_CHECK_THAT((std::variant<int, char>(7)), allOf(holds<int>(), holds<int>(7)));
    QIX_CHECK_THAT((std::map<int, char>{{1, 'a'}}), elementsAre(pairOf(1, 'a')));
    QIX_CHECK_THAT(CSize(), field("width", &CSize::width, 3));
    QIX_CHECK_THAT(CSize(), property("height", &CSize::getHeight, greaterThan(3)));
    QIX_CHECK_THROWS_WITH(throw "text", startsWith("t"));
    QIX_CHECK_THROWS_WITH_AS(throw "text", "text", char const*);
    QIX_CHECK_THROWS_WITH(numbers.at(7), containsText("range")) << "why";
}

} // namespace accepted
