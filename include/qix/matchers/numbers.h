#pragma once

#include <qix/detail/check.h>
#include <qix/detail/matching.h>
#include <qix/export.h>

#include <type_traits>

namespace qix::detail
{

/// A value that compares with another one as \p Comparison does.
template <typename Comparison, typename T>
class TComparedTo
{
public:
    explicit TComparedTo(T const& expected) : m_expected(expected) {}

    template <typename V>
    auto matches(V const& value) const
        -> decltype(Comparison::holds(value, std::declval<T const&>()))
    {
        return Comparison::holds(value, m_expected);
    }

    void describe(CValueWriter& out) const
    {
        out.text(Comparison::text);
        out.text(" ");
        out.value(m_expected);
    }

private:
    T m_expected;
};

/// How many numbers of the type lie between the two, the second one included; all that there are
/// for NaN.
QIX_EXPORT unsigned long long countUlps(float left, float right) noexcept;
QIX_EXPORT unsigned long long countUlps(double left, double right) noexcept;

/// Throws zel::CInvalidArgError when the tolerance is negative or not a number.
QIX_EXPORT void refuseTolerance(double tolerance);

/// True when both are equal, infinities included, or differ by no more than \p bound.
QIX_EXPORT bool isWithin(double left, double right, double bound) noexcept;

/// A number within a tolerance.
template <typename T>
class TNear
{
public:
    explicit TNear(T expected) noexcept : m_expected(expected) {}

    /// Allows a difference of \p tolerance. Throws zel::CInvalidArgError when it is negative.
    TNear& absolute(double tolerance)
    {
        refuseTolerance(tolerance);
        m_absolute = tolerance;
        m_isSet = true;
        return *this;
    }

    /// Allows a difference of \p tolerance times the magnitude of what is expected. Throws
    /// zel::CInvalidArgError when it is negative.
    TNear& relative(double tolerance)
    {
        refuseTolerance(tolerance);
        m_relative = tolerance;
        m_isSet = true;
        return *this;
    }

    /// Allows \p count steps to the next number of the type.
    TNear& ulps(unsigned long long count) noexcept
    {
        m_ulps = count;
        m_isSet = true;
        return *this;
    }

    template <typename V, typename = std::enable_if_t<std::is_arithmetic_v<V>>>
    bool matches(V value) const noexcept
    {
        T const number = static_cast<T>(value);
        return isWithin(static_cast<double>(value), static_cast<double>(m_expected), getBound()) ||
               (m_ulps > 0 && countUlps(number, m_expected) <= m_ulps);
    }

    void describe(CValueWriter& out) const
    {
        out.text("near ");
        out.value(m_expected);
        if (m_absolute > 0 || (m_isSet && m_ulps == 0 && m_relative <= 0))
        {
            out.text(", absolute ");
            out.floating(m_absolute);
        }
        if (m_relative > 0 || !m_isSet)
        {
            out.text(", relative ");
            out.floating(m_isSet ? m_relative : defaultTolerance);
        }
        if (m_ulps > 0)
        {
            out.text(", ULPs ");
            out.unsignedInteger(m_ulps);
        }
    }

    template <typename V, typename = std::enable_if_t<std::is_arithmetic_v<V>>>
    void explain(CValueWriter& out, V value) const
    {
        double const difference = static_cast<double>(value) - static_cast<double>(m_expected);
        out.text("the difference is ");
        out.floating(difference < 0 ? -difference : difference);
        out.text(", allowed is ");
        out.floating(getBound());
        if (m_ulps > 0)
        {
            out.text("; in ULPs ");
            out.unsignedInteger(countUlps(static_cast<T>(value), m_expected));
            out.text(", allowed are ");
            out.unsignedInteger(m_ulps);
        }
    }

private:
    static constexpr double defaultTolerance = 1e-6;

    double getBound() const noexcept
    {
        double const magnitude = static_cast<double>(m_expected < 0 ? -m_expected : m_expected);
        double const relative = (m_isSet ? m_relative : defaultTolerance) * magnitude;
        return relative > m_absolute ? relative : m_absolute;
    }

    T m_expected;
    double m_absolute = 0;
    double m_relative = 0;
    unsigned long long m_ulps = 0;
    bool m_isSet = false;
};

} // namespace qix::detail

namespace qix::matchers
{

/// @{
/// Matches what compares so with \p expected. Integers are compared by their values, whatever their
/// signs.
template <typename T>
auto equalTo(T const& expected)
{
    return detail::TComparedTo<detail::Equal, std::decay_t<T const&>>(expected);
}
template <typename T>
auto notEqualTo(T const& expected)
{
    return detail::TComparedTo<detail::NotEqual, std::decay_t<T const&>>(expected);
}
template <typename T>
auto lessThan(T const& expected)
{
    return detail::TComparedTo<detail::Less, std::decay_t<T const&>>(expected);
}
template <typename T>
auto atMost(T const& expected)
{
    return detail::TComparedTo<detail::LessOrEqual, std::decay_t<T const&>>(expected);
}
template <typename T>
auto greaterThan(T const& expected)
{
    return detail::TComparedTo<detail::Greater, std::decay_t<T const&>>(expected);
}
template <typename T>
auto atLeast(T const& expected)
{
    return detail::TComparedTo<detail::GreaterOrEqual, std::decay_t<T const&>>(expected);
}
/// @}

/// Matches numbers that are near: `near(0.3).absolute(0.01)`, `.relative(0.001)`, `.ulps(4)`, or
/// several of them, of which one has to hold. Without any, a relative tolerance of one in a million
/// applies.
template <typename T, typename = std::enable_if_t<std::is_arithmetic_v<T>>>
auto near(T expected) noexcept
{
    using Number = std::conditional_t<std::is_same_v<T, float>, float, double>;
    return detail::TNear<Number>(static_cast<Number>(expected));
}

} // namespace qix::matchers
