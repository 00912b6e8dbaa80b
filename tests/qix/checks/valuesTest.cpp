#include "checks/bodyTest.h"

#include <zel/CInvalidArgError.h>
#include <zel/P.h>
#include <zel/String.h>

#include <gtest/gtest.h>

#include <array>
#include <chrono>
#include <csignal>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <functional>
#include <limits>
#include <list>
#include <map>
#include <memory>
#include <new>
#include <optional>
#include <set>
#include <sstream>
#include <tuple>
#include <utility>
#include <variant>
#include <vector>

namespace
{

using test::valuesOf;

template <typename T>
std::string shown(T const& value)
{
    qix::CValueWriter out;
    qix::detail::describe(out, value);
    return out.written();
}

enum Plain
{
    plainThree = 3
};

enum class Distant
{
    below = -1,
    far = 5000
};

template <typename First, typename Second>
struct TOuter
{
    enum class Inner
    {
        first,
        second
    };
};

enum class Streamed
{
    one
};

std::ostream& operator<<(std::ostream& stream, Streamed)
{
    return stream << "<one>";
}

enum StreamedPlain
{
    streamedPlain
};

std::ostream& operator<<(std::ostream& stream, StreamedPlain)
{
    return stream << "<plain>";
}

enum class Scoped : std::uint8_t
{
    seven = 7
};

struct Opaque
{
    unsigned char bytes[3];
};

struct Large
{
    unsigned char bytes[40] = {};
};

struct JustShown
{
    unsigned char bytes[32] = {};
};

struct Streamable
{
    int value;
};

std::ostream& operator<<(std::ostream& stream, Streamable const& value)
{
    return stream << "<" << value.value << ">";
}

struct Throwing
{
};

std::ostream& operator<<(std::ostream&, Throwing const&)
{
    throw std::runtime_error("no text");
}

bool operator==(Throwing const&, Throwing const&)
{
    return false;
}

TEST(Values, numbers)
{
    EXPECT_EQ(shown(-7), "-7");
    EXPECT_EQ(shown(std::numeric_limits<long long>::min()), "-9223372036854775808");
    EXPECT_EQ(shown(std::numeric_limits<unsigned long long>::max()), "18446744073709551615");
    EXPECT_EQ(shown(std::uint8_t(65)), "65");
    EXPECT_EQ(shown(std::int8_t(-1)), "-1");
    EXPECT_EQ(shown(true), "true");
    EXPECT_EQ(shown(0.1), "0.1");
    EXPECT_EQ(shown(0.1f), "0.1");
    EXPECT_EQ(shown(0.5L), "0.5");
    EXPECT_EQ(shown(1e300), "1e+300");
    EXPECT_EQ(shown(std::numeric_limits<double>::infinity()), "inf");
    EXPECT_EQ(shown(std::numeric_limits<double>::quiet_NaN()), "nan");
}

// In the shortest digits of each they would look the same.
TEST(Values, numbersOfDifferentPrecision)
{
    EXPECT_EQ(valuesOf([] { QIX_CHECK(0.1f == 0.1); }), "with 0.10000000149011612 == 0.1");
    EXPECT_EQ(valuesOf([] { QIX_CHECK(0.1 == 0.1f); }), "with 0.1 == 0.10000000149011612");
    EXPECT_EQ(valuesOf([] { QIX_CHECK(0.1f == 0.5f); }), "with 0.1 == 0.5");
}

TEST(Values, textInUnicode)
{
    EXPECT_EQ(shown(std::u16string(u"a\u20ac\U0001f600")), "\"a\u20ac\U0001f600\"");
    EXPECT_EQ(shown(u"\xd800\"\n"), "\"\\x{d800}\\\"\\n\"");
    EXPECT_EQ(shown(std::u32string(U"\u20ac")), "\"\u20ac\"");
    EXPECT_EQ(shown(U"\x110000"), "\"\\x{110000}\"");
}

TEST(Values, characters)
{
    EXPECT_EQ(shown('a'), "'a'");
    EXPECT_EQ(shown('\''), "'\\''");
    EXPECT_EQ(shown('\n'), "'\\n'");
    EXPECT_EQ(shown('\0'), "'\\x00'");
    EXPECT_EQ(shown('\xe4'), "'\\xe4'");
    EXPECT_EQ(shown('\x80'), "'\\x80'");
    EXPECT_EQ(shown(L'a'), "'a'");
    EXPECT_EQ(shown(U'\u20ac'), "U+20AC");
}

TEST(Values, text)
{
    EXPECT_EQ(shown(std::string("a \"b\"\t\\")), "\"a \\\"b\\\"\\t\\\\\"");
    EXPECT_EQ(shown(std::string("\x7f")), "\"\\x7f\"");
    EXPECT_EQ(shown(L'\x7e'), "'~'");
    EXPECT_EQ(shown(L'\x80'), "U+0080");
    EXPECT_EQ(shown(std::string("one\r\n")), "\"one\\r\\n\"");
    EXPECT_EQ(shown(std::string("nul\0inside", 10)), "\"nul\\x00inside\"");
    EXPECT_EQ(shown(std::string_view("view")), "\"view\"");
    EXPECT_EQ(shown("literal"), "\"literal\"");
    EXPECT_EQ(shown(static_cast<char const*>(nullptr)), "nullptr");
    EXPECT_EQ(shown(zel::String("text")), "\"text\"");
    EXPECT_EQ(shown(wxString("wx")), "\"wx\"");
    EXPECT_EQ(shown(std::wstring(L"w\u20ac")), "\"w\u20ac\"");
    EXPECT_EQ(shown(L"wide"), "\"wide\"");
    EXPECT_EQ(shown(std::string("UTF-8 \u20ac")), "\"UTF-8 \u20ac\"");
}

TEST(Values, arraysOfCharactersNeedNoEnd)
{
    char const full[3] = {'a', 'b', 'c'};
    char const ended[5] = {'a', '\0', 'c', 'd', 'e'};
    EXPECT_EQ(shown(full), "\"abc\"");
    EXPECT_EQ(shown(ended), "\"a\"");
}

TEST(Values, pointers)
{
    int value = 0;
    std::ostringstream address;
    address << &value;
    EXPECT_EQ(shown(nullptr), "nullptr");
    EXPECT_EQ(shown(&value), address.str());
    EXPECT_EQ(shown(static_cast<void*>(nullptr)), "nullptr");
    EXPECT_EQ(shown(std::unique_ptr<int>()), "nullptr");
    EXPECT_EQ(shown(std::shared_ptr<int>()), "nullptr");
    EXPECT_EQ(shown(zel::P<qix::ITestItem>()), "nullptr");
    EXPECT_NE(shown(&shown<int>), "nullptr");
}

TEST(Values, volatileOnes)
{
    std::sig_atomic_t volatile signalled = 7;
    EXPECT_EQ(valuesOf([&] { QIX_CHECK(signalled == 8); }), "with 7 == 8");
    EXPECT_EQ(valuesOf([&] { QIX_CHECK(8U == signalled); }), "with 8 == 7");

    bool volatile isReady = false;
    EXPECT_EQ(valuesOf([&] { QIX_CHECK(isReady); }), "(none)");
    double volatile amount = 0.5;
    EXPECT_EQ(valuesOf([&] { QIX_CHECK(amount == qix::approx(1)); }),
              "with 0.5 == approx(1, relative 1e-06)\n"
              "    the difference is 0.5, allowed is 1e-06");

    // Text that others may be writing is not read.
    char volatile* const text = nullptr;
    wchar_t volatile* const wideText = nullptr;
    EXPECT_EQ(valuesOf([&] { QIX_CHECK(text != nullptr); }), "with nullptr != nullptr");
    EXPECT_EQ(valuesOf([&] { QIX_CHECK(wideText != nullptr); }), "with nullptr != nullptr");
}

TEST(Values, containers)
{
    EXPECT_EQ(shown(std::vector<int>{1, 2}), "{1, 2}");
    EXPECT_EQ(shown(std::vector<bool>{true, false}), "{true, false}");
    EXPECT_EQ(shown(std::list<std::string>{"a"}), "{\"a\"}");
    EXPECT_EQ(shown(std::set<int>()), "{}");
    EXPECT_EQ(shown(std::map<int, std::vector<char>>{{1, {'x'}}}), "{1: {'x'}}");
    EXPECT_EQ(shown(std::array<int, 2>{1, 2}), "{1, 2}");
    int const plain[] = {1, 2, 3};
    EXPECT_EQ(shown(plain), "{1, 2, 3}");
}

TEST(Values, longContainersAreCut)
{
    std::string const text = shown(std::vector<int>(60, 1));
    EXPECT_EQ(text.substr(text.size() - 20), ", 1, 1, and 10 more}");
}

TEST(Values, tuples)
{
    EXPECT_EQ(shown(std::make_pair(1, std::string("a"))), "(1, \"a\")");
    EXPECT_EQ(shown(std::make_tuple(1, 'a', 0.5)), "(1, 'a', 0.5)");
    EXPECT_EQ(shown(std::tuple<>()), "()");
}

TEST(Values, othersOfTheStandardLibrary)
{
    EXPECT_EQ(shown(std::optional<int>(3)), "3");
    EXPECT_EQ(shown(std::optional<int>()), "nullopt");
    EXPECT_EQ(shown(std::nullopt), "nullopt");
    EXPECT_EQ(shown(std::variant<int, std::string>("x")), "variant(index 1: \"x\")");
    EXPECT_EQ(shown(std::variant<std::monostate, int>()), "variant(index 0: {})");
    EXPECT_EQ(shown(std::function<void()>()), "nullptr");
    EXPECT_EQ(shown(std::chrono::seconds(3)), "3 s");
    EXPECT_EQ(shown(std::chrono::milliseconds(250)), "250/1000 s");
    EXPECT_EQ(shown(std::chrono::minutes(2)), "120 s");
    EXPECT_EQ(shown(std::filesystem::path("a/b")), "\"a/b\"");
}

TEST(Values, enumerations)
{
    EXPECT_EQ(shown(plainThree), "plainThree (3)");
    EXPECT_EQ(shown(static_cast<Plain>(1)), "1");
    EXPECT_EQ(shown(Scoped::seven), "seven (7)");
    EXPECT_EQ(shown(static_cast<Scoped>(200)), "200");
    EXPECT_EQ(shown(Distant::below), "below (-1)");
    EXPECT_EQ(shown(Distant::far), "5000");
    EXPECT_EQ(shown(TOuter<int, std::pair<int, char>>::Inner::second), "second (1)");
    EXPECT_EQ(shown(Streamed::one), "<one>");
    EXPECT_EQ(shown(streamedPlain), "<plain>");
}

TEST(Values, streamableTypes)
{
    EXPECT_EQ(shown(Streamable{7}), "<7>");
    EXPECT_EQ(shown(std::vector<Streamable>{{1}, {2}}), "{<1>, <2>}");
}

TEST(Values, otherTypesAsBytes)
{
    EXPECT_EQ(shown(Opaque{{1, 0xab, 0}}), "<3 bytes: 01 ab 00>");
    EXPECT_EQ(shown(JustShown()).substr(shown(JustShown()).size() - 4), " 00>");
    EXPECT_EQ(shown(Large()).substr(0, 14), "<40 bytes: 00 ");
    EXPECT_EQ(shown(Large()).substr(shown(Large()).size() - 7), "00 ...>");
}

TEST(Values, valuesThatThrowAreStillFailures)
{
    EXPECT_EQ(valuesOf([] { QIX_CHECK(Throwing() == Throwing()); }),
              "with <writing it threw std::runtime_error: no text> == "
              "<writing it threw std::runtime_error: no text>");
}

struct ThrowingInt
{
};

std::ostream& operator<<(std::ostream&, ThrowingInt const&)
{
    throw 42;
}

bool operator==(ThrowingInt const&, ThrowingInt const&)
{
    return false;
}

TEST(Values, whateverTheyThrowTheCheckHasFailed)
{
    EXPECT_EQ(valuesOf([] { QIX_CHECK(ThrowingInt() == ThrowingInt()); }),
              "with <writing it threw int> == <writing it threw int>");
}

// With the extensions of GNU it is an integer for the standard library, and without them it is not.
TEST(Values, integersOf128Bits)
{
    __extension__ using Int128 = __int128;
    __extension__ using UnsignedInt128 = unsigned __int128;
    Int128 const large = static_cast<Int128>(1) << 64;
    EXPECT_EQ(shown(large + 1), "18446744073709551617");
    EXPECT_EQ(shown(-large), "-18446744073709551616");
    EXPECT_EQ(shown(static_cast<Int128>(0)), "0");
    EXPECT_EQ(shown(~static_cast<UnsignedInt128>(0)), "340282366920938463463374607431768211455");
    EXPECT_EQ(shown(static_cast<Int128>(static_cast<UnsignedInt128>(1) << 127)),
              "-170141183460469231731687303715884105728");
    EXPECT_EQ(valuesOf([&] { QIX_CHECK(large + 1 == 1); }), "with 18446744073709551617 == 1");
}

TEST(Values, longestDurations)
{
    EXPECT_EQ(shown(std::chrono::hours::max()), "33204139332677192905200 s");
    EXPECT_EQ(shown(std::chrono::hours::min()), "-33204139332677192908800 s");
    EXPECT_EQ(shown(std::chrono::duration<double, std::ratio<60>>(0.5)), "30 s");
}

/// As std::expected of C++23 is.
template <typename T, typename E>
class TExpected
{
public:
    bool has_value() const { return m_hasValue; }
    T const& operator*() const { return m_value; }
    E const& error() const { return m_error; }

    bool m_hasValue = false;
    T m_value = T();
    E m_error = E();
};

template <typename E>
class TExpected<void, E>
{
public:
    bool has_value() const { return m_hasValue; }
    void operator*() const {}
    E const& error() const { return m_error; }

    bool m_hasValue = false;
    E m_error = E();
};

TEST(Values, expectedOnesOrTheirErrors)
{
    EXPECT_EQ(shown(TExpected<int, std::string>{true, 7, ""}), "7");
    EXPECT_EQ(shown(TExpected<int, std::string>{false, 0, "late"}), "unexpected(\"late\")");
    EXPECT_EQ(shown(TExpected<void, int>{true, 0}), "expected()");
    EXPECT_EQ(shown(TExpected<void, int>{false, 3}), "unexpected(3)");
}

struct Padded
{
    char letter;
    int number;
};

// What lies between the members is of no value, and has none.
TEST(Values, paddingIsNotShown)
{
    alignas(Padded) unsigned char memory[sizeof(Padded)];
    std::memset(memory, 0xa5, sizeof(memory));
    auto* const padded = new (memory) Padded;
    padded->letter = 'a';
    padded->number = 1;
#if __has_builtin(__builtin_clear_padding)
    EXPECT_EQ(shown(*padded), "<8 bytes: 61 00 00 00 01 00 00 00>");
#else
    EXPECT_EQ(shown(*padded), "<8 bytes>");
#endif
}

/// The numbers from 0 on, without end.
struct Endless
{
    struct Iterator
    {
        int operator*() const { return value; }
        Iterator& operator++()
        {
            ++value;
            return *this;
        }
        bool operator!=(Iterator const&) const { return true; }
        int value;
    };
    Iterator begin() const { return {0}; }
    Iterator end() const { return {0}; }
    bool empty() const { return true; }
};

TEST(Values, rangesWithoutEndAreCut)
{
    std::string const text = shown(Endless());
    EXPECT_EQ(text.substr(0, 9), "{0, 1, 2,");
    EXPECT_EQ(text.substr(text.size() - 19), ", 48, 49, and more}");
}

TEST(Values, linesOfValuesAreIndented)
{
    std::string const lines = "a\nb";
    EXPECT_EQ(valuesOf([&] { QIX_CHECK(Streamable{1}.value == 2); }), "with 1 == 2");
    EXPECT_EQ(valuesOf([&] { QIX_CHECK(lines == "a"); }), "with \"a\\nb\" == \"a\"");
}

TEST(Values, approximationsTellTheirTolerances)
{
    EXPECT_EQ(shown(qix::approx(1).relative(0)), "approx(1, relative 0)");
    EXPECT_EQ(shown(qix::approx(1).relative(0.5).absolute(2)),
              "approx(1, relative 0.5, absolute 2)");
}

TEST(Values, approximationsRefuseToleranceBelowZero)
{
    EXPECT_THROW(qix::approx(1).relative(-1), zel::CInvalidArgError);
    try
    {
        qix::approx(1).absolute(-1);
        FAIL() << "nothing was thrown";
    }
    catch (zel::CInvalidArgError const& e)
    {
        EXPECT_NE(std::string(e.what()).find("'CApprox::absolute'"), std::string::npos);
    }
}

} // namespace
