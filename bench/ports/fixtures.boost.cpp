// Fixtures of tests and of suites; what is tested are files, streams and containers.

#define BOOST_TEST_MODULE fixtures
#define BOOST_TEST_DYN_LINK
#include <boost/test/unit_test.hpp>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <map>
#include <stdexcept>
#include <string>
#include <vector>

static int objects = 0;

/// Makes a file, and takes it away.
class File
{
public:
    File()
    {
        ++objects;
        std::ofstream(name) << "one\ntwo\n";
    }

    ~File()
    {
        --objects;
        std::filesystem::remove(name);
    }

    File(File const&) = delete;
    File& operator=(File const&) = delete;

    int countLines() const
    {
        std::ifstream file(name);
        int count = 0;
        for (std::string line; std::getline(file, line);)
        {
            ++count;
        }
        return count;
    }

    std::string const name = "fixture.txt";
};

/// Is shared by the tests of a suite.
struct Ages
{
    Ages()
    {
        current = this;
        all = {{"Ann", 30}, {"Bob", 20}};
    }

    ~Ages() { current = nullptr; }

    static Ages* current;
    std::map<std::string, int> all;
    int asked = 0;
};

Ages* Ages::current = nullptr;

/// Cannot be made.
struct Broken
{
    Broken() { throw std::runtime_error("there is nothing to make it of"); }
};

/// Keeps a test from being run; unlike one that is disabled, it is reported.
static boost::test_tools::assertion_result never(boost::unit_test::test_unit_id)
{
    return false;
}

BOOST_AUTO_TEST_SUITE(file)

BOOST_FIXTURE_TEST_CASE(hasLines, File)
{
    BOOST_TEST(countLines() == 2);
    BOOST_TEST(objects == 1);
}

BOOST_FIXTURE_TEST_CASE(grows, File)
{
    std::ofstream(name, std::ios::app) << "three\n";
    BOOST_TEST(countLines() == 3);
    BOOST_TEST(objects == 1);
}

// Wrong on purpose; the fixture is taken away nevertheless.
BOOST_FIXTURE_TEST_CASE(isWrong, File)
{
    BOOST_TEST(countLines() == 4);
    BOOST_TEST_REQUIRE(objects == 2);
    BOOST_TEST(countLines() == 5);
}

BOOST_FIXTURE_TEST_CASE(isLeftByAnException, File)
{
    BOOST_TEST(std::filesystem::file_size(name) == 8U);
    throw std::runtime_error("on purpose");
}

BOOST_AUTO_TEST_CASE(isGone)
{
    BOOST_TEST(!std::filesystem::exists("fixture.txt"));
    BOOST_TEST(objects == 0);
}

BOOST_FIXTURE_TEST_CASE(cannotBeMade, Broken)
{
    BOOST_TEST(objects == 0);
}

BOOST_AUTO_TEST_SUITE_END()

BOOST_AUTO_TEST_SUITE(ages, *boost::unit_test::fixture<Ages>())

BOOST_AUTO_TEST_CASE(areFound)
{
    BOOST_TEST(Ages::current->all.at("Ann") == 30);
    BOOST_TEST(++Ages::current->asked == 1);
}

BOOST_AUTO_TEST_CASE(areShared)
{
    BOOST_TEST(Ages::current->all.at("Bob") == 20);
    BOOST_TEST(++Ages::current->asked == 2);
}

// Wrong on purpose; the tests behind it have the object nevertheless.
BOOST_AUTO_TEST_CASE(areWrong)
{
    BOOST_TEST(Ages::current->all.at("Bob") == 21);
    BOOST_CHECK_THROW(Ages::current->all.at("Ann"), std::out_of_range);
}

BOOST_AUTO_TEST_SUITE(inner)

BOOST_AUTO_TEST_CASE(areSharedWithGroupsInside)
{
    BOOST_TEST(++Ages::current->asked == 3);
    BOOST_CHECK_THROW(Ages::current->all.at("Cid"), std::out_of_range);
    BOOST_CHECK_NO_THROW(Ages::current->all.at("Bob"));
}

BOOST_AUTO_TEST_SUITE_END()

BOOST_AUTO_TEST_CASE(areNotRun, *boost::unit_test::precondition(never))
{
    BOOST_TEST(Ages::current == nullptr);
}

BOOST_AUTO_TEST_SUITE_END()

BOOST_AUTO_TEST_SUITE(behind)

BOOST_AUTO_TEST_CASE(theSharedOneIsGone)
{
    BOOST_TEST(Ages::current == nullptr);
}

BOOST_AUTO_TEST_SUITE_END()
