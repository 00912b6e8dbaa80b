// Groups, their order and the attributes of tests.

#include <qix/test.h>

#include <stdexcept>

namespace
{

class CFixture : public qix::CTestItem
{
};

class CUnconstructible : public qix::CTestItem
{
public:
    CUnconstructible() { throw std::runtime_error("cannot be made"); }
};

class CUnconstructibleOddly : public qix::CTestItem
{
public:
    CUnconstructibleOddly() { throw 42; }
};

} // namespace

QIX_TEST(second, first)
{
}

QIX_TEST(first, first)
{
}

QIX_TEST(second, second)
{
}

QIX_TEST(second.inner.deep, test)
{
}

QIX_TEST(second, third)
{
}

QIX_TEST(third.inner.deep, asks, Interactive)
{
    log("a human was there");
}

// Too long for what it is said to take, so that the warning shows its class.
QIX_TEST_F(CFixture, third.inner, isLong, Long)
{
}

QIX_TEST(third.inner, isLongAndInteractive, Interactive, Long)
{
}

QIX_TEST(third.inner, isInteractiveAndLong, Long, Interactive)
{
}

QIX_TEST_F(CFixture, third.inner, sharesTheGroup, Short)
{
}

QIX_TEST_F(CUnconstructible, third, cannotBeMade)
{
}

QIX_TEST_F(CUnconstructibleOddly, third, cannotBeMadeEither)
{
}

QIX_TEST(third, hasNoExpectation, None)
{
}

// What the compiler defines as macros can be names.
QIX_TEST(linux, unix)
{
}

namespace nested
{

QIX_TEST(third, liesInANamespace)
{
}

} // namespace nested
