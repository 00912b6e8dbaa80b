#pragma once

#include <qix/detail/describe.h>
#include <qix/detail/difference.h>
#include <qix/detail/narrowText.h>
#include <qix/detail/passedCheck.h>
#include <qix/export.h>

#include <cstddef>
#include <string_view>
#include <type_traits>
#include <utility>

#include <cxxabi.h>

namespace zel
{
class String;
}

namespace qix::detail
{

/// Writes the address by which a pointer or an array is compared: it need not point to text.
template <typename T>
void describeAsAddress(CValueWriter& out, void const* object)
{
    std::decay_t<T const> const pointer = *static_cast<T const*>(object);
    describeAddress(out, pointer);
}

/// Writes a function, which \p object is the address of.
inline void describeFunction(CValueWriter& out, void const* object)
{
    out.address(object);
}

/// Writes an operand that is compared with a secret, and may be that.
inline void describeHidden(CValueWriter& out, void const* /*object*/)
{
    out.text("<hidden>");
}

/// Captures the operands of the comparison that has failed, for the message of its check.
QIX_EXPORT void captureOperands(ValueRef left, char const* comparison, ValueRef right,
                                Explain* explain);

/// Captures the value that is false, for the message of its check.
QIX_EXPORT void captureOperand(ValueRef value);

/// Captures the text of the exception being handled, for the message of its check.
QIX_EXPORT void captureException();

/// Drops the texts of QIX_INFO scopes that an expected exception has left.
QIX_EXPORT void forgetException() noexcept;

/// Notes that nothing was thrown, for the message of its check.
QIX_EXPORT void captureNothingThrown();

[[noreturn]] QIX_EXPORT void skip();
[[noreturn]] QIX_EXPORT void skipWithBytes(std::string_view reason);
[[noreturn]] QIX_EXPORT void skipWithText(zel::String const& reason);
[[noreturn]] QIX_EXPORT void abortWithBytes(std::string_view message);
[[noreturn]] QIX_EXPORT void abortWithText(zel::String const& message);

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
constexpr bool isInteger = std::is_integral_v<T> && !std::is_same_v<std::remove_cv_t<T>, bool>;

#ifdef __cpp_impl_three_way_comparison
/// The result of <=>, which can be compared with a literal 0 only.
template <typename T>
constexpr bool isOrdering =
    std::is_same_v<T, std::strong_ordering> || std::is_same_v<T, std::weak_ordering> ||
    std::is_same_v<T, std::partial_ordering>;
#else
template <typename>
constexpr bool isOrdering = false;
#endif

template <typename L, typename R>
constexpr bool isOrderingWithZero = isOrdering<std::remove_cv_t<L>>&& std::is_same_v<R, int const>;

template <typename L, typename R>
constexpr bool haveDifferentSigns =
    isInteger<L>&& isInteger<R>&& std::is_signed_v<L> != std::is_signed_v<R>;

template <typename T>
constexpr bool isAnyPointer = std::is_pointer_v<T> || std::is_member_pointer_v<T>;

/// True for a literal 0 or NULL. Captured as the left operand it is a number, and no null pointer
/// constant any more.
template <typename L, typename R>
constexpr bool isNumberWithPointer = std::is_integral_v<L>&& isAnyPointer<R>;

// Numbers are compared as the caller wrote them, whatever warnings are on.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wfloat-equal"
#pragma GCC diagnostic ignored "-Wdouble-promotion"
#pragma GCC diagnostic ignored "-Wsign-compare"
#pragma GCC diagnostic ignored "-Wzero-as-null-pointer-constant"

/// Integers of different signedness are compared by their values: -1 is less than 1u.
#define QIX_DETAIL_COMPARISON(name, op)                                                            \
    struct name                                                                                    \
    {                                                                                              \
        static constexpr char const* text = #op;                                                   \
                                                                                                   \
        template <typename L, typename R>                                                          \
        static bool holds(L& left, R& right)                                                       \
        {                                                                                          \
            if constexpr (isNumberWithPointer<L, R>)                                               \
            {                                                                                      \
                static_assert(std::is_same_v<L, int const> || std::is_same_v<L, long const>,       \
                              "only 0, NULL and nullptr are null pointers");                       \
                return left == 0 && static_cast<R>(nullptr) op right;                              \
            }                                                                                      \
            else if constexpr (isOrderingWithZero<L, R>)                                           \
            {                                                                                      \
                return right == 0 && left op 0;                                                    \
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

/// The outcome of a comparison and its captured operands.
class COutcome
{
public:
    COutcome(bool holds, ValueRef left, char const* comparison, ValueRef right,
             Explain* explain) noexcept
        : m_left(left), m_right(right), m_comparison(comparison), m_explain(explain), m_holds(holds)
    {
    }

    explicit operator bool() const noexcept { return m_holds; }

    /// Captures the operands for the message of the check.
    void capture() const { captureOperands(m_left, m_comparison, m_right, m_explain); }

private:
    ValueRef m_left;
    ValueRef m_right;
    char const* m_comparison;
    Explain* m_explain;
    bool m_holds;
};

// -Weffc++ warns that overloaded ones evaluate both sides. These do not compile when used.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Weffc++"

// Computing with the outcome of a comparison is a mistake, or would capture no operands.
#define QIX_DETAIL_FORBID(op)                                                                      \
    template <typename T>                                                                          \
    COutcome operator op(COutcome const& outcome, T const&)                                        \
    {                                                                                              \
        static_assert(alwaysFalse<T>,                                                              \
                      "a check takes one comparison: write two checks, or put the "                \
                      "whole expression in parentheses");                                          \
        return outcome;                                                                            \
    }

QIX_DETAIL_FORBID(&&)
QIX_DETAIL_FORBID(||)
QIX_DETAIL_FORBID(==)
QIX_DETAIL_FORBID(!=)
QIX_DETAIL_FORBID(<)
QIX_DETAIL_FORBID(<=)
QIX_DETAIL_FORBID(>)
QIX_DETAIL_FORBID(>=)
QIX_DETAIL_FORBID(&)
QIX_DETAIL_FORBID(|)
QIX_DETAIL_FORBID(^)

#undef QIX_DETAIL_FORBID

/// Without it the comma operator would drop the check and keep what was meant as its message.
template <typename T>
COutcome operator,(COutcome const& outcome, T const&)
{
    static_assert(alwaysFalse<T>, "a check takes one expression, and no message");
    return outcome;
}

/// True for types whose objects are secret, and so is what they are compared with.
template <typename T>
constexpr bool isHidden = false;

/// The pointer type that an operand is compared as, if it is compared as a pointer.
template <typename T>
constexpr bool isComparedByAddress =
    std::is_pointer_v<std::decay_t<T>> || std::is_null_pointer_v<std::remove_cv_t<T>>;

/// Describes both numbers in the same precision: their shortest digits could look equal.
template <typename T, typename Common>
void describeAs(CValueWriter& out, void const* object)
{
    describe(out, static_cast<Common>(*static_cast<T const*>(object)));
}

template <typename T, typename Other>
constexpr bool haveDifferentPrecisions =
    std::is_floating_point_v<T>&& std::is_floating_point_v<Other> && !std::is_same_v<T, Other>;

/// The operand \p value, described as the comparison with an \p Other sees it.
template <typename Other, typename T>
ValueRef operand(T& value) noexcept
{
    using Value = std::remove_cv_t<T>;
    if constexpr (isHidden<Value> || isHidden<std::remove_cv_t<Other>>)
    {
        return {nullptr, &describeHidden};
    }
    else if constexpr (std::is_function_v<T>)
    {
        return {reinterpret_cast<void const*>(&value), &describeFunction};
    }
    else if constexpr (isComparedByAddress<Other> && std::is_pointer_v<std::decay_t<T>>)
    {
        return {std::addressof(value), &describeAsAddress<Value>};
    }
    else if constexpr (haveDifferentPrecisions<Value, std::remove_cv_t<Other>>)
    {
        using Common = std::common_type_t<Value, std::remove_cv_t<Other>>;
        return {std::addressof(value), &describeAs<Value, Common>};
    }
    else
    {
        return {std::addressof(value), &describeValue<Value>};
    }
}

template <typename Comparison, typename L, typename R>
COutcome compare(L& left, R& right)
{
    using Left = std::remove_cv_t<L>;
    using Right = std::remove_cv_t<R>;
    constexpr bool isExplained =
        std::is_same_v<Comparison, Equal> && !isHidden<Left> && !isHidden<Right>;
    Explain* explain = nullptr;
    if constexpr (isExplained)
    {
        explain = explanation<Left, Right>();
    }
    return {Comparison::holds(left, right), operand<R>(left), Comparison::text, operand<L>(right),
            explain};
}

/// Scalars become operands by references to const, which bind to bit-fields, too. All others stay
/// what they are: their comparison may be an operation that is not const, or take only that type.
template <typename T>
constexpr bool isScalar = std::is_scalar_v<std::remove_reference_t<T>>;

/// Numbers are no pointers. A literal 0 is one, and finds the operation that takes a nullptr_t.
template <typename L, typename R>
constexpr bool isScalarFor =
    isScalar<R> && !(isAnyPointer<std::decay_t<L>> && std::is_integral_v<R>);

inline constexpr std::nullptr_t nullPointer = nullptr;

// The && makes them match better than an operation by which a user compares everything.
#define QIX_DETAIL_COMPARE(op, Comparison)                                                         \
    template <typename R, std::enable_if_t<!isScalar<R>, int> = 0>                                 \
    COutcome operator op(R&& right)&&                                                              \
    {                                                                                              \
        return compare<Comparison>(m_value, right);                                                \
    }                                                                                              \
    template <typename R, std::enable_if_t<isScalarFor<T, R>, int> = 0>                            \
    COutcome operator op(R const& right)&&                                                         \
    {                                                                                              \
        return compare<Comparison>(m_value, right);                                                \
    }

#define QIX_DETAIL_COMPARE_NULL(op, Comparison)                                                    \
    COutcome operator op(std::nullptr_t)&&                                                         \
    {                                                                                              \
        return compare<Comparison>(m_value, nullPointer);                                          \
    }

#define QIX_DETAIL_COMPUTE(op)                                                                     \
    template <typename R, typename L = T, std::enable_if_t<isScalar<L>, int> = 0>                  \
    auto operator op(R const& right)&&                                                             \
    {                                                                                              \
        return TOperand<decltype(m_value op right)>(m_value op right);                             \
    }                                                                                              \
    template <typename R, typename L = T, std::enable_if_t<!isScalar<L>, int> = 0>                 \
    auto operator op(R&& right)&&                                                                  \
    {                                                                                              \
        using Result = decltype(static_cast<L&&>(m_value) op static_cast<R&&>(right));             \
        return TOperand<Result>(static_cast<L&&>(m_value) op static_cast<R&&>(right));             \
    }

/// The left operand of a comparison, or the whole expression if it is not a comparison.
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

    QIX_DETAIL_COMPARE_NULL(==, Equal)
    QIX_DETAIL_COMPARE_NULL(!=, NotEqual)

    QIX_DETAIL_COMPUTE(<<)
    QIX_DETAIL_COMPUTE(>>)
    QIX_DETAIL_COMPUTE(&)
    QIX_DETAIL_COMPUTE(|)
    QIX_DETAIL_COMPUTE(^)
#ifdef __cpp_impl_three_way_comparison
    // It is considered for each < as well, and so stands back where there is no such comparison.
    // For clang-format, which reads C++17, these are two operators.
    // clang-format off
    template <typename R>
    auto operator<=>(R const& right) &&
        -> TOperand<decltype(std::declval<std::remove_reference_t<T> const&>() <=> right)>
    {
        return TOperand<decltype(std::as_const(m_value) <=> right)>(std::as_const(m_value) <=> right);
    }
    // clang-format on
#endif

    explicit operator bool()
    {
        return static_cast<bool>(m_value);
    }

    /// Captures the value for the message of the check.
    void capture()
    {
        using Value = std::remove_cv_t<std::remove_reference_t<T>>;
        if constexpr (!std::is_same_v<Value, bool>)
        {
            captureOperand(operand<void>(m_value));
        }
    }

private:
    T m_value;
};

#undef QIX_DETAIL_COMPARE
#undef QIX_DETAIL_COMPARE_NULL
#undef QIX_DETAIL_COMPUTE

/// Without it the comma operator would drop the check and keep what was meant as its message.
template <typename T, typename R>
COutcome operator,(TOperand<T> const&, R const&)
{
    static_assert(alwaysFalse<T>, "a check takes one expression, and no message");
    return {false, {nullptr, nullptr}, "", {nullptr, nullptr}, nullptr};
}

/// The type by which an operand that is no scalar is captured; functions become pointers.
template <typename T>
using Kept = std::conditional_t<std::is_function_v<std::remove_reference_t<T>>, std::decay_t<T>, T>;

#define QIX_DETAIL_DECOMPOSE(op)                                                                   \
    template <typename T, std::enable_if_t<isScalar<T>, int> = 0>                                  \
    TOperand<T const&> operator op(T const& value)&&                                               \
    {                                                                                              \
        return TOperand<T const&>(value);                                                          \
    }                                                                                              \
    template <typename T, std::enable_if_t<!isScalar<T>, int> = 0>                                 \
    TOperand<Kept<T&&>> operator op(T&& value)&&                                                   \
    {                                                                                              \
        return TOperand<Kept<T&&>>(static_cast<T&&>(value));                                       \
    }

#pragma GCC diagnostic pop

/// Captures the left operand of an expression: its operator binds to the first operand.
class CDecomposer
{
public:
    QIX_DETAIL_DECOMPOSE(<<)
    QIX_DETAIL_DECOMPOSE(<=)
};

#undef QIX_DETAIL_DECOMPOSE

/// Whether the checked expression holds. Captures the operands for the message if it does not.
inline bool holds(COutcome&& outcome)
{
    bool const holds = static_cast<bool>(outcome);
    if (!holds)
    {
        outcome.capture();
    }
    return holds;
}

/// \copydoc holds(COutcome&&)
template <typename T>
bool holds(TOperand<T>&& operand)
{
    bool const holds = static_cast<bool>(operand);
    if (!holds)
    {
        operand.capture();
    }
    return holds;
}

/// Whether an expression holds whose operands cannot be captured, such as `a == b ? c : d`.
template <typename T>
bool holds(T&& value)
{
    return static_cast<bool>(value);
}

} // namespace qix::detail
