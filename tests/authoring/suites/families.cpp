// Macros that define a test for each type, or for each value.

#include <qix/combine.h>
#include <qix/test.h>

#include <list>
#include <map>
#include <stdexcept>
#include <string>
#include <tuple>
#include <vector>

namespace
{

template <typename T>
class CHolder : public qix::CTestItem
{
protected:
    void setUp() override { log("setUp"); }

    T m_value = {};
};

class CCounting : public qix::CTestItem
{
protected:
    int m_calls = 0;
};

/// What cannot be written as text, nor copied.
struct Opaque
{
    explicit Opaque(int n) : number(n) {}
    Opaque(Opaque const&) = delete;
    Opaque& operator=(Opaque const&) = delete;

    int number;
};

Opaque const opaque[] = {Opaque(1), Opaque(2)};

std::vector<int> squaresBelow(int limit)
{
    std::vector<int> squares;
    for (int i = 0; i * i < limit; ++i)
    {
        squares.push_back(i * i);
    }
    return squares;
}

std::vector<int> failToMakeValues()
{
    throw std::runtime_error("no values today");
}

std::vector<bool> const flags = {true, false};
std::list<std::string> const texts = {"", "two words", "line\nend\x1b[31m", "a.b",
                                      std::string(61, 'x')};

} // namespace

QIX_TEST_TYPED(typed, holdsNothing, (int, std::string, std::map<int, std::vector<int>>))
{
    QIX_CHECK(TypeParam() == TypeParam());
    log(std::to_string(sizeof(TypeParam) == sizeof(int)));
}

QIX_TEST_TYPED(typed, "with a name of words", (unsigned, long), Long)
{
    QIX_CHECK(TypeParam(-1) > 0);
}

QIX_TEST_TYPED_F(CHolder, typed, hasAFixture, (int, double))
{
    this->log("body");
    QIX_CHECK(this->m_value == 1);
}

QIX_TEST_EACH(each, isOdd, qix::values(1, 2, 3))
{
    QIX_CHECK(param % 2 == 1);
}

QIX_TEST_EACH(each, isSquare, squaresBelow(10))
{
    log(param);
}

QIX_TEST_EACH(each, isText, texts)
{
    QIX_CHECK(param.size() < 20);
}

QIX_TEST_EACH(each, isLiteral, qix::values("one", "two"))
{
    QIX_CHECK(std::string(param).size() == 3);
}

QIX_TEST_EACH(each, isFlag, flags)
{
    QIX_CHECK(param);
}

QIX_TEST_EACH(each, isOpaque, opaque)
{
    QIX_CHECK(param.number == 1);
    QIX_SECTION("section")
    {
        QIX_CHECK(param.number == 1);
    }
}

QIX_TEST_EACH(each, isCombined, qix::combine(qix::values(1, 2), texts, qix::values('a')), None)
{
    auto const& [number, text, letter] = param;
    QIX_CHECK(number < 3);
    QIX_CHECK(text != "x");
    QIX_CHECK(letter == 'a');
}

QIX_TEST_EACH(each, hasNone, std::vector<int>())
{
    QIX_CHECK(param == 1);
}

QIX_TEST_EACH(each, cannotBeMade, failToMakeValues())
{
    QIX_CHECK(param == 1);
}

QIX_TEST_EACH_F(CCounting, each, hasAFixture, qix::values(1, 2))
{
    QIX_CHECK(++m_calls == param);
}

QIX_TEST_EACH(each, neverUsesIt, qix::values(1))
{
}
