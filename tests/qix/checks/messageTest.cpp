#include "allocations.h"
#include "checks/bodyTest.h"

#include <qix/CTestFailedException.h>
#include <zel/String.h>

#include <gtest/gtest.h>

#include <iomanip>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace
{

using test::run;
using test::valuesOf;
using test::withoutPlaces;

struct Described
{
    void describe(qix::CValueWriter& out) const { out.text("<described>"); }
};

struct Streamed
{
};

std::ostream& operator<<(std::ostream& stream, Streamed const&)
{
    return stream << 255;
}

struct Throwing
{
};

std::ostream& operator<<(std::ostream&, Throwing const&)
{
    throw std::runtime_error("no text");
}

int throwsIt()
{
    throw std::runtime_error("left");
}

int failsACheck()
{
    QIX_CHECK(3 == 4);
    return 7;
}

TEST(Messages, standBehindChecks)
{
    EXPECT_EQ(valuesOf([] { QIX_CHECK(1 == 2) << "why " << 7; }), "with 1 == 2\n    why 7");
    EXPECT_EQ(valuesOf([] { QIX_REQUIRE(1 == 2) << "why"; }), "with 1 == 2\n    why");
    EXPECT_EQ(valuesOf([] { QIX_CHECK(false) << "why"; }), "why");
    EXPECT_EQ(valuesOf([] { QIX_CHECK(false) << "a\nb\n"; }), "a\n    b");
}

TEST(Messages, standBehindChecksOfWhatIsThrown)
{
    EXPECT_EQ(valuesOf([] { QIX_CHECK_THROWS(static_cast<void>(0)) << "why"; }),
              "nothing was thrown\n    why");
    EXPECT_EQ(valuesOf([] { QIX_CHECK_THROWS_AS(throw 7, std::exception) << "why"; }),
              "it threw int\n    why");
    EXPECT_EQ(valuesOf([] { QIX_CHECK_NOTHROW(throw 7) << "why"; }), "it threw int\n    why");
    EXPECT_EQ(valuesOf([] { QIX_REQUIRE_NOTHROW(throw 7) << "why"; }), "it threw int\n    why");
}

TEST(Messages, areEndedByRequirements)
{
    bool isReached = false;
    EXPECT_NE(run(
                  [&]
                  {
                      QIX_REQUIRE(1 == 2) << "why";
                      isReached = true;
                  }),
              "ok");
    EXPECT_NE(run(
                  [&]
                  {
                      QIX_REQUIRE_THROWS(static_cast<void>(0)) << "why";
                      isReached = true;
                  }),
              "ok");
    EXPECT_FALSE(isReached);
}

TEST(Messages, standBehindTheMessageOfAFailure)
{
    EXPECT_EQ(withoutPlaces(run([] { QIX_FAIL("row ") << 7 << ", " << 8; })), "row 7, 8");
    EXPECT_EQ(withoutPlaces(run(
                  []
                  {
                      QIX_NOTE_FAILURE("row ") << 7;
                      QIX_NOTE_FAILURE("row 8");
                  })),
              "row 7\n  row 8");
}

TEST(Messages, areMadeOnlyOfWhatFails)
{
    int made = 0;
    auto const make = [&] { return ++made; };
    EXPECT_EQ(run(
                  [&]
                  {
                      QIX_CHECK(1 == 1) << make();
                      QIX_REQUIRE(true) << make();
                      QIX_CHECK_THROWS(throw 7) << make();
                      QIX_CHECK_THROWS_AS(throw 7, int) << make();
                      QIX_CHECK_NOTHROW(static_cast<void>(0)) << make();
                  }),
              "ok");
    EXPECT_EQ(made, 0);
    EXPECT_NE(run([&] { QIX_CHECK(1 == 2) << make(); }), "ok");
    EXPECT_EQ(made, 1);
}

TEST(Messages, allocateNothingWhereChecksPass)
{
    std::size_t allocations = 1;
    run(
        [&]
        {
            std::size_t const before = test::countAllocations();
            for (int i = 0; i < 10; ++i)
            {
                QIX_CHECK(i == i) << "text " << i << std::string(100, 'a');
                QIX_CHECK_NOTHROW(static_cast<void>(i)) << std::string(100, 'a');
            }
            allocations = test::countAllocations() - before;
        });
    EXPECT_EQ(allocations, 0u);
}

// An else belongs to the if in front of the check.
TEST(Messages, leaveElseAlone)
{
    int others = 0;
    for (bool const isChecked : {true, false})
    {
        if (isChecked)
            QIX_CHECK(true) << "text";
        else
            ++others;
        if (isChecked)
            QIX_CHECK_NOTHROW(static_cast<void>(0)) << "text";
        else
            ++others;
    }
    EXPECT_EQ(others, 2);
}

TEST(Messages, takeWhateverCanBeWritten)
{
    auto const messageOf = [](auto const& value)
    { return withoutPlaces(run([&] { QIX_FAIL("") << value; })); };
    EXPECT_EQ(messageOf("text"), "text");
    EXPECT_EQ(messageOf(std::string_view("text")), "text");
    EXPECT_EQ(messageOf(L"\u00fcber"), "\u00fcber");
    EXPECT_EQ(messageOf(zel::String(L"\u00fcber")), "\u00fcber");
    EXPECT_EQ(messageOf('c'), "c");
    EXPECT_EQ(messageOf(static_cast<unsigned char>(65)), "65");
    EXPECT_EQ(messageOf(true), "true");
    EXPECT_EQ(messageOf(-7L), "-7");
    EXPECT_EQ(messageOf(18446744073709551615U), "18446744073709551615");
    EXPECT_EQ(messageOf(0.1), "0.1");
    EXPECT_EQ(messageOf(0.1f), "0.1");
    EXPECT_EQ(messageOf(0.123456789012345678L), "0.123456789012345678");
    EXPECT_EQ(messageOf(nullptr), "nullptr");
    EXPECT_EQ(messageOf(std::vector<int>{1, 2}), "{1, 2}");
    EXPECT_EQ(messageOf(Described()), "<described>");
    EXPECT_EQ(messageOf(Streamed()), "255");
}

TEST(Messages, takeManipulators)
{
    EXPECT_EQ(withoutPlaces(run([] { QIX_FAIL("") << std::hex << 255 << Streamed(); })), "ffff");
    EXPECT_EQ(withoutPlaces(run([] { QIX_FAIL("") << std::setw(4) << 7 << std::endl
                                                  << 8; })),
              "   7\n    8");
    EXPECT_EQ(withoutPlaces(run([] { QIX_FAIL("") << std::setprecision(3) << 0.12345; })), "0.123");
}

TEST(Messages, tellWhatWritingThrew)
{
    EXPECT_EQ(valuesOf([] { QIX_CHECK(1 == 2) << Throwing() << " behind"; }),
              "with 1 == 2\n    <writing it threw std::runtime_error: no text> behind");
}

// The check has failed, whatever becomes of its message.
TEST(Messages, areLeftByExceptions)
{
    std::string const text = withoutPlaces(run([] { QIX_CHECK(1 == 2) << "why " << throwsIt(); }));
    EXPECT_EQ(text, "the body threw std::runtime_error: left\n"
                    "  QIX_CHECK(1 == 2) failed\n    with 1 == 2\n    why ");
}

TEST(Messages, areNotMixedUpWithThoseOfOthers)
{
    EXPECT_EQ(withoutPlaces(run([] { QIX_CHECK(1 == 2) << "why " << failsACheck(); })),
              "QIX_CHECK(3 == 4) failed\n    with 3 == 4\n"
              "  QIX_CHECK(1 == 2) failed\n    with 1 == 2\n    why 7");
}

TEST(Messages, areKeptWhileTheyRunTests)
{
    std::string inner;
    auto const runsATest = [&inner]
    {
        inner = valuesOf([] { QIX_CHECK(3 == 4) << "inner " << throwsIt(); });
        return 7;
    };
    EXPECT_EQ(valuesOf([&] { QIX_CHECK(1 == 2) << "why " << runsATest(); }),
              "with 1 == 2\n    why 7");
    EXPECT_EQ(inner, "with 3 == 4\n    inner ");
}

TEST(Messages, areToldOutsideOfTests)
{
    try
    {
        QIX_CHECK(1 == 2) << "why";
        FAIL();
    }
    catch (qix::CTestFailedException const& e)
    {
        EXPECT_EQ(withoutPlaces(e.what()), "QIX_CHECK(1 == 2) failed\n    with 1 == 2\n    why\n"
                                           "    outside of any running test");
    }
}

} // namespace
