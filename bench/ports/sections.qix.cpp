// Sections, three levels deep, in loops and in a function; what is tested are containers.

#include <qix/test.h>

#include <deque>
#include <list>
#include <map>
#include <optional>
#include <set>
#include <stdexcept>
#include <string>
#include <vector>

QIX_TEST(sections, "a vector changes its size", Tags("vector"))
{
    std::vector<int> numbers = {1, 2, 3};
    QIX_REQUIRE(numbers.size() == 3);

    QIX_SECTION("when it grows")
    {
        numbers.push_back(4);
        QIX_CHECK(numbers.size() == 4);

        QIX_SECTION("at its end")
        {
            QIX_CHECK(numbers.back() == 4);

            QIX_SECTION("it can be cleared")
            {
                numbers.clear();
                QIX_CHECK(numbers.empty());
            }
            QIX_SECTION("it can be emptied one by one")
            {
                while (!numbers.empty())
                {
                    numbers.pop_back();
                }
                QIX_CHECK(numbers.begin() == numbers.end());
            }
        }
        QIX_SECTION("it keeps what was there")
        {
            QIX_CHECK(numbers.front() == 1);
            QIX_CHECK(numbers[1] == 2);
        }
        QIX_SECTION("it is wrong on purpose")
        {
            QIX_CHECK(numbers.back() == 5);
            QIX_CHECK(numbers.size() == 5);
        }
    }
    QIX_SECTION("when it shrinks")
    {
        numbers.pop_back();

        QIX_SECTION("it keeps its capacity")
        {
            QIX_CHECK(numbers.capacity() >= 3);
        }
        QIX_SECTION("it cannot be read behind its end")
        {
            QIX_CHECK_THROWS_AS(numbers.at(2), std::out_of_range);
            QIX_CHECK_NOTHROW(numbers.at(1));
        }
        QIX_SECTION("it ends where a requirement fails")
        {
            QIX_REQUIRE(numbers.size() == 3);
            QIX_CHECK(numbers.back() == 3);
        }
    }
    QIX_SECTION("when it is assigned")
    {
        std::vector<int> const other = {7, 8};

        QIX_SECTION("a copy")
        {
            numbers = other;
            QIX_CHECK(numbers == other);
        }
        QIX_SECTION("many times one value")
        {
            numbers.assign(3, 9);

            QIX_SECTION("each is that value")
            {
                for (int const number : numbers)
                {
                    QIX_CHECK(number == 9);
                }
            }
            QIX_SECTION("the size is the count")
            {
                QIX_CHECK(numbers.size() == 3);
            }
        }
    }
}

QIX_TEST(sections, "a text is searched", Tags("text"))
{
    std::string text = "one two";

    QIX_SECTION("for a word")
    {
        QIX_SECTION("that is there")
        {
            QIX_SECTION("at the beginning")
            {
                QIX_CHECK(text.find("one") == 0);
            }
            QIX_SECTION("at the end")
            {
                QIX_CHECK(text.find("two") == 4);
            }
        }
        QIX_SECTION("that is not there")
        {
            QIX_CHECK(text.find("three") == std::string::npos);
        }
        QIX_SECTION("from behind")
        {
            text += " one";
            QIX_CHECK(text.rfind("one") == 8);
        }
    }
    QIX_SECTION("for letters")
    {
        QIX_SECTION("any of some")
        {
            QIX_CHECK(text.find_first_of("wt") == 4);
        }
        QIX_SECTION("none of some")
        {
            QIX_CHECK(text.find_first_not_of("eno") == 3);
        }
        QIX_SECTION("wrong on purpose")
        {
            QIX_CHECK(text.find('o') == 1);
        }
    }
    QIX_CHECK(text.substr(0, 7) == "one two");
}

namespace
{

template <typename Container>
void checkSequence(std::string const& name)
{
    Container container = {3, 1, 2};

    QIX_SECTION(name)
    {
        QIX_SECTION("front")
        {
            container.push_front(4);
            QIX_CHECK(container.front() == 4);
        }
        QIX_SECTION("back")
        {
            container.push_back(5);
            QIX_CHECK(container.back() == 5);
        }
        QIX_SECTION("size")
        {
            QIX_CHECK(container.size() == 3);
        }
    }
}

} // namespace

QIX_TEST(sections, "sequences are alike", Tags("sequence"))
{
    checkSequence<std::list<int>>("list");
    checkSequence<std::deque<int>>("deque");
}

QIX_TEST(sections, "a set holds what is put into it", Tags("set"))
{
    for (int const count : {1, 10, 100})
    {
        QIX_SECTION("with " + std::to_string(count) + " numbers")
        {
            std::set<int> numbers;
            for (int i = 0; i < count; ++i)
            {
                numbers.insert(i);
                numbers.insert(i / 2);
            }
            QIX_CHECK(numbers.size() == static_cast<std::size_t>(count));

            QIX_SECTION("the least")
            {
                QIX_CHECK(*numbers.begin() == 0);
            }
            QIX_SECTION("the greatest")
            {
                QIX_CHECK(*numbers.rbegin() == count - 1);
            }
            QIX_SECTION("none twice")
            {
                QIX_CHECK(!numbers.insert(0).second);
            }
        }
    }
}

QIX_TEST(sections, "a map finds values by keys", Tags("map"))
{
    std::map<std::string, int> ages = {{"Ann", 30}, {"Bob", 20}};

    QIX_SECTION("what is there")
    {
        QIX_CHECK(ages.at("Ann") == 30);

        QIX_SECTION("can be changed")
        {
            ages["Ann"] = 31;
            QIX_CHECK(ages.at("Ann") == 31);
            QIX_CHECK(ages.size() == 2);
        }
        QIX_SECTION("can be taken out")
        {
            QIX_CHECK(ages.erase("Ann") == 1);
            QIX_CHECK(ages.count("Ann") == 0);
        }
    }
    QIX_SECTION("what is not there")
    {
        QIX_SECTION("is made by brackets")
        {
            QIX_CHECK(ages["Cid"] == 0);
            QIX_CHECK(ages.size() == 3);
        }
        QIX_SECTION("throws")
        {
            QIX_CHECK_THROWS_AS(ages.at("Cid"), std::out_of_range);
        }
        QIX_SECTION("leaves the section by an exception, on purpose")
        {
            QIX_CHECK(ages.size() == 2);
            QIX_CHECK(ages.at("Cid") == 0);
        }
    }
}

QIX_TEST(sections, "an optional value is there or not", Tags("optional"))
{
    std::optional<int> value;
    QIX_CHECK(!value.has_value());

    QIX_SECTION("when it is there")
    {
        value = 7;

        QIX_SECTION("it is read")
        {
            QIX_CHECK(value == 7);
        }
        QIX_SECTION("it is taken away")
        {
            value.reset();
            QIX_CHECK(value == std::nullopt);
        }
    }
    QIX_SECTION("when it is not there")
    {
        QIX_CHECK(value.value_or(3) == 3);
        QIX_CHECK_THROWS_AS(value.value(), std::bad_optional_access);
    }
}
