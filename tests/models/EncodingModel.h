#pragma once

#include <iconv.h>

#include <cstdint>
#include <functional>
#include <optional>
#include <stdexcept>
#include <string>

namespace models
{

/// The bytes of one character, or nothing when the encoding lacks it.
using EncodeCharacter = std::function<std::optional<std::string>(char32_t)>;

constexpr char32_t lastCharacter = 0x10FFFF;

inline bool isCharacter(char32_t c)
{
    return c <= lastCharacter && (c < 0xD800 || c > 0xDFFF);
}

inline std::optional<std::string> encodeUtf8(char32_t c)
{
    if (!isCharacter(c))
    {
        return std::nullopt;
    }
    if (c < 0x80)
    {
        return std::string(1, static_cast<char>(c));
    }
    int const following = c < 0x800 ? 1 : c < 0x10000 ? 2 : 3;
    char32_t const lead = following == 1 ? 0xC0 : following == 2 ? 0xE0 : 0xF0;
    std::string bytes(1, static_cast<char>(lead | (c >> (6 * following))));
    for (int i = following - 1; i >= 0; --i)
    {
        bytes.push_back(static_cast<char>(0x80 | ((c >> (6 * i)) & 0x3F)));
    }
    return bytes;
}

inline std::optional<std::string> encodeLatin1(char32_t c)
{
    return c > 0xFF ? std::nullopt : std::optional(std::string(1, static_cast<char>(c)));
}

/// The most significant byte first.
inline std::string bigEndian(char32_t value, int size)
{
    std::string bytes;
    for (int i = size - 1; i >= 0; --i)
    {
        bytes.push_back(static_cast<char>(value >> (8 * i)));
    }
    return bytes;
}

inline std::optional<std::string> encodeUtf16Be(char32_t c)
{
    if (!isCharacter(c))
    {
        return std::nullopt;
    }
    if (c < 0x10000)
    {
        return bigEndian(c, 2);
    }
    char32_t const above = c - 0x10000;
    return bigEndian(0xD800 + above / 0x400, 2) + bigEndian(0xDC00 + above % 0x400, 2);
}

inline std::optional<std::string> encodeUtf32Be(char32_t c)
{
    return isCharacter(c) ? std::optional(bigEndian(c, 4)) : std::nullopt;
}

/// An encoding that the C library knows by name, one character at a time and each from the start.
class IconvModel
{
public:
    explicit IconvModel(char const* encoding) : m_iconv(iconv_open(encoding, "UTF-32BE"))
    {
        // NOLINTNEXTLINE(performance-no-int-to-ptr): that is how iconv_open() fails
        if (m_iconv == reinterpret_cast<iconv_t>(-1))
        {
            throw std::runtime_error(std::string("unknown encoding: ") + encoding);
        }
    }
    ~IconvModel() { iconv_close(m_iconv); }
    IconvModel(IconvModel const&) = delete;
    IconvModel& operator=(IconvModel const&) = delete;

    std::optional<std::string> operator()(char32_t c) const
    {
        std::string in = bigEndian(c, 4);
        char out[16];
        char* from = in.data();
        char* to = out;
        std::size_t fromLeft = in.size();
        std::size_t toLeft = sizeof(out);
        iconv(m_iconv, nullptr, nullptr, nullptr, nullptr);
        if (!isCharacter(c) || iconv(m_iconv, &from, &fromLeft, &to, &toLeft) != 0)
        {
            return std::nullopt;
        }
        return std::string(out, sizeof(out) - toLeft);
    }

private:
    iconv_t m_iconv;
};

/// A text as bytes, with a question mark for each character that the encoding lacks.
struct EncodedText
{
    std::string bytes;
    int problems = 0;
};

inline EncodedText encodeSafely(std::wstring const& text, EncodeCharacter const& encode)
{
    EncodedText encoded;
    for (wchar_t const c : text)
    {
        auto const bytes = encode(static_cast<char32_t>(c));
        encoded.problems += bytes ? 0 : 1;
        encoded.bytes += bytes ? *bytes : encode(U'?').value();
    }
    return encoded;
}

} // namespace models
