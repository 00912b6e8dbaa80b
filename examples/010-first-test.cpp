#include <qix/test.h>

#include <string>

/// What is tested here: the text without the blanks at both its ends.
static std::string trim(std::string const& text)
{
    std::size_t const first = text.find_first_not_of(' ');
    std::size_t const last = text.find_last_not_of(' ');
    return first == std::string::npos ? "" : text.substr(first, last - first + 1);
}

QIX_TEST(trim, takesBlanksAway)
{
    QIX_CHECK(trim("  two words ") == "two words");
    QIX_CHECK(trim("word") == "word");
}

QIX_TEST(trim, leavesNothingOfBlanks)
{
    QIX_CHECK(trim("").empty());
    QIX_CHECK(trim("   ").empty());
}
