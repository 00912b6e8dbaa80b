#include "registration/literalText.h"

#include <cstddef>

namespace qix::detail
{

namespace
{

constexpr std::string_view rawBegin = "R\"";

int digitValue(char digit) noexcept
{
    if (digit >= '0' && digit <= '9')
    {
        return digit - '0';
    }
    char const lower = static_cast<char>(digit | 0x20);
    return lower >= 'a' && lower <= 'f' ? lower - 'a' + 10 : 16;
}

/// Takes the digits of a number off the front.
char takeNumber(std::string_view& source, int base, std::size_t most) noexcept
{
    unsigned value = 0;
    for (; most > 0 && !source.empty() && digitValue(source[0]) < base; --most)
    {
        value = value * static_cast<unsigned>(base) + static_cast<unsigned>(digitValue(source[0]));
        source.remove_prefix(1);
    }
    return static_cast<char>(value);
}

/// Takes what stands behind a backslash off the front.
char takeEscape(std::string_view& source) noexcept
{
    constexpr std::string_view letters = "abfnrtv";
    constexpr std::string_view meanings = "\a\b\f\n\r\t\v";
    constexpr std::size_t octalDigits = 3;
    char const first = source[0];
    if (digitValue(first) < 8)
    {
        return takeNumber(source, 8, octalDigits);
    }
    source.remove_prefix(1);
    if (first == 'x')
    {
        return takeNumber(source, 16, source.size());
    }
    std::size_t const letter = letters.find(first);
    return letter == std::string_view::npos ? first : meanings[letter];
}

/// Takes a literal off the front, up to its closing quote.
void takeOrdinary(std::string_view& source, std::string& text)
{
    source.remove_prefix(1);
    while (!source.empty() && source[0] != '"')
    {
        char character = source[0];
        source.remove_prefix(1);
        if (character == '\\' && !source.empty())
        {
            character = takeEscape(source);
        }
        text += character;
    }
    source.remove_prefix(source.empty() ? 0 : 1);
}

/// Takes a literal off the front that stands in R"( and )".
void takeRaw(std::string_view& source, std::string& text)
{
    source.remove_prefix(rawBegin.size());
    std::size_t const begin = source.find('(');
    std::string const end = ")" + std::string(source.substr(0, begin)) + "\"";
    std::size_t const size = source.find(end, begin) - begin - 1;
    text += source.substr(begin + 1, size);
    source.remove_prefix(begin + 1 + size + end.size());
}

} // namespace

bool isLiteral(std::string_view name) noexcept
{
    return name[0] == '"' || name.substr(0, rawBegin.size()) == rawBegin;
}

std::string literalText(std::string_view source)
{
    std::string text;
    while (!source.empty())
    {
        if (source[0] == '"')
        {
            takeOrdinary(source, text);
        }
        else if (source.substr(0, rawBegin.size()) == rawBegin)
        {
            takeRaw(source, text);
        }
        else
        {
            source.remove_prefix(1);
        }
    }
    return text;
}

} // namespace qix::detail
