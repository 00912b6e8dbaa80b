// Names that are sentences, and what attributes do.

#include <qix/test.h>

#include <stdexcept>

namespace
{

class CFixture : public qix::CTestItem
{
};

class CNeverMade : public qix::CTestItem
{
public:
    CNeverMade() { throw std::runtime_error("made"); }
};

} // namespace

QIX_TEST(names, "take any text: 100 %, a.b, \"quoted\" and caf\xc3\xa9")
{
}

// In one line, since compilers differ in which line a macro of several stands.
// clang-format off
QIX_TEST_F(CFixture, names, "are shown in " "one\n\tline \101\x42\033[31m\?")
// clang-format on
{
    log(getName());
}

QIX_TEST(names, R"(may be "raw")")
{
}

QIX_TEST(names, R"x(with )" inside)x")
{
}

QIX_TEST(names, "")
{
}

QIX_TEST(disabled, function, Disabled("waits for the new server"))
{
    QIX_FAIL("run");
}

QIX_TEST_F(CNeverMade, disabled, fixture, Disabled("caf\xc3\xa9"), Long)
{
}

QIX_TEST(shouldFail, byACheck, ShouldFail)
{
    QIX_CHECK(1 == 2);
}

QIX_TEST(shouldFail, byAnException, ShouldFail)
{
    throw std::runtime_error("thrown");
}

QIX_TEST(shouldFail, byASection, ShouldFail)
{
    QIX_SECTION("fails")
    {
        QIX_CHECK(1 == 2);
    }
}

QIX_TEST(shouldFail, byARow, ShouldFail)
{
    subTest("fails", [] { QIX_CHECK(1 == 2); });
}

QIX_TEST_F(CNeverMade, shouldFail, byAFixture, ShouldFail)
{
}

QIX_TEST(shouldFail, andPasses, ShouldFail)
{
}

QIX_TEST(shouldFail, andIsSkipped, ShouldFail)
{
    QIX_SKIP("no printer");
}

QIX_TEST(shouldFail, andIsAborted, ShouldFail)
{
    QIX_ABORT("no server");
}

QIX_TEST(tagged, withOne, Tags("net"))
{
}

QIX_TEST(tagged, withAll, Tags("net", "a \"word\""), Long, Interactive, ShouldFail, Disabled("why"))
{
}

QIX_TEST_EACH(tagged, each, qix::values(1, 2), Tags("db"))
{
}
