#include "allocations.h"
#include "checks/bodyTest.h"

#include <qix/noteFailure.h>

#include <gtest/gtest.h>

#include <map>
#include <ostream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

namespace
{

using test::run;
using test::valuesOf;
using test::withoutPlaces;

struct Flags
{
    unsigned low : 3;
};

void throwsWithInfo(int value)
{
    QIX_INFO("in the function, with " << value);
    throw std::runtime_error("left");
}

TEST(Infos, areToldWithFailuresInTheirScope)
{
    EXPECT_EQ(withoutPlaces(run(
                  []
                  {
                      QIX_CHECK(1 == 2);
                      {
                          QIX_INFO("looking at " << 7);
                          QIX_CHECK(1 == 3) << "why";
                          QIX_NOTE_FAILURE("noted");
                          qix::noteFailure(nullptr, 0, "elsewhere");
                      }
                      QIX_CHECK(1 == 4);
                  })),
              "QIX_CHECK(1 == 2) failed\n    with 1 == 2\n"
              "  QIX_CHECK(1 == 3) failed\n    with 1 == 3\n    why\n    looking at 7\n"
              "  noted\n    looking at 7\n"
              "  elsewhere\n    looking at 7\n"
              "  QIX_CHECK(1 == 4) failed\n    with 1 == 4");
}

TEST(Infos, tellTheInnermostLast)
{
    EXPECT_EQ(valuesOf(
                  []
                  {
                      QIX_INFO("outer");
                      for (int i = 0; i < 2; ++i)
                      {
                          QIX_INFO("row " << i);
                          QIX_REQUIRE(i == 0);
                      }
                  }),
              "with 1 == 0\n    outer\n    row 1");
}

TEST(Infos, nameWhatTheyCapture)
{
    EXPECT_EQ(valuesOf(
                  []
                  {
                      std::map<int, std::string> const names = {{1, "one, two"}};
                      Flags flags = {};
                      flags.low = 3;
                      QIX_CAPTURE(names, names.at(1), std::pair<int, char>(7, ','), flags.low);
                      QIX_CAPTURE("a, b)");
                      QIX_FAIL("why");
                  }),
              "names = {1: \"one, two\"}\n    names.at(1) = \"one, two\"\n"
              "    std::pair<int, char>(7, ',') = (7, ',')\n    flags.low = 3\n"
              "    \"a, b)\" = \"a, b)\"");
}

TEST(Infos, captureComparisons)
{
    EXPECT_EQ(valuesOf(
                  []
                  {
                      int const a = 1;
                      QIX_CAPTURE(a < 2, 2 < a);
                      QIX_FAIL("why");
                  }),
              "a < 2 = true\n    2 < a = false");
}

TEST(Infos, keepWhatTemporariesReferTo)
{
    EXPECT_EQ(valuesOf(
                  []
                  {
                      std::string const text(40, 'a');
                      QIX_INFO((text + "b").c_str() << std::string_view(text + "c") << text + "d");
                      QIX_CAPTURE((text + "e").c_str());
                      QIX_CHECK(false);
                  }),
              std::string(40, 'a') + "b" + std::string(40, 'a') + "c" + std::string(40, 'a') +
                  "d\n    (text + \"e\").c_str() = \"" + std::string(40, 'a') + "e\"");
}

TEST(Infos, tellWhatVariablesHoldWhenItFails)
{
    EXPECT_EQ(valuesOf(
                  []
                  {
                      int number = 1;
                      std::vector<int> numbers;
                      QIX_INFO(number << " " << numbers);
                      number = 2;
                      numbers.push_back(7);
                      QIX_CHECK(false);
                  }),
              "1 {7}");
}

TEST(Infos, goWithAnExceptionThatLeavesTheirScope)
{
    EXPECT_EQ(run(
                  []
                  {
                      QIX_INFO("in the body");
                      std::string const text = "captured";
                      QIX_CAPTURE(text);
                      throwsWithInfo(7);
                  }),
              "the body threw std::runtime_error: left\n    in the body\n    text = \"captured\"\n"
              "    in the function, with 7");
}

TEST(Infos, goWithAnExceptionThatACheckSees)
{
    EXPECT_EQ(valuesOf(
                  []
                  {
                      QIX_INFO("in the body");
                      QIX_CHECK_NOTHROW(throwsWithInfo(7));
                  }),
              "it threw std::runtime_error: left\n    in the body\n    in the function, with 7");
}

TEST(Infos, areForgottenWithAnExceptionThatIsCaught)
{
    EXPECT_EQ(run(
                  []
                  {
                      QIX_CHECK_THROWS(throwsWithInfo(7));
                      throw std::runtime_error("another");
                  }),
              "another");
    EXPECT_EQ(valuesOf(
                  []
                  {
                      try
                      {
                          throwsWithInfo(7);
                      }
                      catch (std::exception const&)
                      {
                      }
                      QIX_INFO("later");
                      QIX_CHECK(1 == 2);
                  }),
              "with 1 == 2\n    later");
}

TEST(Infos, belongToTheTestThatTheyStandIn)
{
    std::string inner;
    EXPECT_EQ(valuesOf(
                  [&]
                  {
                      QIX_INFO("outer");
                      inner = valuesOf([] { QIX_CHECK(1 == 2); });
                      QIX_CHECK(3 == 4);
                  }),
              "with 3 == 4\n    outer");
    EXPECT_EQ(inner, "with 1 == 2");
}

TEST(Infos, belongToTheirThread)
{
    EXPECT_EQ(withoutPlaces(run(
                  []
                  {
                      QIX_INFO("of the test");
                      std::thread(
                          []
                          {
                              QIX_INFO("of the thread");
                              QIX_CHECK(1 == 2);
                          })
                          .join();
                  })),
              "QIX_CHECK(1 == 2) failed\n    with 1 == 2\n    of the thread");
}

TEST(Infos, allocateNothingWhileNothingFails)
{
    std::size_t allocations = 1;
    std::string const text(100, 'a');
    run(
        [&]
        {
            std::size_t const before = test::countAllocations();
            for (int i = 0; i < 10; ++i)
            {
                QIX_INFO("row " << i << text << text.size());
                QIX_CAPTURE(i, text);
                QIX_CHECK(i == i);
            }
            allocations = test::countAllocations() - before;
        });
    EXPECT_EQ(allocations, 0u);
}

struct Checking
{
};

std::ostream& operator<<(std::ostream& stream, Checking const&)
{
    QIX_CHECK(3 == 4);
    return stream << "written";
}

TEST(Infos, mayCheckWhileTheyAreWritten)
{
    EXPECT_EQ(withoutPlaces(run(
                  []
                  {
                      Checking const checking;
                      QIX_INFO(checking);
                      QIX_CHECK(1 == 2);
                  })),
              "QIX_CHECK(3 == 4) failed\n    with 3 == 4\n"
              "  QIX_CHECK(1 == 2) failed\n    with 1 == 2\n    written");
}

} // namespace
