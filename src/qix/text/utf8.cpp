#include "text/utf8.h"

#include "text/letterRanges.h"

#include <algorithm>
#include <iterator>

namespace qix
{

namespace
{

constexpr Utf8Character invalid;

/// How a sequence is recognised by its first byte, and the lowest code that needs its length.
struct Form
{
    unsigned char mask;
    unsigned char mark;
    char32_t lowest;
};

constexpr Form forms[] = {
    {0x80, 0x00, 0}, {0xE0, 0xC0, 0x80}, {0xF0, 0xE0, 0x800}, {0xF8, 0xF0, 0x10000}};

constexpr char32_t firstSurrogate = 0xD800;
constexpr char32_t lastSurrogate = 0xDFFF;
constexpr char32_t highestCode = 0x10FFFF;

bool isContinuation(unsigned char byte) noexcept
{
    return (byte & 0xC0U) == 0x80U;
}

bool isScalarValue(char32_t code) noexcept
{
    return code <= highestCode && (code < firstSurrogate || code > lastSurrogate);
}

Utf8Character decode(std::string_view bytes, std::size_t size) noexcept
{
    Form const& form = forms[size - 1];
    char32_t code = static_cast<unsigned char>(bytes[0]) & ~form.mask & 0xFFU;
    for (std::size_t i = 1; i < size; ++i)
    {
        auto const byte = static_cast<unsigned char>(bytes[i]);
        if (!isContinuation(byte))
        {
            return invalid;
        }
        code = (code << 6U) | (byte & 0x3FU);
    }
    return code >= form.lowest && isScalarValue(code) ? Utf8Character{code, size} : invalid;
}

} // namespace

Utf8Character utf8CharacterAt(std::string_view text, std::size_t position) noexcept
{
    std::string_view const rest = text.substr(position);
    auto const first = static_cast<unsigned char>(rest[0]);
    for (std::size_t size = 1; size <= std::size(forms) && size <= rest.size(); ++size)
    {
        if ((first & forms[size - 1].mask) == forms[size - 1].mark)
        {
            return decode(rest, size);
        }
    }
    return invalid;
}

bool isLetterOrDigitBeyondAscii(char32_t code) noexcept
{
    CodePointRange const* const range =
        std::lower_bound(std::begin(letterRanges), std::end(letterRanges), code,
                         [](CodePointRange const& r, char32_t c) { return r.last < c; });
    return range != std::end(letterRanges) && range->first <= code;
}

} // namespace qix
