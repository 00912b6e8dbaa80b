// Sections: in which passes they run, and what becomes of those that fail.

#include <qix/test.h>

#include <stdexcept>
#include <string>

namespace
{

class CCounted : public qix::CTestItem
{
public:
    CCounted() { log("made"); }
    ~CCounted() override { log("released"); }

protected:
    int m_calls = 0;
};

class CSectionInSetUp : public qix::CTestItem
{
protected:
    void setUp() override
    {
        QIX_SECTION("in setUp")
        {
            log("setUp");
        }
    }
    void tearDown() override { throw std::runtime_error("thrown by tearDown"); }
};

void hasSections(std::string const& prefix)
{
    QIX_SECTION(prefix + " one")
    {
        qix::log(prefix + " one");
    }
    QIX_SECTION(prefix + " two")
    {
        qix::log(prefix + " two");
    }
}

/// Checks while an exception leaves what it stands in.
struct CChecksLate
{
    ~CChecksLate() { QIX_CHECK(3 == 4); }
};

} // namespace

QIX_TEST(passes, ofThreeLevels)
{
    std::string path = "begin";
    QIX_SECTION("A")
    {
        path += " A";
        QIX_SECTION("a")
        {
            path += " a";
            QIX_SECTION("1")
            {
                path += " 1";
            }
            QIX_SECTION("2")
            {
                path += " 2";
            }
            path += " a-end";
        }
        path += " between";
        QIX_SECTION("b")
        {
            path += " b";
        }
        path += " A-end";
    }
    QIX_SECTION("B")
    {
        path += " B";
    }
    log(path + " end");
}

QIX_TEST_F(CCounted, passes, makeTheFixtureAnew)
{
    QIX_CHECK(++m_calls == 1);
    QIX_SECTION("one")
    {
        QIX_CHECK(++m_calls == 2);
    }
    QIX_SECTION("two")
    {
        QIX_CHECK(++m_calls == 2);
    }
}

QIX_TEST(passes, inLoopsAndFunctions)
{
    for (int i = 0; i < 3; ++i)
    {
        QIX_SECTION("turn " + std::to_string(i))
        {
            log("turn " + std::to_string(i));
        }
    }
    hasSections("first");
    hasSections("second");
}

QIX_TEST(passes, ofOneName)
{
    for (int i = 0; i < 3; ++i)
    {
        QIX_SECTION("same")
        {
            log("same " + std::to_string(i));
        }
    }
}

QIX_TEST(passes, inRows)
{
    for (char const* const name : {"row 1", "row 2"})
    {
        subTest(name,
                [&]
                {
                    log(name);
                    hasSections(name);
                });
    }
}

QIX_TEST(passes, leftByReturn)
{
    QIX_SECTION("returns")
    {
        return;
    }
    QIX_SECTION("is run nevertheless")
    {
        log("run");
    }
}

QIX_TEST_F(CSectionInSetUp, passes, inSetUp)
{
    QIX_SECTION("in the body")
    {
        log("body");
    }
}

QIX_TEST(names, areShownInOneLine)
{
    QIX_SECTION(std::string("line\nend, \x1b[31m, \0, caf\xc3\xa9", 26))
    {
        QIX_CHECK(1 == 2);
    }
    subTest("row\n", [] { QIX_CHECK(1 == 2); });
}

QIX_TEST(outcomes, ofEachItsOwn)
{
    QIX_SECTION("checks")
    {
        QIX_CHECK(1 == 2);
        QIX_CHECK(1 == 3);
    }
    QIX_SECTION("requires")
    {
        CChecksLate const late;
        QIX_REQUIRE(1 == 2);
    }
    QIX_SECTION("throws")
    {
        throw std::runtime_error("thrown by the section");
    }
    QIX_SECTION("throws a number")
    {
        throw 42;
    }
    QIX_SECTION("is skipped")
    {
        QIX_SKIP("there is no printer");
    }
    QIX_SECTION("is aborted")
    {
        QIX_ABORT("no server");
    }
    QIX_SECTION("passes")
    {
    }
}

QIX_TEST(outcomes, ofNestedOnes)
{
    QIX_SECTION("outer")
    {
        QIX_CHECK(1 == 2);
        QIX_SECTION("first")
        {
            QIX_REQUIRE(1 == 3);
        }
        QIX_SECTION("second")
        {
            QIX_REQUIRE(1 == 4);
        }
        QIX_CHECK(1 == 5);
    }
    QIX_SECTION("last")
    {
    }
}

QIX_TEST(outcomes, ofWhatIsAround)
{
    QIX_SECTION("first")
    {
    }
    QIX_CHECK(1 == 2);
    QIX_SECTION("second")
    {
    }
}

QIX_TEST(outcomes, ofWhatThrowsAround)
{
    QIX_SECTION("first")
    {
    }
    QIX_SECTION("outer")
    {
        QIX_SECTION("one")
        {
        }
        QIX_SECTION("two")
        {
        }
        throw std::runtime_error("thrown by the outer section");
    }
    throw std::runtime_error("thrown behind all of them");
}

QIX_TEST(outcomes, ofWhatThrowsInFront)
{
    static int pass = 0;
    if (++pass == 3)
    {
        throw std::runtime_error("thrown in the third pass");
    }
    QIX_SECTION("outer")
    {
        QIX_SECTION("one")
        {
        }
        QIX_SECTION("two")
        {
        }
        QIX_SECTION("three")
        {
        }
    }
}

QIX_TEST(outcomes, ofWhatIsCaught)
{
    try
    {
        QIX_SECTION("throws")
        {
            throw std::runtime_error("caught around it");
        }
    }
    catch (std::runtime_error const&)
    {
        log("caught");
    }
    QIX_SECTION("behind")
    {
    }
}

QIX_TEST(outcomes, ofDifferentPasses)
{
    static int pass = 0;
    ++pass;
    QIX_SECTION("first")
    {
    }
    if (pass == 1)
    {
        QIX_SECTION("only in the first pass")
        {
        }
    }
}
