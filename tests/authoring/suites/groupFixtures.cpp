// Objects that the tests of a group share: when they are made and released, and what goes wrong.

#include <qix/test.h>

#include <cstdio>
#include <stdexcept>

namespace
{

/// Tells on standard output when it is made and released.
template <int number>
class CTelling
{
public:
    CTelling() { tell("made"); }
    ~CTelling() { tell("released"); }
    CTelling(CTelling const&) = delete;
    CTelling& operator=(CTelling const&) = delete;

    int m_uses = 0;

private:
    static void tell(char const* what)
    {
        std::printf("(%d %s)", number, what);
        std::fflush(stdout);
    }
};

using COuter = CTelling<1>;
using CInner = CTelling<2>;
using CUnused = CTelling<3>;

struct CThrowing : CTelling<4>
{
    CThrowing() { throw std::runtime_error("no server"); }
};

struct CFailing : CTelling<5>
{
    CFailing() { QIX_CHECK(m_uses == 1); }
};

struct CSkipping : CTelling<6>
{
    CSkipping()
    {
        qix::log("looks for a printer");
        QIX_SKIP("no printer");
    }
};

struct CFailingAtTheEnd : CTelling<7>
{
    ~CFailingAtTheEnd() { QIX_CHECK(m_uses == 1); }
};

} // namespace

QIX_GROUP_FIXTURE(outer, COuter);
QIX_GROUP_FIXTURE(outer.inner, CInner);

QIX_TEST(outer, first)
{
    QIX_CHECK(++qix::groupFixture<COuter>().m_uses == 1);
}

QIX_TEST(outer, second)
{
    QIX_CHECK(++qix::groupFixture<COuter>().m_uses == 2);
    log("body");
}

QIX_TEST(outer, third)
{
    QIX_CHECK_THROWS_AS(qix::groupFixture<CInner>(), std::exception);
}

QIX_TEST(outer.inner, hasBoth)
{
    QIX_CHECK(++qix::groupFixture<COuter>().m_uses == 3);
    QIX_CHECK(++qix::groupFixture<CInner>().m_uses == 1);
}

// Nothing in it is run, so that nothing is made.
QIX_GROUP_FIXTURE(unused, CUnused);

QIX_TEST(unused, isLong, Long)
{
}

QIX_TEST(unused, isDisabled, Disabled("no need"))
{
}

QIX_GROUP_FIXTURE(throws, CInner);
QIX_GROUP_FIXTURE(throws, CThrowing);
QIX_GROUP_FIXTURE(throws, COuter);

QIX_TEST(throws, first)
{
}

QIX_TEST(throws, second)
{
}

QIX_TEST(throws.deep, third)
{
}

QIX_GROUP_FIXTURE(fails, CFailing);

QIX_TEST(fails, first)
{
}

QIX_GROUP_FIXTURE(skips, CSkipping);

QIX_TEST(skips, first)
{
}

QIX_TEST(skips, second)
{
}

QIX_GROUP_FIXTURE(failsAtTheEnd, CFailingAtTheEnd);

QIX_TEST(failsAtTheEnd, first)
{
}
