/// Text to bytes in several encodings: never fails, agrees with a model of the encoding, counts
/// what was replaced, and gives the text back when nothing was.
///
/// Input: a letter that tells the encoding, and then the text as UTF-8, read without any check,
/// in which the byte FF stands before a number of 32 bits that is taken as it is.

#include "fuzz.h"

#include "../tests/models/EncodingModel.h"

#include <zel/String.h>

#include <wx/strconv.h>

#include <langinfo.h>
#include <locale.h>

#include <algorithm>
#include <memory>
#include <vector>

namespace
{

struct Encoding
{
    wxMBConv const& converter;
    models::EncodeCharacter encode;
    bool isReversible = true; ///< no two characters have the same bytes
};

char32_t readCharacter(fuzz::Input& input)
{
    char32_t const lead = input.byte();
    if (lead < 0x80)
    {
        return lead;
    }
    bool const isRaw = lead == 0xFF;
    int const following = isRaw ? 4 : lead < 0xE0 ? 1 : lead < 0xF0 ? 2 : 3;
    char32_t c = isRaw ? 0 : lead & (0x3FU >> following);
    for (int i = 0; i < following; ++i)
    {
        char32_t const byte = input.byte();
        c = isRaw ? (c << 8) | byte : (c << 6) | (byte & 0x3F);
    }
    return c;
}

std::wstring readText(fuzz::Input& input)
{
    std::wstring text;
    while (!input.isAtEnd())
    {
        text.push_back(static_cast<wchar_t>(readCharacter(input)));
    }
    return text;
}

std::vector<Encoding> const& encodings()
{
    static wxCSConv const latin9("ISO-8859-15");
    static wxCSConv const koi8("KOI8-R");
    static wxCSConv const windows("windows-1252");
    static wxCSConv const ebcdic("IBM1047");
    static wxCSConv const chinese("GB18030");
    static wxCSConv const japanese("EUC-JP");
    static wxMBConvUTF16BE const utf16;
    static wxMBConvUTF32BE const utf32;
    auto const byIconv = [](char const* name)
    {
        auto const model = std::make_shared<models::IconvModel>(name);
        return [model](char32_t c) { return (*model)(c); };
    };
    static std::vector<Encoding> const all = {
        {wxConvUTF8, models::encodeUtf8},   {wxConvISO8859_1, models::encodeLatin1},
        {utf16, models::encodeUtf16Be},     {utf32, models::encodeUtf32Be},
        {latin9, byIconv("ISO-8859-15")},   {koi8, byIconv("KOI8-R")},
        {windows, byIconv("windows-1252")}, {ebcdic, byIconv("IBM1047")},
        {chinese, byIconv("GB18030")},      {japanese, byIconv("EUC-JP"), false}};
    return all;
}

/// The C library leaves these out of what it encodes without a word.
bool isIgnored(wchar_t c)
{
    return c >= 0xE0000 && c < 0xE0080;
}

void checkEncoding(std::wstring const& text, Encoding const& encoding)
{
    zel::String const string{wxString(text)};
    int problems = -1;
    std::string const bytes = string.toEncodingSafe(encoding.converter, &problems);
    auto const expected = models::encodeSafely(text, encoding.encode);
    fuzz::requireEqual(bytes, expected.bytes, "the bytes of the encoding");
    fuzz::requireEqual(std::to_string(problems), std::to_string(expected.problems),
                       "the number of problems");
    if (encoding.isReversible && problems == 0 && std::none_of(text.begin(), text.end(), isIgnored))
    {
        wxString const back(bytes.data(), encoding.converter, bytes.size());
        fuzz::require(back.ToStdWstring() == text, "the bytes give the text back");
    }
}

/// The encoding of the locale, if there is a model of it.
models::EncodeCharacter localeModel()
{
    locale_t const locale = newlocale(LC_CTYPE_MASK, "", static_cast<locale_t>(nullptr));
    fuzz::require(locale != nullptr, "the locale of the environment exists");
    std::string const name = nl_langinfo_l(CODESET, locale);
    freelocale(locale);
    if (name == "UTF-8")
    {
        return models::encodeUtf8;
    }
    return name == "ANSI_X3.4-1968" ? models::encodeLatin1 : models::EncodeCharacter();
}

void checkLocale(std::wstring const& text)
{
    static models::EncodeCharacter const model = localeModel();
    zel::String const string{wxString(text)};
    std::string const bytes = string.toCPSafe();
    fuzz::requireEqual(bytes, string.toEncodingSafe(wxConvLocal, nullptr), "both ways agree");
    if (model)
    {
        fuzz::requireEqual(bytes, models::encodeSafely(text, model).bytes, "the bytes");
    }
}

} // namespace

int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size)
{
    fuzz::Input input(data, size);
    std::size_t const choice = static_cast<std::uint8_t>(input.byte() - 'a') % encodings().size();
    std::wstring const text = readText(input);
    checkEncoding(text, encodings()[choice]);
    checkLocale(text);
    return 0;
}
