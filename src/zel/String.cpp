#include <zel/String.h>

#include <wx/strconv.h>

#include <algorithm>
#include <cstddef>
#include <optional>

namespace zel
{

namespace
{

/// wxWidgets makes its global converters on first use without a lock. Using them once while the
/// library loads, when there is one thread only, keeps that first use free of races.
struct ConvertersMadeAtLoad
{
    ConvertersMadeAtLoad()
    {
        static_cast<void>(wxConvLocal.GetMBNulLen());
        static_cast<void>(wxConvISO8859_1.GetMBNulLen());
    }
};

ConvertersMadeAtLoad const convertersMadeAtLoad;

/// Reads the text without wxString's narrow conversions, which would write its cache.
std::wstring wideTextOf(wxString const& text)
{
    return std::wstring(text.wc_str(), text.length());
}

/// Half a surrogate pair, or a number beyond the last code point, is no character of any encoding.
/// Converters differ in what they make of one: other characters, or a read beyond their tables.
bool isCharacter(wchar_t c)
{
    auto const code = static_cast<char32_t>(c);
    return code < 0xD800 || (code > 0xDFFF && code <= 0x10FFFF);
}

std::optional<std::string> encode(std::wstring const& text, wxMBConv const& conv)
{
    if (text.empty())
    {
        return std::string();
    }
    if (!std::all_of(text.begin(), text.end(), isCharacter))
    {
        return std::nullopt;
    }
    std::size_t const length = conv.FromWChar(nullptr, 0, text.data(), text.size());
    if (length == wxCONV_FAILED)
    {
        return std::nullopt;
    }
    // The C library skips some characters without output, but requires room for a byte first.
    constexpr std::size_t roomForOne = 16;
    std::string bytes(length + roomForOne, '\0');
    std::size_t const written =
        conv.FromWChar(bytes.data(), bytes.size(), text.data(), text.size());
    if (written == wxCONV_FAILED)
    {
        return std::nullopt;
    }
    bytes.resize(written);
    return bytes;
}

bool canEncode(wchar_t character, wxMBConv const& conv)
{
    return isCharacter(character) && conv.FromWChar(nullptr, 0, &character, 1) != wxCONV_FAILED;
}

int replaceWhatCannotBeEncoded(std::wstring& text, wxMBConv const& conv)
{
    int replaced = 0;
    for (wchar_t& character : text)
    {
        if (!canEncode(character, conv))
        {
            character = L'?';
            ++replaced;
        }
    }
    return replaced;
}

} // namespace

String::String() = default;

// NOLINTNEXTLINE(bugprone-copy-constructor-init): a copy is born with its own reference count
String::String(String const& other) : wxString(other), CBase()
{
}

String::String(wxString const& text) : wxString(text)
{
}

String::String(wxCStrData const& text) : wxString(text)
{
}

String::String(wchar_t const* text) : wxString(text)
{
}

String::String(char const* bytes) : wxString(bytes, wxConvISO8859_1)
{
}

String::String(std::string const& bytes) : wxString(bytes.data(), wxConvISO8859_1, bytes.size())
{
}

String::~String() = default;

String& String::operator+=(String const& text)
{
    append(text);
    return *this;
}

String& String::operator+=(wxString const& text)
{
    append(text);
    return *this;
}

String& String::operator+=(wchar_t const* text)
{
    return *this += String(text);
}

String& String::operator+=(char const* bytes)
{
    return *this += String(bytes);
}

String& String::operator+=(std::string const& bytes)
{
    return *this += String(bytes);
}

String& String::operator+=(char byte)
{
    return *this += String(std::string(1, byte));
}

String operator+(String const& left, char right)
{
    String sum(left);
    sum += right;
    return sum;
}

String operator+(char left, String const& right)
{
    return String(std::string(1, left)) + right;
}

std::string String::toCPSafe() const
{
    if (auto const bytes = encode(wideTextOf(*this), wxConvLocal))
    {
        return *bytes;
    }
    return toEncodingSafe(wxConvLocal, nullptr);
}

std::string String::toEncodingSafe(wxMBConv const& conv, int* problems) const
{
    std::wstring text = wideTextOf(*this);
    auto bytes = encode(text, conv);
    int replaced = 0;
    if (!bytes)
    {
        replaced = replaceWhatCannotBeEncoded(text, conv);
        bytes = encode(text, conv);
    }
    if (problems != nullptr)
    {
        *problems = replaced;
    }
    // An encoding that lacks even the question mark has only the mark's own byte left.
    return bytes ? *bytes : std::string(text.size(), '?');
}

} // namespace zel
