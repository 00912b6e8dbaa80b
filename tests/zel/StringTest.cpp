#include <zel/P.h>
#include <zel/String.h>

#include "Locale.h"

#include <wx/strconv.h>

#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <type_traits>
#include <vector>

namespace
{

using zel::String;

using StringInUtf8Locale = test::Utf8LocaleTest;
using StringInCLocale = test::CLocaleTest;

static_assert(std::is_convertible_v<decltype(String() + String()), String>);
static_assert(std::is_convertible_v<decltype(String() + "literal"), String>);
static_assert(std::is_convertible_v<decltype("literal" + String()), String>);

String const umlaut = L"\u00fc";

TEST(String, readsEveryByteAsIso88591)
{
    for (int code = 1; code <= 255; ++code)
    {
        char const bytes[] = {static_cast<char>(code), '\0'};
        String const text(bytes);
        ASSERT_EQ(text.length(), 1u) << code;
        EXPECT_EQ(static_cast<int>(text[0].GetValue()), code);
    }
}

TEST(String, isEmptyFromNothingAndFromNull)
{
    EXPECT_TRUE(String().empty());
    EXPECT_TRUE(String(static_cast<char const*>(nullptr)).empty());
    EXPECT_TRUE(String(static_cast<wchar_t const*>(nullptr)).empty());
}

TEST(String, isMadeFromWideTextAndWxString)
{
    EXPECT_EQ(String(L"\u20ac").length(), 1u);
    EXPECT_EQ(String(wxString(L"\u20ac")), L"\u20ac");
    EXPECT_EQ(String(wxString(L"\u20ac").c_str()), L"\u20ac");
}

TEST(String, readsAllOfAStdString)
{
    std::string const bytes("a\0\xfc", 3);
    String const text = bytes;
    ASSERT_EQ(text.length(), 3u);
    EXPECT_EQ(text[1].GetValue(), 0u);
    EXPECT_EQ(text[2].GetValue(), 0xfcu);
}

TEST(String, plusReadsNarrowTextAsIso88591)
{
    String const wide = L"a\u00fc";
    String const a = "a";
    EXPECT_EQ(a + "\xfc", wide);
    EXPECT_EQ(a + std::string("\xfc"), wide);
    EXPECT_EQ(a + '\xfc', wide);
    EXPECT_EQ("a" + umlaut, wide);
    EXPECT_EQ(std::string("a") + umlaut, wide);
    EXPECT_EQ('a' + umlaut, wide);
    EXPECT_EQ("\xfc" + a, String(L"\u00fc"
                                 L"a"));
}

TEST(String, plusTakesWideTextAndConvertsBack)
{
    String const sum = String("a") + L"b" + wxString("c") + String("d") + "e";
    EXPECT_EQ(sum, "abcde");
    String const fromTheLeft = L"a" + String("b");
    EXPECT_EQ(fromTheLeft, "ab");
    String const behindWxString = wxString("a") + String("b");
    EXPECT_EQ(behindWxString, "ab");
}

TEST(String, plusAssignReadsNarrowTextAsIso88591)
{
    String text;
    text += "\xfc";
    text += std::string("\xfc");
    text += '\xfc';
    text += L"\u00fc";
    text += wxString(L"\u00fc");
    text += umlaut;
    EXPECT_EQ(text, L"\u00fc\u00fc\u00fc\u00fc\u00fc\u00fc");
}

TEST(String, equalityReadsNarrowTextAsIso88591)
{
    EXPECT_TRUE(umlaut == "\xfc");
    EXPECT_TRUE("\xfc" == umlaut);
    EXPECT_TRUE(umlaut == std::string("\xfc"));
    EXPECT_TRUE(std::string("\xfc") == umlaut);
    EXPECT_TRUE(umlaut == wxString(L"\u00fc"));
    EXPECT_TRUE(wxString(L"\u00fc") == umlaut);
    EXPECT_FALSE(umlaut != "\xfc");
    EXPECT_FALSE("\xfc" != umlaut);
    EXPECT_TRUE(umlaut != "u");
    EXPECT_TRUE("" != umlaut);
}

TEST(String, ordersByTheWideText)
{
    EXPECT_TRUE(String("a") < String("b"));
    EXPECT_TRUE(String("b") < umlaut);
    EXPECT_LT(String("a").compare(String("b")), 0);
    EXPECT_EQ(umlaut.compare(String("\xfc")), 0);
}

TEST(String, isBornWithOneReferenceAlsoAsACopy)
{
    zel::P<String> const text = zel::newObj<String>("/");
    zel::P<String> const second = text;
    EXPECT_EQ(text->getRefCount(), 2);
    EXPECT_EQ(zel::newObj<String>(*text)->getRefCount(), 1);
}

TEST(String, assignmentTakesTheTextOnly)
{
    zel::P<String> const text = zel::newObj<String>("old");
    zel::P<String> const second = text;

    *text = "new \xfc";

    EXPECT_EQ(*text, L"new \u00fc");
    EXPECT_EQ(text->getRefCount(), 2);
}

TEST(String, asciiGivesTheSameBytes)
{
    EXPECT_EQ(String("plain text\n").toCPSafe(), "plain text\n");
    EXPECT_EQ(String().toCPSafe(), "");
}

TEST(String, encodingsKeepAnEmbeddedNul)
{
    std::string const bytes("a\0b", 3);
    EXPECT_EQ(String(bytes).toCPSafe(), bytes);
}

TEST(String, encodingSafelyReplacesAndCounts)
{
    int problems = -1;
    EXPECT_EQ(String(L"1 \u20ac = \u00fc\u20ac").toEncodingSafe(wxConvISO8859_1, &problems),
              "1 ? = \xfc?");
    EXPECT_EQ(problems, 2);
}

TEST(String, encodingSafelyCountsNothingWhenAllIsWell)
{
    int problems = -1;
    EXPECT_EQ(umlaut.toEncodingSafe(wxConvUTF8, &problems), "\xc3\xbc");
    EXPECT_EQ(problems, 0);
    EXPECT_EQ(umlaut.toEncodingSafe(wxConvUTF8, nullptr), "\xc3\xbc");
}

TEST(String, replacesWhatIsNoCharacterInEveryEncoding)
{
    int problems = -1;
    std::wstring const noCharacters = {wchar_t(0xd800), wchar_t(0xdfff), wchar_t(0x110000),
                                       wchar_t(0x80000000), wchar_t(0xffffffff)};
    String const text = wxString(L"\ud7ff" + noCharacters + L"\ue000\U0010ffff");
    EXPECT_EQ(text.toEncodingSafe(wxConvUTF8, &problems),
              "\xed\x9f\xbf?????\xee\x80\x80\xf4\x8f\xbf\xbf");
    EXPECT_EQ(problems, 5);
    EXPECT_EQ(text.toEncodingSafe(wxConvISO8859_1, &problems), "????????");
    EXPECT_EQ(problems, 8);
    EXPECT_EQ(String(wxString(noCharacters)).toCPSafe(), "?????");
    text.toEncodingSafe(wxMBConvUTF7(), &problems);
    EXPECT_GE(problems, 5);
}

// The C library skips the invisible tag characters without a byte.
TEST(String, keepsTheRestOfATextThatEndsWithASkippedCharacter)
{
    int problems = -1;
    String const text(L"\u00e4\u20ac\u0416\U000e0041");
    EXPECT_EQ(text.toEncodingSafe(wxCSConv("ISO-8859-15"), &problems), "\xe4\xa4?");
    EXPECT_EQ(problems, 1);
}

TEST_F(StringInUtf8Locale, becomesUtf8)
{
    EXPECT_EQ(String(L"\u00fc \u20ac \U0001f600").toCPSafe(),
              "\xc3\xbc \xe2\x82\xac \xf0\x9f\x98\x80");
}

TEST_F(StringInUtf8Locale, replacesWhatIsNoCharacter)
{
    std::wstring const beyondUnicode = {L'a', static_cast<wchar_t>(0x110000), L'b'};
    EXPECT_EQ(String(beyondUnicode.c_str()).toCPSafe(), "a?b");
}

TEST_F(StringInUtf8Locale, becomesBytesOnSeveralThreads)
{
    String const text = L"\u00fc \u20ac";
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i)
    {
        threads.emplace_back([&text] { EXPECT_EQ(text.toCPSafe(), "\xc3\xbc \xe2\x82\xac"); });
    }
    for (std::thread& thread : threads)
    {
        thread.join();
    }
}

TEST_F(StringInCLocale, replacesWhatTheLocaleLacks)
{
    EXPECT_EQ(String(L"1 \u20ac").toCPSafe(), "1 ?");
}

TEST_F(StringInCLocale, asciiGivesTheSameBytes)
{
    EXPECT_EQ(String("plain text").toCPSafe(), "plain text");
}

} // namespace
