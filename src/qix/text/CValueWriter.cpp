#include <qix/CValueWriter.h>
#include <zel/String.h>

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <sstream>

namespace qix
{

namespace
{

constexpr char hexDigits[] = "0123456789abcdef";
constexpr std::size_t shownBytes = 32;

std::string hexByte(unsigned char byte)
{
    return {hexDigits[byte >> 4], hexDigits[byte & 15]};
}

/// The letter that stands behind a backslash for the character, or 0.
char escapeLetter(char character)
{
    switch (character)
    {
    case '\n':
        return 'n';
    case '\r':
        return 'r';
    case '\t':
        return 't';
    case '\\':
        return '\\';
    default:
        return 0;
    }
}

/// Bytes above 127 stay as they are: they are a part of some encoding's letters.
std::string escaped(char character, char quote)
{
    if (character == quote)
    {
        return {'\\', character};
    }
    if (char const letter = escapeLetter(character))
    {
        return {'\\', letter};
    }
    auto const byte = static_cast<unsigned char>(character);
    return byte < 0x20 || byte == 0x7f ? "\\x" + hexByte(byte) : std::string(1, character);
}

template <typename T>
std::string shortestText(T value)
{
    char digits[64];
    std::to_chars_result const end = std::to_chars(digits, digits + sizeof(digits), value);
    return std::string(digits, end.ptr);
}

/// Reads one character of UTF-16 off the front; a unit without its other half is left as it is.
char32_t takeCharacter(std::u16string_view& units)
{
    auto const isBetween = [](char16_t unit, char16_t first, char16_t last)
    { return first <= unit && unit <= last; };
    char32_t character = units[0];
    std::size_t taken = 1;
    if (units.size() > 1 && isBetween(units[0], 0xd800, 0xdbff) &&
        isBetween(units[1], 0xdc00, 0xdfff))
    {
        character = 0x10000 + ((character - 0xd800) << 10) + (units[1] - 0xdc00U);
        taken = 2;
    }
    units.remove_prefix(taken);
    return character;
}

std::u32string decodeUtf16(std::u16string_view units)
{
    std::u32string characters;
    while (!units.empty())
    {
        characters += takeCharacter(units);
    }
    return characters;
}

bool isCodePoint(char32_t character)
{
    return character < 0xd800 || (0xdfff < character && character < 0x110000);
}

/// The character in the encoding of the locale, or its number.
std::string encoded(char32_t character)
{
    if (character < 0x80)
    {
        return escaped(static_cast<char>(character), '"');
    }
    if (isCodePoint(character))
    {
        return zel::String(wxString(static_cast<wchar_t>(character))).toCPSafe();
    }
    char digits[16];
    std::snprintf(digits, sizeof(digits), "\\x{%x}", static_cast<unsigned>(character));
    return digits;
}

/// The arguments in the last brackets of a compiler's text for a function template.
std::string_view argumentsIn(std::string_view text)
{
    bool const isClang = text.find("values = <") != std::string_view::npos;
    std::size_t const begin = text.find(isClang ? "values = <" : "values = {");
    std::size_t const end = text.find_last_of(isClang ? '>' : '}');
    constexpr std::size_t intro = 10;
    return begin == std::string_view::npos ? "" : text.substr(begin + intro, end - begin - intro);
}

/// Where the first argument ends: at a comma that is in no brackets.
std::size_t endOfArgument(std::string_view arguments)
{
    int depth = 0;
    for (std::size_t i = 0; i < arguments.size(); ++i)
    {
        char const character = arguments[i];
        depth += std::string_view("<({").find(character) != std::string_view::npos ? 1 : 0;
        depth -= std::string_view(">)}").find(character) != std::string_view::npos ? 1 : 0;
        if (character == ',' && depth == 0)
        {
            return i;
        }
    }
    return arguments.size();
}

/// What stands behind the last colon or bracket: a name, or a number.
std::string_view lastPart(std::string_view argument)
{
    return argument.substr(argument.find_last_of(":)") + 1);
}

} // namespace

void CValueWriter::text(std::string_view bytes)
{
    m_written += bytes;
}

void CValueWriter::quoted(std::string_view bytes)
{
    m_written += '"';
    for (char const byte : bytes)
    {
        m_written += escaped(byte, '"');
    }
    m_written += '"';
}

void CValueWriter::quoted(std::wstring_view characters)
{
    quoted(wxString(characters.data(), characters.size()));
}

void CValueWriter::quoted(std::u16string_view units)
{
    quoted(std::u32string_view(decodeUtf16(units)));
}

void CValueWriter::quoted(std::u32string_view characters)
{
    m_written += '"';
    for (char32_t const character : characters)
    {
        m_written += encoded(character);
    }
    m_written += '"';
}

void CValueWriter::quoted(wxString const& characters)
{
    quoted(std::string_view(zel::String(characters).toCPSafe()));
}

void CValueWriter::boolean(bool value)
{
    text(value ? "true" : "false");
}

void CValueWriter::character(char value)
{
    auto const byte = static_cast<unsigned char>(value);
    // A byte above 127 is only a part of a letter.
    m_written += "'" + (byte < 0x80 ? escaped(value, '\'') : "\\x" + hexByte(byte)) + "'";
}

void CValueWriter::wideCharacter(char32_t value)
{
    if (value < 0x80)
    {
        character(static_cast<char>(value));
        return;
    }
    char digits[16];
    std::snprintf(digits, sizeof(digits), "U+%04X", static_cast<unsigned>(value));
    text(digits);
}

void CValueWriter::integer(long long value)
{
    m_written += std::to_string(value);
}

void CValueWriter::unsignedInteger(unsigned long long value)
{
    m_written += std::to_string(value);
}

void CValueWriter::integer128(bool isNegative, unsigned long long high, unsigned long long low)
{
    // The largest power of ten in 64 bits takes the number apart into at most three pieces.
    constexpr unsigned long long piece = 10000000000000000000U;
    __extension__ using UnsignedInt128 = unsigned __int128;
    UnsignedInt128 rest = static_cast<UnsignedInt128>(high) << 64 | low;
    std::string digits;
    for (; rest >= piece; rest /= piece)
    {
        std::string const last = std::to_string(static_cast<unsigned long long>(rest % piece));
        digits.insert(0, std::string(19 - last.size(), '0') + last);
    }
    m_written += isNegative ? "-" : "";
    m_written += std::to_string(static_cast<unsigned long long>(rest)) + digits;
}

void CValueWriter::floating(float value)
{
    m_written += shortestText(value);
}

void CValueWriter::floating(double value)
{
    m_written += shortestText(value);
}

void CValueWriter::floating(long double value)
{
    m_written += shortestText(value);
}

void CValueWriter::address(void const* value)
{
    if (value == nullptr)
    {
        text("nullptr");
        return;
    }
    char digits[32];
    std::snprintf(digits, sizeof(digits), "%p", value);
    text(digits);
}

bool CValueWriter::enumerator(std::string_view names, std::size_t index)
{
    std::string_view arguments = argumentsIn(names);
    for (; index > 0 && !arguments.empty(); --index)
    {
        arguments.remove_prefix(std::min(endOfArgument(arguments) + 2, arguments.size()));
    }
    std::string_view const name = lastPart(arguments.substr(0, endOfArgument(arguments)));
    bool const isName = !name.empty() && name[0] != '-' && !('0' <= name[0] && name[0] <= '9');
    m_written += isName ? name : std::string_view();
    return isName;
}

void CValueWriter::opaque(std::size_t size)
{
    m_written += "<" + std::to_string(size) + (size == 1 ? " byte>" : " bytes>");
}

void CValueWriter::bytes(void const* object, std::size_t size)
{
    auto const* const begin = static_cast<unsigned char const*>(object);
    m_written += "<" + std::to_string(size) + (size == 1 ? " byte:" : " bytes:");
    for (std::size_t i = 0; i < std::min(size, shownBytes); ++i)
    {
        m_written += " " + hexByte(begin[i]);
    }
    m_written += size > shownBytes ? " ...>" : ">";
}

void CValueWriter::streamed(void (*write)(std::ostream& stream, void const* object),
                            void const* object)
{
    std::ostringstream stream;
    write(stream, object);
    m_written += stream.str();
}

} // namespace qix
