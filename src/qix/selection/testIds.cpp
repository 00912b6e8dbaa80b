#include "selection/testIds.h"

#include "text/utf8.h"

#include <algorithm>
#include <array>
#include <optional>

namespace qix
{

namespace
{

constexpr char const emptyName[] = "%";

constexpr std::string_view plainCharacters =
    "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_-";

/// One flag for each byte: all names of a suite are looked through.
constexpr std::array<bool, 256> makePlainFlags() noexcept
{
    std::array<bool, 256> flags = {};
    for (char const character : plainCharacters)
    {
        flags[static_cast<unsigned char>(character)] = true;
    }
    return flags;
}

constexpr std::array<bool, 256> plainFlags = makePlainFlags();

bool isPlain(char character) noexcept
{
    return plainFlags[static_cast<unsigned char>(character)];
}

bool isDigit(char character) noexcept
{
    return character >= '0' && character <= '9';
}

void appendEscaped(std::string& id, char byte)
{
    constexpr char const digits[] = "0123456789ABCDEF";
    auto const value = static_cast<unsigned char>(byte);
    id += '%';
    id += digits[value >> 4U];
    id += digits[value & 0xFU];
}

/// Adds the character, or the byte of none, at the position, and tells where the next one begins.
std::size_t appendCharacter(std::string& id, std::string_view name, std::size_t position)
{
    Utf8Character const character = utf8CharacterAt(name, position);
    if (isLetterOrDigitBeyondAscii(character.code))
    {
        id.append(name, position, character.size);
        return position + character.size;
    }
    appendEscaped(id, name[position]);
    return position + 1;
}

void appendName(std::string& id, std::string_view name)
{
    std::size_t position = 0;
    while (position < name.size())
    {
        if (isPlain(name[position]))
        {
            id += name[position++];
        }
        else
        {
            position = appendCharacter(id, name, position);
        }
    }
}

int hexValue(char character) noexcept
{
    if (isDigit(character))
    {
        return character - '0';
    }
    char const lower = static_cast<char>(character | 0x20);
    return lower >= 'a' && lower <= 'f' ? lower - 'a' + 10 : -1;
}

std::optional<char> escapedByteAt(std::string_view text, std::size_t position)
{
    if (text[position] != '%' || text.size() - position < 3)
    {
        return std::nullopt;
    }
    int const high = hexValue(text[position + 1]);
    int const low = hexValue(text[position + 2]);
    if (high < 0 || low < 0)
    {
        return std::nullopt;
    }
    return static_cast<char>(16 * high + low);
}

std::string decodeName(std::string_view text)
{
    std::string name;
    std::size_t position = 0;
    while (position < text.size())
    {
        std::optional<char> const byte = escapedByteAt(text, position);
        name += byte ? *byte : text[position];
        position += byte ? 3 : 1;
    }
    return name;
}

/// A "#" with a number, or with what may match one, ends a component; others are part of a name.
std::size_t findSiblingNumber(std::string_view component) noexcept
{
    std::size_t const mark = component.rfind('#');
    if (mark == std::string_view::npos || mark + 1 == component.size())
    {
        return component.size();
    }
    std::string_view const number = component.substr(mark + 1);
    bool const isNumber =
        std::all_of(number.begin(), number.end(), [](char c) { return isDigit(c) || c == '*'; });
    return isNumber ? mark : component.size();
}

/// Each piece between stars is decoded by itself.
void appendNamePattern(std::string& pattern, std::string_view text)
{
    for (std::size_t star = text.find('*'); star != std::string_view::npos; star = text.find('*'))
    {
        appendName(pattern, decodeName(text.substr(0, star)));
        pattern += '*';
        text.remove_prefix(star + 1);
    }
    appendName(pattern, decodeName(text));
}

void appendComponentPattern(std::string& pattern, std::string_view component)
{
    std::size_t const end = findSiblingNumber(component);
    std::string_view const name = component.substr(0, end);
    if (name == emptyName)
    {
        pattern += emptyName;
    }
    else
    {
        appendNamePattern(pattern, name);
    }
    pattern.append(component.substr(end));
}

} // namespace

void appendIdComponent(std::string& id, std::string_view name)
{
    if (name.empty())
    {
        id += emptyName;
        return;
    }
    auto const firstOther = std::find_if_not(name.begin(), name.end(), isPlain);
    auto const plain = static_cast<std::size_t>(firstOther - name.begin());
    id.append(name, 0, plain);
    appendName(id, name.substr(plain));
}

void appendSiblingNumber(std::string& id, std::size_t number)
{
    if (number > 1)
    {
        id += '#' + std::to_string(number);
    }
}

std::string normalizedPattern(std::string_view pattern)
{
    std::string normalized;
    for (std::size_t dot = pattern.find('.'); dot != std::string_view::npos;
         dot = pattern.find('.'))
    {
        appendComponentPattern(normalized, pattern.substr(0, dot));
        normalized += '.';
        pattern.remove_prefix(dot + 1);
    }
    appendComponentPattern(normalized, pattern);
    return normalized;
}

} // namespace qix
