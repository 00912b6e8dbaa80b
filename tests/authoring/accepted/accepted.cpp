// What other frameworks compile in a check, and what their users take for granted.

#include <qix/combine.h>
#include <qix/hidden.h>
#include <qix/test.h>

#include <csignal>
#include <cstddef>
#include <cstdlib>
#include <functional>
#include <map>
#include <memory>
#include <ostream>
#include <sstream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>
#ifdef __cpp_impl_three_way_comparison
#include <compare>
#endif

namespace accepted
{

/// Converts to whatever is asked for, as the values of libraries for JSON do, and can be written to
/// a stream.
class CValue
{
public:
    explicit CValue(int value) : m_value(value) {}

    template <typename T, std::enable_if_t<!std::is_pointer<T>::value, int> = 0>
    operator T() const
    {
        static_assert(std::is_arithmetic<T>::value, "this value is a number");
        return static_cast<T>(m_value);
    }

    friend bool operator==(CValue const& left, CValue const& right)
    {
        return left.m_value == right.m_value;
    }
    friend bool operator!=(CValue const& left, CValue const& right) { return !(left == right); }
    friend std::ostream& operator<<(std::ostream& stream, CValue const& value)
    {
        return stream << value.m_value;
    }

private:
    int m_value;
};

namespace greedy
{

/// Compares itself with everything.
struct Greedy
{
    int value;
};

inline bool operator==(Greedy const& left, Greedy const& right)
{
    return left.value == right.value;
}

template <typename S>
bool operator==(S const& left, Greedy const& right)
{
    return left == right.value;
}

template <typename S>
bool operator!=(S&& left, Greedy const& right)
{
    return !(left == right);
}

} // namespace greedy

/// Writes itself to whatever stream there is.
struct Streaming
{
    int value;
    bool operator==(Streaming const& other) const { return value == other.value; }
};

template <typename Stream>
Stream& operator<<(Stream&& stream, Streaming const& value)
{
    stream << value.value;
    return stream;
}

/// Writes itself, and in its namespace all else, to whatever stream is a variable.
namespace flooding
{

struct Flooding
{
    int value;
    bool operator==(Flooding const& other) const { return value == other.value; }
};

template <typename Stream, typename T>
Stream& operator<<(Stream& stream, T const& value)
{
    stream << value.value;
    return stream;
}

} // namespace flooding

/// The same of those streams only that take a number.
struct Trickling
{
    int value;
    bool operator==(Trickling const& other) const { return value == other.value; }
};

template <typename Stream>
auto operator<<(Stream& stream, Trickling const& value) -> decltype(stream << value.value)
{
    return stream << value.value;
}

class CMoveOnly
{
public:
    explicit CMoveOnly(int value) : m_value(std::make_unique<int>(value)) {}

    bool operator==(CMoveOnly const& other) const { return *m_value == *other.m_value; }

private:
    std::unique_ptr<int> m_value;
};

/// Compares by an operation that forgot to be const.
struct Forgetful
{
    int value;
    bool operator==(Forgetful& other) { return value == other.value; }
    bool operator<(int other) { return value < other; }
};

/// The outcome of a comparison, with an explanation.
class CVerdict
{
public:
    explicit CVerdict(bool holds) : m_holds(holds) {}
    explicit operator bool() const { return m_holds; }
    bool operator!() const { return !m_holds; }

private:
    bool m_holds;
};

struct Judged
{
    int value;
};

inline CVerdict operator==(Judged const& left, Judged const& right)
{
    return CVerdict(left.value == right.value);
}

struct Flags
{
    unsigned low : 3;
    unsigned high : 5;
};

[[nodiscard]] inline int answer()
{
    return 42;
}

inline void nothing()
{
}

QIX_TEST(accepted, conversionsAreAskedForLast)
{
    CValue const seven(7);
    QIX_CHECK(seven == CValue(7));
    QIX_CHECK(seven != CValue(8));
}

QIX_TEST(accepted, greedyComparisons)
{
    using greedy::Greedy;
    Greedy const greedy{7};
    Greedy other{7};
    QIX_CHECK(greedy == other);
    QIX_CHECK(other == greedy);
    QIX_CHECK(Greedy{7} == Greedy{7});
    QIX_CHECK(7 == greedy);
    QIX_CHECK(other != Greedy{8});
}

QIX_TEST(accepted, greedyStreams)
{
    Streaming streaming{7};
    QIX_CHECK(streaming == Streaming{7});
    QIX_CHECK(Streaming{7} == streaming);
}

template <typename T>
void writeBehindChecks(T const& value)
{
    QIX_CHECK(value == T{7}) << "why " << value << T{8};
    QIX_CHECK_NOTHROW(answer()) << value;
    QIX_NOTE_FAILURE("text ") << value << " and more";
    QIX_INFO("looking at " << value << T{8});
    QIX_INFO(value << " and more");
    QIX_CAPTURE(value, T{8});
    QIX_ABORT("why ") << value;
}

QIX_TEST(accepted, greedyStreamsBehindChecks)
{
    writeBehindChecks(flooding::Flooding{7});
    writeBehindChecks(Trickling{7});
}

QIX_TEST(accepted, typesThatCannotBeCopied)
{
    CMoveOnly value(7);
    QIX_CHECK(value == CMoveOnly(7));
    QIX_CHECK(CMoveOnly(7) == value);
    QIX_CHECK(std::make_unique<int>(7) != nullptr);
}

QIX_TEST(accepted, comparisonsThatAreNotConst)
{
    Forgetful one{7};
    Forgetful other{7};
    QIX_CHECK(one == other);
    QIX_CHECK(Forgetful{7} == other);
    QIX_CHECK(one < 8);
}

QIX_TEST(accepted, comparisonsWithClassesOfTheirOwn)
{
    QIX_CHECK(Judged{7} == Judged{7});
    QIX_CHECK(CVerdict(true));
    QIX_CHECK(!CVerdict(false));
}

#ifdef __cpp_impl_three_way_comparison
// clang-format off
struct Ordered
{
    int value;
    auto operator<=>(Ordered const& other) const { return value <=> other.value; }
    bool operator==(Ordered const& other) const { return value == other.value; }
};

QIX_TEST(accepted, spaceships)
{
    Ordered const small{1};
    Ordered const large{2};
    QIX_CHECK(small < large);
    QIX_CHECK(small == Ordered{1});
    QIX_CHECK(small <=> large == std::strong_ordering::less);
    QIX_CHECK(small <=> large < 0);
    QIX_CHECK(large <=> small > 0);
    QIX_CHECK(std::is_lt(small <=> large));
}
// clang-format on
#endif

QIX_TEST(accepted, streams)
{
    std::istringstream in("7 8");
    std::ostringstream out;
    int number = 0;
    QIX_CHECK(in >> number);
    QIX_CHECK(out << number);
    QIX_CHECK(out << "text" << number);
    QIX_CHECK(in);
    QIX_CHECK(out.str() == "7text7");
}

QIX_TEST(accepted, statementsThatThrow)
{
    std::map<int, int> numbers;
    QIX_CHECK_THROWS_AS(int const x = numbers.at(7), std::out_of_range);
    QIX_CHECK_THROWS(int const x = numbers.at(7));
    QIX_CHECK_THROWS(std::vector<int> const copies(1, numbers.at(7)));
    QIX_CHECK_THROWS(numbers.at(7) == 7);
    QIX_CHECK_THROWS(throw 7);
    QIX_REQUIRE_THROWS(numbers.at(7));
    QIX_REQUIRE_THROWS_AS(numbers.at(7), std::out_of_range);
    QIX_REQUIRE_THROWS_WITH(throw "text", "text");
    QIX_REQUIRE_THROWS_WITH_AS(throw std::string("text"), "text", std::string);
    QIX_CHECK_NOTHROW(1 + 1);
    QIX_CHECK_NOTHROW(int const x = 7);
    QIX_CHECK_NOTHROW(answer());
    QIX_CHECK_NOTHROW(nothing());
    QIX_REQUIRE_NOTHROW(std::vector<int>(7));
}

QIX_TEST(accepted, messages)
{
    std::map<int, int> const numbers = {{1, 2}};
    Flags const flags = {};
    int const* const pointer = nullptr;
    if (pointer == nullptr)
        QIX_CHECK(answer() == 42) << "why " << answer() << flags.low << 'c' << 0.5 << pointer;
    else
        QIX_REQUIRE(answer() == 42) << std::string("text") << std::endl << std::hex << 7;
    for (auto const& [key, value] : numbers)
        QIX_CHECK_THROWS_AS(numbers.at(value), std::out_of_range) << key << ": " << CValue(value);
    if (pointer != nullptr)
        QIX_CHECK_NOTHROW(answer()) << L"text" << numbers << &nothing << nullptr;
    else
        QIX_CHECK_THROWS(throw 7) << Judged{7} << true << 7u << 7L << 0.5f;
    if (pointer != nullptr)
        QIX_FAIL("text ") << 7;
    else if (flags.high != 0)
        QIX_NOTE_FAILURE("text ") << CMoveOnly(7);
}

QIX_TEST(accepted, infos)
{
    std::map<int, int> const numbers = {{1, 2}};
    Flags const flags = {};
    char const* const text = "text";
    for (auto const& [key, value] : numbers)
    {
        QIX_INFO("text " << key << value << flags.low << text << std::string("text") << std::endl);
        QIX_CAPTURE(key, value, flags.low, text, std::string(text), answer(), nothing);
        QIX_INFO(CValue(value) << numbers << Judged{value} << 'c' << 0.5 << nullptr);
        QIX_CHECK(key == 1);
    }
}

inline int endsInAFailure(bool returns)
{
    if (returns)
    {
        return 7;
    }
    QIX_FAIL("text") << 7;
}

QIX_TEST(accepted, functions)
{
    void (*const pointer)() = &nothing;
    std::function<void()> const empty;
    QIX_CHECK(nothing != nullptr);
    QIX_CHECK(pointer == nothing);
    QIX_CHECK(nothing == pointer);
    QIX_CHECK(pointer != nullptr);
    QIX_CHECK(empty == nullptr);
    QIX_CHECK(&Judged::value != nullptr);
}

QIX_TEST(accepted, nullPointers)
{
    int const* const pointer = nullptr;
    QIX_CHECK(pointer == nullptr);
    QIX_CHECK(nullptr == pointer);
    QIX_CHECK(!pointer);
}

QIX_TEST(accepted, bitFields)
{
    Flags flags = {};
    flags.low = 5;
    QIX_CHECK(flags.low == 5);
    QIX_CHECK(5 == flags.low);
    QIX_CHECK((flags.low & 1) == 1);
    QIX_CHECK(flags.low != flags.high);
}

QIX_TEST(accepted, comparisonsAsConditions)
{
    std::vector<int> const numbers;
    QIX_CHECK(numbers.size() == 0 ? numbers.empty() : !numbers.empty());
}

QIX_TEST(accepted, whateverCanBeDescribedCanBeLogged)
{
    log(42);
    log(0.5);
    log(std::vector<int>{1, 2});
    log(CValue(7));
    log("text");
    log(std::string("text"));
    log(std::string_view("text"));
}

struct CShared
{
    int m_uses = 0;
};

class CFixture : public qix::CTestItem
{
protected:
    void setUp() override { m_value = 7; }

    int m_value = 0;
};

QIX_TEST_F(CFixture, accepted, fixture, Long, Interactive)
{
    subTest("row", [this] { QIX_CHECK(m_value == qix::approx(7).absolute(0.5)); });
    qix::subTest(std::string("row"), [] { qix::log("text"); });
    QIX_CHECK(qix::hidden(m_value) == 7);
    qix::noteFailure(__FILE__, __LINE__, "why");
}

QIX_GROUP_FIXTURE(accepted, CShared);

QIX_TEST(accepted, "any text", Disabled("why"), Tags("one", "two"), ShouldFail)
{
    ++qix::groupFixture<CShared>().m_uses;
}

QIX_TEST(accepted, sections, Tags())
{
    for (int i = 0; i < 2; ++i)
    {
        QIX_SECTION("outer " + std::to_string(i))
        {
            QIX_SECTION("inner")
            {
                QIX_CHECK(i < 2);
            }
        }
    }
}

QIX_TEST_TYPED(accepted, typed, (int, std::vector<std::pair<int, long>>))
{
    QIX_CHECK(sizeof(TypeParam) > 1);
}

template <typename T>
class CTypedFixture : public qix::CTestItem
{
protected:
    T m_value = {};
};

QIX_TEST_TYPED_F(CTypedFixture, accepted, typedFixture, (int, double), Long)
{
    QIX_CHECK(this->m_value < 1);
}

std::vector<bool> makeFlags()
{
    return {true, false};
}

QIX_TEST_EACH(accepted, each, makeFlags())
{
    QIX_CHECK(param);
}

QIX_TEST_EACH(accepted, eachUnused, qix::values(1L, 2))
{
}

QIX_TEST_EACH_F(CTypedFixture<int>, accepted, eachFixture,
                qix::combine(qix::values(1), qix::values("a", "b")), Long)
{
    QIX_CHECK(std::get<0>(param) == m_value + 1);
}

QIX_TEST(accepted, death)
{
    int status = 3;
    QIX_CHECK_EXITS(std::_Exit(status), 3);
    QIX_CHECK_DIES(std::abort(), SIGABRT, "") << "more";
    QIX_REQUIRE_EXITS(status = 4, 3);
    QIX_REQUIRE_DIES(std::abort(), SIGABRT) << status;
}

QIX_TEST(accepted, reasons)
{
    int const one = 1;
    if (one == 1)
        QIX_SKIP("why ") << one;
    one == 2 ? QIX_SKIP() : QIX_ABORT(std::string("why"));
}

} // namespace accepted
