#include "text/shownName.h"

namespace qix
{

namespace
{

bool isControl(char character) noexcept
{
    auto const byte = static_cast<unsigned char>(character);
    return byte < 0x20 || byte == 0x7f;
}

std::string escapedControl(char character)
{
    switch (character)
    {
    case '\n':
        return "\\n";
    case '\r':
        return "\\r";
    case '\t':
        return "\\t";
    default:
        break;
    }
    constexpr char digits[] = "0123456789abcdef";
    auto const byte = static_cast<unsigned char>(character);
    return {'\\', 'x', digits[byte >> 4U], digits[byte & 15U]};
}

} // namespace

std::string shownName(std::string_view name)
{
    std::string shown;
    shown.reserve(name.size());
    for (char const character : name)
    {
        if (isControl(character))
        {
            shown += escapedControl(character);
        }
        else
        {
            shown += character;
        }
    }
    return shown;
}

} // namespace qix
