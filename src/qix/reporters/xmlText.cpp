#include "reporters/xmlText.h"

#include "text/CPlainBytes.h"
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

/// What means the same everywhere in a document. A line end is no blank in an attribute, and a
/// question mark may close the instruction that hides a record.
constexpr CPlainBytes plainBytes("<>&\"'?");

void append(std::string& xml, char32_t code)
{
    if (isForbidden(code))
    {
        xml += "[NON-XML-CHAR-0x" + inHexadecimal(code) + "]";
    }
    else
    {
        xml += "&#x" + inHexadecimal(code) + ";";
    }
}

/// Adds what stands for the first character, or for a byte that is none, and tells its size.
std::size_t appendFirst(std::string& xml, std::string_view text)
{
    Utf8Character const character = utf8CharacterAt(text, 0);
    if (character.size == 0)
    {
        xml += "[NON-UTF-8-BYTE-0x" + inHexadecimal(static_cast<unsigned char>(text[0])) + "]";
        return 1;
    }
    append(xml, character.code);
    return character.size;
}

} // namespace

void appendXmlText(std::string& xml, std::string_view text)
{
    while (!text.empty())
    {
        std::size_t const plain = plainBytes.countIn(text);
        xml += text.substr(0, plain);
        text.remove_prefix(plain);
        text.remove_prefix(text.empty() ? 0 : appendFirst(xml, text));
    }
}

} // namespace qix
