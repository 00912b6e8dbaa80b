#include "reporters/xmlText.h"

#include "text/utf8.h"

#include <cstdint>

namespace qix
{

namespace
{

std::string inHexadecimal(std::uint32_t number)
{
    std::string digits;
    do
    {
        digits.insert(digits.begin(), "0123456789ABCDEF"[number & 0xFU]);
        number >>= 4U;
    } while (number != 0);
    return digits;
}

bool isForbidden(char32_t code) noexcept
{
    bool const isControl = code < 0x20 && code != '\t' && code != '\n' && code != '\r';
    return isControl || code == 0xFFFE || code == 0xFFFF;
}

/// True for what means the same everywhere in a document. A line end is no blank in an attribute,
/// and a question mark may close the instruction that hides a record.
bool isPlain(char32_t code) noexcept
{
    constexpr std::string_view marks = "<>&\"'?";
    return code >= 0x20 && code < 0x7F && marks.find(static_cast<char>(code)) == marks.npos;
}

void append(std::string& xml, char32_t code)
{
    if (isPlain(code))
    {
        xml += static_cast<char>(code);
    }
    else if (isForbidden(code))
    {
        xml += "[NON-XML-CHAR-0x" + inHexadecimal(code) + "]";
    }
    else
    {
        xml += "&#x" + inHexadecimal(code) + ";";
    }
}

} // namespace

std::string xmlText(std::string_view text)
{
    std::string xml;
    for (std::size_t position = 0; position < text.size();)
    {
        Utf8Character const character = utf8CharacterAt(text, position);
        if (character.size == 0)
        {
            xml += "[NON-UTF-8-BYTE-0x" +
                   inHexadecimal(static_cast<unsigned char>(text[position])) + "]";
            ++position;
        }
        else
        {
            append(xml, character.code);
            position += character.size;
        }
    }
    return xml;
}

} // namespace qix
