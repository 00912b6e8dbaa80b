#pragma once

#include <qix/CValueWriter.h>
#include <qix/detail/check.h>

#include <iosfwd>
#include <type_traits>
#include <utility>

namespace qix
{

/// A value that can be compared but is never shown: a password, say. Made by hidden().
///
/// It compares as its value does, with plain values and with hidden ones. A failed check shows
/// `<hidden>` for both sides, since the other one may be the secret, too.
/// \tparam T  the type of the value, or a reference to it
template <typename T>
class THidden
{
public:
    /// Hides \p value, which must outlive this if T is a reference.
    explicit THidden(T&& value) : m_value(static_cast<T&&>(value)) {}

    /// The value, for comparisons. What is made of it is not hidden any more.
    std::remove_reference_t<T> const& reveal() const noexcept { return m_value; }

    /// Writes `<hidden>`.
    void describe(CValueWriter& out) const { out.text("<hidden>"); }

private:
    T m_value;
};

/// Hides \p value from the messages of checks: `QIX_CHECK(qix::hidden(password) == expected)`.
/// A value that is an lvalue is referred to, any other one is kept.
template <typename T>
THidden<T> hidden(T&& value)
{
    return THidden<T>(static_cast<T&&>(value));
}

namespace detail
{

template <typename T>
constexpr bool isHidden<THidden<T>> = true;

template <typename T>
decltype(auto) revealed(T const& value) noexcept
{
    if constexpr (isHidden<T>)
    {
        return value.reveal();
    }
    else
    {
        return (value);
    }
}

template <typename L, typename R>
using IfHidden = std::enable_if_t<isHidden<L> || isHidden<R>, bool>;

} // namespace detail

/// @{
/// Compares values one of which is hidden: holds when the comparison of the values does.
template <typename L, typename R>
detail::IfHidden<L, R> operator==(L const& left, R const& right)
{
    return detail::Equal::holds(detail::revealed(left), detail::revealed(right));
}
template <typename L, typename R>
detail::IfHidden<L, R> operator!=(L const& left, R const& right)
{
    return detail::NotEqual::holds(detail::revealed(left), detail::revealed(right));
}
template <typename L, typename R>
detail::IfHidden<L, R> operator<(L const& left, R const& right)
{
    return detail::Less::holds(detail::revealed(left), detail::revealed(right));
}
template <typename L, typename R>
detail::IfHidden<L, R> operator<=(L const& left, R const& right)
{
    return detail::LessOrEqual::holds(detail::revealed(left), detail::revealed(right));
}
template <typename L, typename R>
detail::IfHidden<L, R> operator>(L const& left, R const& right)
{
    return detail::Greater::holds(detail::revealed(left), detail::revealed(right));
}
template <typename L, typename R>
detail::IfHidden<L, R> operator>=(L const& left, R const& right)
{
    return detail::GreaterOrEqual::holds(detail::revealed(left), detail::revealed(right));
}
/// @}

} // namespace qix
