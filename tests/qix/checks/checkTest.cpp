#include "CNotingRunner.h"
#include "allocations.h"
#include "checks/bodyTest.h"

#include <qix/CTestFailedException.h>
#include <qix/CTestSkippedException.h>
#include <zel/CError.h>
#include <zel/String.h>

#include <gtest/gtest.h>

#include <future>
#include <limits>
#include <memory>
#include <new>
#include <sstream>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include <pthread.h>
#include <unistd.h>
#include <unwind.h>

namespace
{

using test::run;
using test::valuesOf;
using test::withoutPlaces;

struct MoveOnly
{
    explicit MoveOnly(int v) : value(v) {}
    MoveOnly(MoveOnly&&) = default;
    int value;
    bool operator==(MoveOnly const& other) const { return value == other.value; }
};

struct Flags
{
    unsigned bits : 3;
};

struct Constants
{
    static constexpr int seven = 7;
};

int alwaysThrows()
{
    throw std::out_of_range("too far");
}

template <typename A, typename B>
int pairSize()
{
    return static_cast<int>(sizeof(A) + sizeof(B));
}

void helper(int value)
{
    QIX_CHECK(value == 1);
}

template <typename Work>
std::string messageOf(Work const& work)
{
    try
    {
        work();
    }
    catch (zel::CError const& e)
    {
        return withoutPlaces(e.what());
    }
    return "nothing was thrown";
}

TEST(Checks, passingOnesTellNothing)
{
    EXPECT_EQ(run(
                  []
                  {
                      QIX_CHECK(1 == 1);
                      QIX_REQUIRE(true);
                      QIX_CHECK_THROWS(alwaysThrows());
                      QIX_CHECK_THROWS_AS(alwaysThrows(), std::logic_error);
                      QIX_CHECK_NOTHROW(pairSize<int, int>());
                  }),
              "ok");
}

TEST(Checks, failuresNameThePlaceAndTheExpression)
{
    int const line = __LINE__ + 1;
    std::string const text = run([] { QIX_CHECK(1 + 1 == 3); });
    EXPECT_EQ(text, __FILE__ ":" + std::to_string(line) +
                        ": QIX_CHECK(1 + 1 == 3) failed\n    with 2 == 3");
}

TEST(Checks, expressionsAreShownAsTheyAreWritten)
{
#define QIX_TEST_SEVEN 7
    EXPECT_EQ(withoutPlaces(run([] { QIX_CHECK(QIX_TEST_SEVEN == 8); })),
              "QIX_CHECK(QIX_TEST_SEVEN == 8) failed\n    with 7 == 8");
}

TEST(Checks, allFailuresAreListed)
{
    EXPECT_EQ(withoutPlaces(run(
                  []
                  {
                      QIX_CHECK(1 == 2);
                      QIX_CHECK(false);
                      QIX_REQUIRE(3 < 2);
                      QIX_CHECK(5 == 6);
                  })),
              "QIX_CHECK(1 == 2) failed\n    with 1 == 2\n"
              "  QIX_CHECK(false) failed\n"
              "  QIX_REQUIRE(3 < 2) failed\n    with 3 < 2");
}

TEST(Checks, endlessFailuresAreCounted)
{
    std::string const text = run(
        []
        {
            for (int i = 0; i < 250; ++i)
            {
                QIX_CHECK(i < 0);
            }
        });
    EXPECT_NE(text.find("with 99 < 0\n  and 150 more"), std::string::npos);
    EXPECT_EQ(text.find("with 100 < 0"), std::string::npos);
}

TEST(Checks, operandsAreEvaluatedOnce)
{
    int evaluated = 0;
    EXPECT_NE(run([&] { QIX_CHECK(++evaluated == 7); }), "ok");
    EXPECT_EQ(evaluated, 1);
}

TEST(Checks, allComparisons)
{
    EXPECT_EQ(valuesOf([] { QIX_CHECK(1 != 1); }), "with 1 != 1");
    EXPECT_EQ(valuesOf([] { QIX_CHECK(2 < 1); }), "with 2 < 1");
    EXPECT_EQ(valuesOf([] { QIX_CHECK(2 <= 1); }), "with 2 <= 1");
    EXPECT_EQ(valuesOf([] { QIX_CHECK(1 > 2); }), "with 1 > 2");
    EXPECT_EQ(valuesOf([] { QIX_CHECK(1 >= 2); }), "with 1 >= 2");
}

TEST(Checks, arithmeticStaysOnItsSide)
{
    EXPECT_EQ(valuesOf([] { QIX_CHECK(1 + 2 * 3 == 8); }), "with 7 == 8");
    EXPECT_EQ(valuesOf([] { QIX_CHECK(1 << 4 == 8); }), "with 16 == 8");
    EXPECT_EQ(valuesOf([] { QIX_CHECK(64 >> 1 == 8); }), "with 32 == 8");
    EXPECT_EQ(valuesOf([] { QIX_CHECK((6 & 3) == 3); }), "with 2 == 3");
    EXPECT_EQ(valuesOf([] { QIX_CHECK(4 & 3); }), "with 0");
    EXPECT_EQ(valuesOf([] { QIX_CHECK(!7); }), "(none)");
}

TEST(Checks, logicOfOtherThanComparisons)
{
    bool const yes = true;
    bool const no = false;
    EXPECT_EQ(run([&] { QIX_CHECK(yes && !no); }), "ok");
    EXPECT_EQ(run([&] { QIX_CHECK(no || yes); }), "ok");
    EXPECT_NE(run([&] { QIX_CHECK(yes && no); }), "ok");
    EXPECT_EQ(run([&] { QIX_CHECK(no && alwaysThrows() == 0); }).find("too far"),
              std::string::npos);
    EXPECT_EQ(valuesOf([&] { QIX_CHECK((1 == 1 && 2 == 3)); }), "(none)");
}

TEST(Checks, integersAreComparedByTheirValues)
{
    std::vector<int> const three(3);
    EXPECT_EQ(run([&] { QIX_CHECK(three.size() == 3); }), "ok");
    EXPECT_EQ(valuesOf([&] { QIX_CHECK(three.size() == 2); }), "with 3 == 2");
    unsigned const highest = std::numeric_limits<unsigned>::max();
    EXPECT_EQ(valuesOf([&] { QIX_CHECK(-1 == highest); }), "with -1 == 4294967295");
    EXPECT_EQ(run([&] { QIX_CHECK(-1 < highest); }), "ok");
    EXPECT_EQ(run([&] { QIX_CHECK(highest > -1); }), "ok");
    EXPECT_EQ(run([&] { QIX_CHECK(highest != -1); }), "ok");
    EXPECT_EQ(run([&] { QIX_CHECK(3 == three.size()); }), "ok");
}

TEST(Checks, operandsOfAllKinds)
{
    Flags flags = {};
    flags.bits = 5;
    EXPECT_EQ(valuesOf([&] { QIX_CHECK(flags.bits == 4); }), "with 5 == 4");
    EXPECT_EQ(valuesOf([] { QIX_CHECK(Constants::seven == 8); }), "with 7 == 8");
    EXPECT_EQ(run([] { QIX_CHECK(MoveOnly(1) == MoveOnly(1)); }), "ok");
    EXPECT_EQ(valuesOf([] { QIX_CHECK(std::unique_ptr<int>() != nullptr); }),
              "with nullptr != nullptr");
    EXPECT_EQ(valuesOf([] { QIX_CHECK(std::unique_ptr<int>()); }), "with nullptr");
    char const* const nothing = nullptr;
    EXPECT_EQ(valuesOf([&] { QIX_CHECK(nothing != nullptr); }), "with nullptr != nullptr");
    EXPECT_EQ(valuesOf([&] { QIX_CHECK(nothing != nothing); }), "with nullptr != nullptr");
    EXPECT_EQ(run([&] { QIX_CHECK(nothing == NULL); }), "ok");
    EXPECT_EQ(run([&] { QIX_CHECK(nothing == 0); }), "ok");
    char const text[] = "text";
    EXPECT_EQ(valuesOf([&] { QIX_CHECK(text == std::string("other")); }),
              "with \"text\" == \"other\"");
}

std::string addressText(void const* address)
{
    qix::CValueWriter out;
    out.address(address);
    return out.written();
}

// Behind a pointer there may be no text: the end of a buffer, say.
TEST(Checks, pointersToTextAreComparedAndShownAsPointers)
{
    char const text[] = {'a', 'b', 'c'};
    char const* const begin = text;
    char const* const end = text + sizeof(text);
    EXPECT_EQ(valuesOf([&] { QIX_CHECK(begin == end); }),
              "with " + addressText(begin) + " == " + addressText(end));
    EXPECT_EQ(valuesOf([&] { QIX_CHECK(text == end); }),
              "with " + addressText(begin) + " == " + addressText(end));
    EXPECT_EQ(valuesOf([&] { QIX_CHECK(begin == nullptr); }),
              "with " + addressText(begin) + " == nullptr");
    wchar_t const wide[] = {L'a'};
    wchar_t const* const wideBegin = wide;
    EXPECT_EQ(valuesOf([&] { QIX_CHECK(wideBegin == wide + 1); }),
              "with " + addressText(wide) + " == " + addressText(wide + 1));
}

bool isEmptyOrNot(std::vector<int> const& values)
{
    return values.empty();
}

// The comparison in front is the condition, and not what has failed.
TEST(Checks, capturedOperandsBelongToOneCheck)
{
    std::vector<int> const one = {1};
    EXPECT_EQ(valuesOf([&] { QIX_CHECK(one.size() == 0 ? one.empty() : one.empty()); }), "(none)");
    EXPECT_EQ(withoutPlaces(run(
                  [&]
                  {
                      QIX_CHECK(one.size() == 0 ? one.empty() : !one.empty());
                      QIX_CHECK(isEmptyOrNot(one) && one.empty());
                      QIX_FAIL("ended");
                  })),
              "QIX_CHECK(isEmptyOrNot(one) && one.empty()) failed\n  ended");
}

// These threads wait to be cancelled inside a check, which catches abi::__forced_unwind. No object
// of that type exists, so the sanitizer reports the reference to it as null.

__attribute__((no_sanitize("null"))) void* waitInCheckThrows(void*)
{
    QIX_CHECK_THROWS(pause());
    return nullptr;
}

__attribute__((no_sanitize("null"))) void* waitInCheckThrowsAs(void*)
{
    QIX_CHECK_THROWS_AS(pause(), std::exception);
    return nullptr;
}

__attribute__((no_sanitize("null"))) void* waitInCheckNothrow(void*)
{
    QIX_CHECK_NOTHROW(pause());
    return nullptr;
}

TEST(Checks, threadsCanBeCancelledInsideThem)
{
    for (auto const wait : {&waitInCheckThrows, &waitInCheckThrowsAs, &waitInCheckNothrow})
    {
        EXPECT_EQ(run(
                      [wait]
                      {
                          pthread_t thread = {};
                          pthread_create(&thread, nullptr, wait, nullptr);
                          pthread_cancel(thread);
                          void* result = nullptr;
                          pthread_join(thread, &result);
                          QIX_CHECK(result == PTHREAD_CANCELED);
                      }),
                  "ok");
    }
}

struct CancelledWhenShown
{
};

std::ostream& operator<<(std::ostream& stream, CancelledWhenShown const&)
{
    pause();
    return stream;
}

bool operator==(CancelledWhenShown const&, CancelledWhenShown const&)
{
    return false;
}

void* waitInOperand(void*)
{
    QIX_CHECK(CancelledWhenShown() == CancelledWhenShown());
    return nullptr;
}

TEST(Checks, threadsCanBeCancelledWhileAnOperandIsDescribed)
{
    pthread_t thread = {};
    ASSERT_EQ(pthread_create(&thread, nullptr, &waitInOperand, nullptr), 0);
    pthread_cancel(thread);
    void* result = nullptr;
    pthread_join(thread, &result);
    EXPECT_EQ(result, PTHREAD_CANCELED);
}

TEST(Checks, expressionsWithCommas)
{
    EXPECT_EQ((withoutPlaces(run([] { QIX_CHECK(pairSize<int, char>() == 0); }))),
              "QIX_CHECK(pairSize<int, char>() == 0) failed\n    with 5 == 0");
}

TEST(Checks, checksAreExpressions)
{
    if (true)
        QIX_CHECK(true);
    else
        QIX_CHECK(false);
}

TEST(Checks, exceptions)
{
    EXPECT_EQ(valuesOf([] { QIX_CHECK_THROWS(pairSize<int, int>()); }), "nothing was thrown");
    EXPECT_EQ(valuesOf([] { QIX_CHECK_THROWS_AS((pairSize<int, int>()), std::exception); }),
              "nothing was thrown");
    EXPECT_EQ(valuesOf([] { QIX_CHECK_THROWS_AS(alwaysThrows(), std::bad_alloc); }),
              "it threw std::out_of_range: too far");
    EXPECT_EQ(valuesOf([] { QIX_CHECK_NOTHROW(alwaysThrows()); }),
              "it threw std::out_of_range: too far");
    EXPECT_EQ(valuesOf([] { QIX_CHECK_NOTHROW(throw 7); }), "it threw int");
}

TEST(Checks, requirementsOfExceptionsEndTheTest)
{
    int reached = 0;
    EXPECT_NE(run(
                  [&]
                  {
                      QIX_REQUIRE_THROWS(pairSize<int, int>());
                      ++reached;
                  }),
              "ok");
    EXPECT_NE(run(
                  [&]
                  {
                      QIX_REQUIRE_THROWS_AS(alwaysThrows(), std::bad_alloc);
                      ++reached;
                  }),
              "ok");
    EXPECT_NE(run(
                  [&]
                  {
                      QIX_REQUIRE_NOTHROW(alwaysThrows());
                      ++reached;
                  }),
              "ok");
    EXPECT_EQ(reached, 0);
}

TEST(Checks, failEndsTheTestWithItsMessage)
{
    EXPECT_EQ(withoutPlaces(run([] { QIX_FAIL("not yet"); })), "not yet");
    EXPECT_EQ(withoutPlaces(run([] { QIX_FAIL(std::string("line\nline")); })), "line\n    line");
    EXPECT_EQ(withoutPlaces(run([] { QIX_FAIL("line\nXX\n\n"); })), "line\n    XX");
    EXPECT_EQ(withoutPlaces(run([] { QIX_FAIL(zel::String(L"\u00fcber")); })), "\xc3\xbc"
                                                                               "ber");
}

TEST(Checks, workInFunctionsThatATestCalls)
{
    EXPECT_EQ(valuesOf([] { helper(2); }), "with 2 == 1");
}

TEST(Checks, failedRequirementsCannotBeSwallowed)
{
    EXPECT_EQ(valuesOf(
                  []
                  {
                      try
                      {
                          QIX_REQUIRE(1 == 2);
                      }
                      catch (std::exception const&)
                      {
                      }
                  }),
              "with 1 == 2");
}

TEST(Checks, workOnThreadsOfTheTest)
{
    std::string const text = run(
        []
        {
            std::vector<std::thread> threads;
            for (int i = 0; i < 4; ++i)
            {
                threads.emplace_back(
                    [i]
                    {
                        for (int j = 0; j < 5; ++j)
                        {
                            QIX_CHECK(i == -1);
                        }
                        qix::log("thread");
                    });
            }
            for (std::thread& thread : threads)
            {
                thread.join();
            }
        });
    std::size_t failures = 0;
    for (std::size_t at = 0; (at = text.find("failed", at)) != std::string::npos; ++at)
    {
        ++failures;
    }
    EXPECT_EQ(failures, 20u);
}

TEST(Checks, requirementsOnThreadsAreThrownThere)
{
    bool thrown = false;
    std::string const text = run(
        [&]
        {
            std::thread(
                [&]
                {
                    try
                    {
                        QIX_REQUIRE(1 == 2);
                    }
                    catch (std::exception const& e)
                    {
                        thrown = std::string(e.what()).find("QIX_REQUIRE") != std::string::npos;
                    }
                })
                .join();
        });
    EXPECT_TRUE(thrown);
    EXPECT_EQ(withoutPlaces(text), "QIX_REQUIRE(1 == 2) failed\n    with 1 == 2");
}

TEST(Checks, ofTestsOnTwoThreadsBelongToTheirOwn)
{
    std::promise<void> firstRuns;
    std::promise<void> secondRuns;
    std::promise<void> firstHasEnded;
    std::string first;
    std::thread other(
        [&]
        {
            first = run(
                [&]
                {
                    firstRuns.set_value();
                    secondRuns.get_future().wait();
                    QIX_CHECK(1 == 2);
                });
            firstHasEnded.set_value();
        });
    firstRuns.get_future().wait();
    std::string const second = run(
        [&]
        {
            secondRuns.set_value();
            firstHasEnded.get_future().wait();
            QIX_CHECK(3 == 4);
        });
    other.join();
    EXPECT_EQ(withoutPlaces(first), "QIX_CHECK(1 == 2) failed\n    with 1 == 2");
    EXPECT_EQ(withoutPlaces(second), "QIX_CHECK(3 == 4) failed\n    with 3 == 4");
}

TEST(Checks, aTestCanEndItsThread)
{
    pthread_t thread = {};
    char reached = 0;
    auto const endInTheBody = [](void* result) -> void*
    {
        run([result] { pthread_exit(result); });
        return nullptr;
    };
    ASSERT_EQ(pthread_create(&thread, nullptr, endInTheBody, &reached), 0);
    void* result = nullptr;
    pthread_join(thread, &result);
    EXPECT_EQ(result, &reached);
    EXPECT_EQ(messageOf([] { qix::log("line"); }), "log() was called while no test is running");
}

TEST(Checks, requirementsCanBeKeptAsErrors)
{
    zel::P<zel::CError> kept;
    std::string const text = run(
        [&kept]
        {
            try
            {
                QIX_REQUIRE(1 == 2);
            }
            catch (zel::CError const& e)
            {
                kept = e.clone();
            }
        });
    EXPECT_EQ(kept->what(), text);
    EXPECT_THROW(kept->throwClone(), qix::CTestFailedException);
}

TEST(Checks, outsideOfTestsFailuresAreThrown)
{
    QIX_CHECK(1 == 1);
    try
    {
        QIX_CHECK(1 == 2);
        FAIL() << "nothing was thrown";
    }
    catch (std::exception const& e)
    {
        EXPECT_EQ(withoutPlaces(e.what()), "QIX_CHECK(1 == 2) failed\n    with 1 == 2\n"
                                           "    outside of any running test");
    }
}

TEST(Checks, passingOnesAllocateNothing)
{
    std::size_t counted = 1;
    std::vector<int> const numbers = {1, 2, 3};
    std::string const text = "some text that is longer than a short one";
    std::string const same = text;
    EXPECT_EQ(run(
                  [&]
                  {
                      std::size_t const before = test::countAllocations();
                      QIX_CHECK(numbers.size() == 3);
                      QIX_REQUIRE(text == same);
                      QIX_CHECK(text != "other");
                      QIX_CHECK(0.1 + 0.2 == qix::approx(0.3));
                      QIX_CHECK(!numbers.empty());
                      QIX_CHECK_NOTHROW(numbers.at(0));
                      counted = test::countAllocations() - before;
                  }),
              "ok");
    EXPECT_EQ(counted, 0u);
    std::size_t const before = test::countAllocations();
    EXPECT_EQ(std::vector<int>(3).size(), 3u);
    EXPECT_GT(test::countAllocations(), before) << "nothing is counted";
}

TEST(Approx, comparesWithinTheTolerance)
{
    EXPECT_TRUE(0.1 + 0.2 == qix::approx(0.3));
    EXPECT_TRUE(qix::approx(0.3) == 0.1 + 0.2);
    EXPECT_TRUE(1.1 != qix::approx(1));
    EXPECT_TRUE(qix::approx(1) != 1.1);
    EXPECT_FALSE(1.00001 == qix::approx(1));
    EXPECT_TRUE(98 == qix::approx(100).relative(0.02));
    EXPECT_FALSE(97 == qix::approx(100).relative(0.02));
    EXPECT_TRUE(0.5f == qix::approx(0.75).absolute(0.25));
    EXPECT_FALSE(1000.0005 == qix::approx(1000).absolute(0.0001));
    EXPECT_TRUE(1000.0005 == qix::approx(1000).absolute(0.0001).relative(1e-6));
    EXPECT_TRUE(1000.0005 == qix::approx(1000).relative(1e-6).absolute(0.0001));
}

TEST(Approx, specialNumbers)
{
    double const infinity = std::numeric_limits<double>::infinity();
    double const nan = std::numeric_limits<double>::quiet_NaN();
    EXPECT_TRUE(infinity == qix::approx(infinity));
    EXPECT_FALSE(-infinity == qix::approx(infinity));
    EXPECT_FALSE(1e300 == qix::approx(infinity));
    EXPECT_FALSE(infinity == qix::approx(1e300).absolute(infinity));
    EXPECT_FALSE(nan == qix::approx(nan));
    EXPECT_TRUE(nan != qix::approx(nan));
    EXPECT_TRUE(0.0 == qix::approx(-0.0));
    EXPECT_EQ(
        messageOf([] { qix::approx(1).relative(-1); }),
        "Invalid argument passed to 'CApprox::relative': the tolerance must not be negative.");
    EXPECT_EQ(
        messageOf([] { qix::approx(1).absolute(-1); }),
        "Invalid argument passed to 'CApprox::absolute': the tolerance must not be negative.");
    EXPECT_THROW(qix::approx(1).absolute(nan), std::exception);
}

TEST(Approx, isShownWithItsTolerance)
{
    EXPECT_EQ(valuesOf([] { QIX_CHECK(1.5 == qix::approx(1)); }),
              "with 1.5 == approx(1, relative 1e-06)\n"
              "    the difference is 0.5, allowed is 1e-06");
    EXPECT_EQ(valuesOf([] { QIX_CHECK(1.5 == qix::approx(1).absolute(0.25)); }),
              "with 1.5 == approx(1, absolute 0.25)\n"
              "    the difference is 0.5, allowed is 0.25");
}

/// A test that cannot clean up before it begins, and throws what is no std::exception.
class CThrowingClean : public qix::CTestItem
{
public:
    CThrowingClean() : CTestItem("test") {}

protected:
    void clean() override { throw 42; }
    void body() override { ADD_FAILURE() << "runs after all"; }
};

class CThrowingSetUp : public qix::CTestItem
{
public:
    CThrowingSetUp() : CTestItem("test") {}

protected:
    void setUp() override { throw 42; }
    void body() override { ADD_FAILURE() << "runs after all"; }
};

TEST(Checks, stepThatThrowsSomethingStrangeIsNamed)
{
    EXPECT_EQ(messageOf([] { CThrowingClean().run(nullptr); }), "clean threw int");
    EXPECT_EQ(messageOf([] { CThrowingSetUp().run(nullptr); }), "setUp threw int");
}

/// A test whose own way of recording a line checks it.
class CCheckingLog : public qix::CTestItem
{
public:
    CCheckingLog() : CTestItem("test") {}

    void log(zel::String const& line) override
    {
        CTestItem::log(line);
        QIX_CHECK(line.length() < 3);
    }

protected:
    void body() override { qix::log("long"); }
};

TEST(Checks, mayFailWhereALineIsRecorded)
{
    CCheckingLog item;
    EXPECT_EQ(withoutPlaces(messageOf([&item] { item.run(nullptr); })),
              "QIX_CHECK(line.length() < 3) failed\n    with 4 < 3");
    EXPECT_EQ(item.getLog(), std::vector<zel::String>{"long"});
}

class CSkippedAndAborted : public qix::CTestItem
{
public:
    CSkippedAndAborted() : CTestItem("test") {}

protected:
    void body() override { QIX_SKIP(); }
    void tearDown() override { QIX_ABORT("behind the skip"); }
};

TEST(Checks, whateverCanBeDescribedCanBeLogged)
{
    class CLogging : public qix::CTestItem
    {
    public:
        CLogging() : CTestItem("test") {}

    protected:
        void body() override
        {
            log(42);
            qix::log(std::vector<int>{1, 2});
            qix::log(L"wide");
            log(nullptr);
        }
    };
    CLogging test;
    test.run(nullptr);
    EXPECT_EQ(test.getLog(), (std::vector<zel::String>{"42", "{1, 2}", "wide", "nullptr"}));
}

TEST(Checks, streamsThatFailTellTheirState)
{
    std::istringstream in("x");
    int number = 0;
    EXPECT_EQ(valuesOf([&] { QIX_CHECK(in >> number); }), "with <stream: failed>");
    std::istringstream empty;
    EXPECT_EQ(valuesOf([&] { QIX_CHECK(empty >> number); }), "with <stream: failed at its end>");
}

TEST(Checks, linesAreTexts)
{
    test::CBodyTest test([] { qix::log(zel::String(L"\u20ac")); });
    test.run(nullptr);
    EXPECT_EQ(test.getLog(), std::vector<zel::String>{zel::String(L"\u20ac")});
}

class CFailingAtTheEnd : public qix::CTestItem
{
public:
    CFailingAtTheEnd() : CTestItem("test") {}

protected:
    void clean() override
    {
        if (m_isOver)
        {
            throw 42;
        }
    }
    void body() override { m_isOver = true; }

private:
    bool m_isOver = false;
};

TEST(Checks, aCleanUpBehindTheTestCanFailIt)
{
    EXPECT_EQ(messageOf([] { CFailingAtTheEnd().run(nullptr); }), "clean threw int");
}

TEST(Checks, firstOfTwoOutcomesCounts)
{
    CSkippedAndAborted test;
    EXPECT_THROW(test.run(nullptr), qix::CTestSkippedException);
    EXPECT_EQ(test.getLog(), std::vector<zel::String>{"Aborted: behind the skip"});
}

TEST(Checks, aSubTestThatTheRunnerRefusesIsNotRun)
{
    test::CNotingRunner runner;
    test::CBodyTest test([] { qix::subTest("part", [] { ADD_FAILURE() << "was run"; }); });
    EXPECT_NO_THROW(test.run(&runner));
}

TEST(Checks, failuresWithoutAPlaceAreTheirMessage)
{
    EXPECT_EQ(run([] { qix::noteFailure(nullptr, 0, "bad"); }), "bad");
}

void forgetForeignException(_Unwind_Reason_Code /*reason*/, _Unwind_Exception* exception)
{
    delete exception;
}

/// Throws what another language might.
void throwForeignException()
{
    auto exception = std::make_unique<_Unwind_Exception>();
    exception->exception_class = 0x666f726569676eU;
    exception->exception_cleanup = &forgetForeignException;
    _Unwind_RaiseException(exception.release());
}

TEST(Checks, exceptionsOfOtherLanguagesAreFailures)
{
    EXPECT_EQ(run(&throwForeignException), "the body threw an exception of another language");
}

TEST(Checks, outsideATestNothingIsLost)
{
    EXPECT_EQ(messageOf([] { qix::log("line"); }), "log() was called while no test is running");
    EXPECT_EQ(messageOf([] { qix::subTest("part", [] {}); }),
              "subTest() was called where no test runs on this thread");
    EXPECT_EQ(messageOf([] { qix::noteFailure("file", 7, "bad"); }),
              "file:7: bad\n    outside of any running test");
}

} // namespace
