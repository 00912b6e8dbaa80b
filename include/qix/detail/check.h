#pragma once

#include <qix/detail/describe.h>
#include <qix/detail/narrowText.h>
#include <qix/export.h>

#include <cstdint>
#include <string_view>
#include <type_traits>
#include <utility>

namespace zel
{
class String;
}

namespace qix::detail
{

/// Something that can be described later, and which it does not own.
struct ValueRef
{
    using Describe = void(CValueWriter& out, void const* object);

    /// \param o  may be volatile: \p d knows its type
    ValueRef(void const volatile* o, Describe* d) noexcept
        : object(const_cast<void const*>(o)), describe(d)
    {
    }

    void const* object;
    Describe* describe;
};

/// \tparam withAddress  text is compared by its address, which tells why equal text differs
template <typename T, bool withAddress = false>
void describeValue(CValueWriter& out, void const* object)
{
    T const& value = *static_cast<T const*>(object);
    if constexpr (withAddress)
    {
        char const* const text = value;
        out.address(text);
        if (text == nullptr)
        {
            return;
        }
        out.text(" ");
    }
    describe(out, value);
}

/// Keeps the values of the comparison that has failed for the message of its check.
QIX_EXPORT void captureOperands(ValueRef const& left, char const* comparison,
                                ValueRef const& right);

/// Keeps the value that is false for the message of its check.
QIX_EXPORT void captureOperand(ValueRef const& value);

/// Notes that a check has failed, together with the values that were kept. Throws when no test is
/// running.
QIX_EXPORT void noteFailure(char const* file, int line, char const* check);

/// Notes that a check has failed, and leaves the test.
[[noreturn]] QIX_EXPORT void failRequirement(char const* file, int line, char const* check);

/// Keeps what the exception being handled tells for the message of its check.
QIX_EXPORT void captureException();

/// Keeps for the message of its check that nothing was thrown.
QIX_EXPORT void captureNothingThrown();

[[noreturn]] QIX_EXPORT void failWithBytes(char const* file, int line, std::string_view message);
[[noreturn]] QIX_EXPORT void failWithText(char const* file, int line, zel::String const& message);
[[noreturn]] QIX_EXPORT void skip();
[[noreturn]] QIX_EXPORT void skipWithBytes(std::string_view reason);
[[noreturn]] QIX_EXPORT void skipWithText(zel::String const& reason);
[[noreturn]] QIX_EXPORT void abortWithBytes(std::string_view message);
[[noreturn]] QIX_EXPORT void abortWithText(zel::String const& message);

template <typename T>
[[noreturn]] void fail(char const* file, int line, T const& message)
{
    if constexpr (isNarrowText<T>)
    {
        failWithBytes(file, line, viewOf(message));
    }
    else
    {
        failWithText(file, line, message);
    }
}

template <typename T>
[[noreturn]] void skip(T const& reason)
{
    if constexpr (isNarrowText<T>)
    {
        skipWithBytes(viewOf(reason));
    }
    else
    {
        skipWithText(reason);
    }
}

template <typename T>
[[noreturn]] void abort(T const& message)
{
    if constexpr (isNarrowText<T>)
    {
        abortWithBytes(viewOf(message));
    }
    else
    {
        abortWithText(message);
    }
}

template <typename T>
constexpr bool isInteger = std::is_integral_v<T> && !std::is_same_v<T, bool>;

template <typename L, typename R>
constexpr bool haveDifferentSigns =
    isInteger<L>&& isInteger<R>&& std::is_signed_v<L> != std::is_signed_v<R>;

template <typename T>
constexpr bool isTextPointer =
    std::is_pointer_v<T>&& std::is_same_v<std::remove_const_t<std::remove_pointer_t<T>>, char>;

/// Which way a comparison goes; NULL and 0 are no null pointers any more once they are operands.
template <typename L, typename R>
constexpr bool isPointerWithNumber = std::is_pointer_v<L>&& isInteger<R>;

// Numbers are compared as the caller wrote them, whatever warnings are on.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wfloat-equal"
#pragma GCC diagnostic ignored "-Wsign-compare"

/// Integers of different signedness are compared by their values: -1 is less than 1u.
#define QIX_DETAIL_COMPARISON(name, op)                                                            \
    struct name                                                                                    \
    {                                                                                              \
        static constexpr char const* text = #op;                                                   \
                                                                                                   \
        template <typename L, typename R>                                                          \
        static bool holds(L const& left, R const& right)                                           \
        {                                                                                          \
            if constexpr (isPointerWithNumber<L, R>)                                               \
            {                                                                                      \
                return left op reinterpret_cast<L>(static_cast<std::intptr_t>(right));             \
            }                                                                                      \
            else if constexpr (isPointerWithNumber<R, L>)                                          \
            {                                                                                      \
                return reinterpret_cast<R>(static_cast<std::intptr_t>(left)) op right;             \
            }                                                                                      \
            else if constexpr (haveDifferentSigns<L, R>)                                           \
            {                                                                                      \
                if constexpr (std::is_signed_v<L>)                                                 \
                {                                                                                  \
                    return left < 0 ? -1 op 0 : std::make_unsigned_t<L>(left) op right;            \
                }                                                                                  \
                else                                                                               \
                {                                                                                  \
                    return right < 0 ? 0 op - 1 : left op std::make_unsigned_t<R>(right);          \
                }                                                                                  \
            }                                                                                      \
            else                                                                                   \
            {                                                                                      \
                return static_cast<bool>(left op right);                                           \
            }                                                                                      \
        }                                                                                          \
    }

QIX_DETAIL_COMPARISON(Equal, ==);
QIX_DETAIL_COMPARISON(NotEqual, !=);
QIX_DETAIL_COMPARISON(Less, <);
QIX_DETAIL_COMPARISON(LessOrEqual, <=);
QIX_DETAIL_COMPARISON(Greater, >);
QIX_DETAIL_COMPARISON(GreaterOrEqual, >=);

#undef QIX_DETAIL_COMPARISON
#pragma GCC diagnostic pop

template <typename>
constexpr bool alwaysFalse = false;

/// Whether a comparison holds. Nothing can be done with it but ask.
class COutcome
{
public:
    constexpr explicit COutcome(bool holds) noexcept : m_holds(holds) {}
    constexpr explicit operator bool() const noexcept { return m_holds; }

private:
    bool m_holds;
};

// What would be computed with the outcome of a comparison is a mistake, or shows no values.
#define QIX_DETAIL_REFUSE(op)                                                                      \
    template <typename T>                                                                          \
    COutcome operator op(COutcome const& outcome, T const&)                                        \
    {                                                                                              \
        static_assert(alwaysFalse<T>,                                                              \
                      "a check takes one comparison: write two checks, or put the "                \
                      "whole expression in parentheses");                                          \
        return outcome;                                                                            \
    }

QIX_DETAIL_REFUSE(&&)
QIX_DETAIL_REFUSE(||)
QIX_DETAIL_REFUSE(==)
QIX_DETAIL_REFUSE(!=)
QIX_DETAIL_REFUSE(<)
QIX_DETAIL_REFUSE(<=)
QIX_DETAIL_REFUSE(>)
QIX_DETAIL_REFUSE(>=)
QIX_DETAIL_REFUSE(&)
QIX_DETAIL_REFUSE(|)
QIX_DETAIL_REFUSE(^)

#undef QIX_DETAIL_REFUSE

/// Without it the comma operator would drop the check and keep what was meant as its message.
template <typename T>
COutcome operator,(COutcome const& outcome, T const&)
{
    static_assert(alwaysFalse<T>, "a check takes one expression, and no message");
    return outcome;
}

template <typename Comparison, typename L, typename R>
COutcome compare(L const& left, R const& right)
{
    bool const holds = Comparison::holds(left, right);
    if (!holds)
    {
        constexpr bool arePointers =
            isTextPointer<std::decay_t<L const>> && isTextPointer<std::decay_t<R const>>;
        captureOperands({std::addressof(left), &describeValue<L, arePointers>}, Comparison::text,
                        {std::addressof(right), &describeValue<R, arePointers>});
    }
    return COutcome(holds);
}

#define QIX_DETAIL_COMPARE(op, Comparison)                                                         \
    template <typename R>                                                                          \
    COutcome operator op(R const& right) const                                                     \
    {                                                                                              \
        return compare<Comparison>(m_value, right);                                                \
    }

#define QIX_DETAIL_COMPUTE(op)                                                                     \
    template <typename R>                                                                          \
    auto operator op(R const& right) const                                                         \
    {                                                                                              \
        return TOperand<decltype(m_value op right)>(m_value op right);                             \
    }

/// The left side of a comparison, or all of an expression that is none.
/// \tparam T  a reference to the user's value, or the type of what was computed with it
template <typename T>
class TOperand
{
public:
    explicit TOperand(T&& value) : m_value(static_cast<T&&>(value)) {}

    QIX_DETAIL_COMPARE(==, Equal)
    QIX_DETAIL_COMPARE(!=, NotEqual)
    QIX_DETAIL_COMPARE(<, Less)
    QIX_DETAIL_COMPARE(<=, LessOrEqual)
    QIX_DETAIL_COMPARE(>, Greater)
    QIX_DETAIL_COMPARE(>=, GreaterOrEqual)

    QIX_DETAIL_COMPUTE(<<)
    QIX_DETAIL_COMPUTE(>>)
    QIX_DETAIL_COMPUTE(&)
    QIX_DETAIL_COMPUTE(|)
    QIX_DETAIL_COMPUTE(^)

    explicit operator bool() const
    {
        using Value = std::remove_const_t<std::remove_reference_t<T>>;
        bool const holds = static_cast<bool>(m_value);
        if (!std::is_same_v<std::remove_cv_t<Value>, bool> && !holds)
        {
            captureOperand({std::addressof(m_value), &describeValue<Value>});
        }
        return holds;
    }

private:
    T m_value;
};

#undef QIX_DETAIL_COMPARE
#undef QIX_DETAIL_COMPUTE

/// Without it the comma operator would drop the check and keep what was meant as its message.
template <typename T, typename R>
COutcome operator,(TOperand<T> const&, R const&)
{
    static_assert(alwaysFalse<T>, "a check takes one expression, and no message");
    return COutcome(false);
}

/// Begins to take an expression apart: it binds to the operand in front.
class CDecomposer
{
public:
    template <typename T>
    TOperand<T const&> operator<<(T const& value) const
    {
        return TOperand<T const&>(value);
    }

    template <typename T>
    TOperand<T const&> operator<=(T const& value) const
    {
        return TOperand<T const&>(value);
    }
};

} // namespace qix::detail
