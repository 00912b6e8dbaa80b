#include "text/CJsonWriter.h"

#include "text/CPlainBytes.h"
#include "text/utf8.h"

#include <array>
#include <charconv>
#include <utility>

namespace qix
{

namespace
{

constexpr std::string_view markOfByte = "[NON-UTF-8-BYTE-0x";

/// What stands for itself in a text; a bracket may begin a mark.
constexpr CPlainBytes plainBytes("\"\\[");

void appendHexadecimal(std::string& text, unsigned char byte)
{
    constexpr char const digits[] = "0123456789ABCDEF";
    text += digits[byte >> 4U];
    text += digits[byte & 0xFU];
}

void appendMarked(std::string& text, char byte)
{
    text += markOfByte;
    appendHexadecimal(text, static_cast<unsigned char>(byte));
    text += ']';
}

void appendAscii(std::string& text, char character)
{
    if (character == '"' || character == '\\')
    {
        text += '\\';
        text += character;
    }
    else if (static_cast<unsigned char>(character) < 0x20 || character == 0x7F)
    {
        text += "\\u00";
        appendHexadecimal(text, static_cast<unsigned char>(character));
    }
    else
    {
        text += character;
    }
}

/// Adds the character at the beginning, or what stands for its first byte, and tells its size.
std::size_t appendFirst(std::string& text, std::string_view rest)
{
    std::size_t const size = utf8CharacterAt(rest, 0).size;
    if (size == 0 || rest.substr(0, markOfByte.size()) == markOfByte)
    {
        appendMarked(text, rest[0]);
        return 1;
    }
    if (size == 1)
    {
        appendAscii(text, rest[0]);
    }
    else
    {
        text += rest.substr(0, size);
    }
    return size;
}

} // namespace

void appendJsonText(std::string& json, std::string_view text)
{
    json += '"';
    while (!text.empty())
    {
        std::size_t const plain = plainBytes.countIn(text);
        json += text.substr(0, plain);
        text.remove_prefix(plain);
        text.remove_prefix(text.empty() ? 0 : appendFirst(json, text));
    }
    json += '"';
}

void CJsonWriter::separate()
{
    if (m_needsComma)
    {
        m_text += ',';
    }
    m_needsComma = true;
}

void CJsonWriter::begin(char bracket)
{
    separate();
    m_text += bracket;
    m_needsComma = false;
}

void CJsonWriter::end(char bracket)
{
    m_text += bracket;
    m_needsComma = true;
}

void CJsonWriter::key(std::string_view name)
{
    // At once, since there are more keys than anything else.
    std::array<char, 34> text;
    std::size_t size = 0;
    if (m_needsComma)
    {
        text[size++] = ',';
    }
    text[size++] = '"';
    size += name.copy(text.data() + size, text.size() - size - 2);
    text[size++] = '"';
    text[size++] = ':';
    m_text.append(text.data(), size);
    m_needsComma = false;
}

void CJsonWriter::written(std::string_view json)
{
    separate();
    m_text += json;
}

void CJsonWriter::value(std::string_view text)
{
    separate();
    appendJsonText(m_text, text);
}

void CJsonWriter::value(std::uint64_t number)
{
    separate();
    m_text += std::to_string(number);
}

void CJsonWriter::value(bool isTrue)
{
    separate();
    m_text += isTrue ? "true" : "false";
}

void CJsonWriter::seconds(std::uint64_t microseconds)
{
    constexpr std::uint64_t ofOneSecond = 1000000;
    std::array<char, 32> digits;
    char* const point = std::to_chars(digits.begin(), digits.end(), microseconds / ofOneSecond).ptr;
    // The one in front of the fraction makes it six digits long, and becomes the point.
    char* const end =
        std::to_chars(point, digits.end(), ofOneSecond + microseconds % ofOneSecond).ptr;
    *point = '.';
    separate();
    m_text.append(digits.data(), end);
}

void CJsonWriter::clear() noexcept
{
    m_text.clear();
    m_needsComma = false;
}

std::string CJsonWriter::take()
{
    m_needsComma = false;
    return std::exchange(m_text, std::string());
}

void CJsonWriter::moveTo(std::string& text)
{
    text.clear();
    text.swap(m_text);
    m_needsComma = false;
}

} // namespace qix
