// Sections, three levels deep, in loops and in a function; what is tested are containers.

#define CATCH_CONFIG_MAIN
#define CATCH_CONFIG_NO_POSIX_SIGNALS
#include <catch2/catch.hpp>

#include <deque>
#include <list>
#include <map>
#include <optional>
#include <set>
#include <stdexcept>
#include <string>
#include <vector>

TEST_CASE("a vector changes its size", "[vector]")
{
    std::vector<int> numbers = {1, 2, 3};
    REQUIRE(numbers.size() == 3);

    SECTION("when it grows")
    {
        numbers.push_back(4);
        CHECK(numbers.size() == 4);

        SECTION("at its end")
        {
            CHECK(numbers.back() == 4);

            SECTION("it can be cleared")
            {
                numbers.clear();
                CHECK(numbers.empty());
            }
            SECTION("it can be emptied one by one")
            {
                while (!numbers.empty())
                {
                    numbers.pop_back();
                }
                CHECK(numbers.begin() == numbers.end());
            }
        }
        SECTION("it keeps what was there")
        {
            CHECK(numbers.front() == 1);
            CHECK(numbers[1] == 2);
        }
        SECTION("it is wrong on purpose")
        {
            CHECK(numbers.back() == 5);
            CHECK(numbers.size() == 5);
        }
    }
    SECTION("when it shrinks")
    {
        numbers.pop_back();

        SECTION("it keeps its capacity")
        {
            CHECK(numbers.capacity() >= 3);
        }
        SECTION("it cannot be read behind its end")
        {
            CHECK_THROWS_AS(numbers.at(2), std::out_of_range);
            CHECK_NOTHROW(numbers.at(1));
        }
        SECTION("it ends where a requirement fails")
        {
            REQUIRE(numbers.size() == 3);
            CHECK(numbers.back() == 3);
        }
    }
    SECTION("when it is assigned")
    {
        std::vector<int> const other = {7, 8};

        SECTION("a copy")
        {
            numbers = other;
            CHECK(numbers == other);
        }
        SECTION("many times one value")
        {
            numbers.assign(3, 9);

            SECTION("each is that value")
            {
                for (int const number : numbers)
                {
                    CHECK(number == 9);
                }
            }
            SECTION("the size is the count")
            {
                CHECK(numbers.size() == 3);
            }
        }
    }
}

TEST_CASE("a text is searched", "[text]")
{
    std::string text = "one two";

    SECTION("for a word")
    {
        SECTION("that is there")
        {
            SECTION("at the beginning")
            {
                CHECK(text.find("one") == 0);
            }
            SECTION("at the end")
            {
                CHECK(text.find("two") == 4);
            }
        }
        SECTION("that is not there")
        {
            CHECK(text.find("three") == std::string::npos);
        }
        SECTION("from behind")
        {
            text += " one";
            CHECK(text.rfind("one") == 8);
        }
    }
    SECTION("for letters")
    {
        SECTION("any of some")
        {
            CHECK(text.find_first_of("wt") == 4);
        }
        SECTION("none of some")
        {
            CHECK(text.find_first_not_of("eno") == 3);
        }
        SECTION("wrong on purpose")
        {
            CHECK(text.find('o') == 1);
        }
    }
    CHECK(text.substr(0, 7) == "one two");
}

namespace
{

template <typename Container>
void checkSequence(std::string const& name)
{
    Container container = {3, 1, 2};

    SECTION(name)
    {
        SECTION("front")
        {
            container.push_front(4);
            CHECK(container.front() == 4);
        }
        SECTION("back")
        {
            container.push_back(5);
            CHECK(container.back() == 5);
        }
        SECTION("size")
        {
            CHECK(container.size() == 3);
        }
    }
}

} // namespace

TEST_CASE("sequences are alike", "[sequence]")
{
    checkSequence<std::list<int>>("list");
    checkSequence<std::deque<int>>("deque");
}

TEST_CASE("a set holds what is put into it", "[set]")
{
    for (int const count : {1, 10, 100})
    {
        DYNAMIC_SECTION("with " << count << " numbers")
        {
            std::set<int> numbers;
            for (int i = 0; i < count; ++i)
            {
                numbers.insert(i);
                numbers.insert(i / 2);
            }
            CHECK(numbers.size() == static_cast<std::size_t>(count));

            SECTION("the least")
            {
                CHECK(*numbers.begin() == 0);
            }
            SECTION("the greatest")
            {
                CHECK(*numbers.rbegin() == count - 1);
            }
            SECTION("none twice")
            {
                CHECK_FALSE(numbers.insert(0).second);
            }
        }
    }
}

TEST_CASE("a map finds values by keys", "[map]")
{
    std::map<std::string, int> ages = {{"Ann", 30}, {"Bob", 20}};

    SECTION("what is there")
    {
        CHECK(ages.at("Ann") == 30);

        SECTION("can be changed")
        {
            ages["Ann"] = 31;
            CHECK(ages.at("Ann") == 31);
            CHECK(ages.size() == 2);
        }
        SECTION("can be taken out")
        {
            CHECK(ages.erase("Ann") == 1);
            CHECK(ages.count("Ann") == 0);
        }
    }
    SECTION("what is not there")
    {
        SECTION("is made by brackets")
        {
            CHECK(ages["Cid"] == 0);
            CHECK(ages.size() == 3);
        }
        SECTION("throws")
        {
            CHECK_THROWS_AS(ages.at("Cid"), std::out_of_range);
        }
        SECTION("leaves the section by an exception, on purpose")
        {
            CHECK(ages.size() == 2);
            CHECK(ages.at("Cid") == 0);
        }
    }
}

TEST_CASE("an optional value is there or not", "[optional]")
{
    std::optional<int> value;
    CHECK_FALSE(value.has_value());

    SECTION("when it is there")
    {
        value = 7;

        SECTION("it is read")
        {
            CHECK(value == 7);
        }
        SECTION("it is taken away")
        {
            value.reset();
            CHECK(value == std::nullopt);
        }
    }
    SECTION("when it is not there")
    {
        CHECK(value.value_or(3) == 3);
        CHECK_THROWS_AS(value.value(), std::bad_optional_access);
    }
}
