// Fixtures of tests and of suites; what is tested are files, streams and containers.

#include <qix/test.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <map>
#include <stdexcept>
#include <string>
#include <vector>

static int objects = 0;

/// Makes a file, and takes it away.
class File : public qix::CTestItem
{
public:
    File()
    {
        ++objects;
        std::ofstream(name) << "one\ntwo\n";
    }

    ~File() override
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
struct Broken : qix::CTestItem
{
    Broken() { throw std::runtime_error("there is nothing to make it of"); }
};

QIX_TEST_F(File, file, hasLines)
{
    QIX_CHECK(countLines() == 2);
    QIX_CHECK(objects == 1);
}

QIX_TEST_F(File, file, grows)
{
    std::ofstream(name, std::ios::app) << "three\n";
    QIX_CHECK(countLines() == 3);
    QIX_CHECK(objects == 1);
}

// Wrong on purpose; the fixture is taken away nevertheless.
QIX_TEST_F(File, file, isWrong)
{
    QIX_CHECK(countLines() == 4);
    QIX_REQUIRE(objects == 2);
    QIX_CHECK(countLines() == 5);
}

QIX_TEST_F(File, file, isLeftByAnException)
{
    QIX_CHECK(std::filesystem::file_size(name) == 8U);
    throw std::runtime_error("on purpose");
}

QIX_TEST(file, isGone)
{
    QIX_CHECK(!std::filesystem::exists("fixture.txt"));
    QIX_CHECK(objects == 0);
}

QIX_TEST_F(Broken, file, cannotBeMade)
{
    QIX_CHECK(objects == 0);
}

QIX_GROUP_FIXTURE(ages, Ages);

QIX_TEST(ages, areFound)
{
    QIX_CHECK(qix::groupFixture<Ages>().all.at("Ann") == 30);
    QIX_CHECK(++qix::groupFixture<Ages>().asked == 1);
}

QIX_TEST(ages, areShared)
{
    QIX_CHECK(qix::groupFixture<Ages>().all.at("Bob") == 20);
    QIX_CHECK(++qix::groupFixture<Ages>().asked == 2);
}

// Wrong on purpose; the tests behind it have the object nevertheless.
QIX_TEST(ages, areWrong)
{
    QIX_CHECK(qix::groupFixture<Ages>().all.at("Bob") == 21);
    QIX_CHECK_THROWS_AS(qix::groupFixture<Ages>().all.at("Ann"), std::out_of_range);
}

QIX_TEST(ages.inner, areSharedWithGroupsInside)
{
    QIX_CHECK(++qix::groupFixture<Ages>().asked == 3);
    QIX_CHECK_THROWS_AS(qix::groupFixture<Ages>().all.at("Cid"), std::out_of_range);
    QIX_CHECK_NOTHROW(qix::groupFixture<Ages>().all.at("Bob"));
}

QIX_TEST(ages, areNotRun, Disabled("on purpose"))
{
    QIX_CHECK(Ages::current == nullptr);
}

QIX_TEST(behind, theSharedOneIsGone)
{
    QIX_CHECK(Ages::current == nullptr);
}
