#include <qix/detail/describe.h>
#include <zel/String.h>

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <sstream>

namespace qix::detail
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

} // namespace qix::detail
