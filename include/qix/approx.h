#pragma once

#include <qix/export.h>

#include <type_traits>

namespace qix
{

class CValueWriter;

/// A floating-point number with a tolerance, to compare others with.
///
/// It equals what differs from it by no more than the relative or the absolute tolerance. As long
/// as none is set, a relative tolerance of one in a million applies. NaN equals nothing, an
/// infinity only itself.
class QIX_EXPORT CApprox
{
public:
    /// \p value with a relative tolerance of one in a million.
    explicit CApprox(double value) noexcept : m_value(value) {}

    /// Allows a difference of \p tolerance times the value's magnitude.
    /// Throws zel::CInvalidArgError when it is negative or not a number.
    CApprox& relative(double tolerance);

    /// Allows a difference of \p tolerance. Throws zel::CInvalidArgError as relative() does.
    CApprox& absolute(double tolerance);

    /// True when \p other is within the tolerance.
    bool equals(double other) const noexcept;

    /// The number that others are compared with.
    double value() const noexcept { return m_value; }

    /// How far another number may be from it. It tells nothing of an infinity.
    double bound() const noexcept;

    /// Writes the value and the tolerance.
    void describe(CValueWriter& out) const;

private:
    double m_value;
    double m_relative = 1e-6;
    double m_absolute = 0;
    bool m_isRelativeSet = false;
};

/// The number \p value as something that others are compared with: `x == qix::approx(0.1)`.
template <typename T, typename = std::enable_if_t<std::is_arithmetic_v<T>>>
CApprox approx(T value) noexcept
{
    return CApprox(static_cast<double>(value));
}

/// True when the number is within the tolerance.
template <typename T, typename = std::enable_if_t<std::is_arithmetic_v<T>>>
bool operator==(T left, CApprox const& right) noexcept
{
    return right.equals(static_cast<double>(left));
}

/// True when the number is within the tolerance.
template <typename T, typename = std::enable_if_t<std::is_arithmetic_v<T>>>
bool operator==(CApprox const& left, T right) noexcept
{
    return left.equals(static_cast<double>(right));
}

/// True when the number is not within the tolerance.
template <typename T, typename = std::enable_if_t<std::is_arithmetic_v<T>>>
bool operator!=(T left, CApprox const& right) noexcept
{
    return !right.equals(static_cast<double>(left));
}

/// True when the number is not within the tolerance.
template <typename T, typename = std::enable_if_t<std::is_arithmetic_v<T>>>
bool operator!=(CApprox const& left, T right) noexcept
{
    return !left.equals(static_cast<double>(right));
}

} // namespace qix
