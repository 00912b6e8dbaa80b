#pragma once

#include <qix/detail/matching.h>

#include <tuple>
#include <type_traits>
#include <utility>

namespace qix::detail
{

/// What is kept of an argument: texts of C as they are, since literals stay.
template <typename T>
using Expected = std::decay_t<T>;

/// Writes what is expected, all of it behind each other.
template <typename... T>
void describeAll(CValueWriter& out, char const* separator, std::tuple<T...> const& all)
{
    char const* between = "";
    auto const write = [&](auto const& expected)
    {
        out.text(between);
        out.value(expected);
        between = separator;
    };
    std::apply([&](auto const&... expected) { (write(expected), ...); }, all);
}

/// Writes what an expectation tells of the value that it does not match.
template <typename Expected, typename Value>
void explainOne(CValueWriter& out, char const* intro, Expected const& expected, Value const& value)
{
    if constexpr (canExplain<Expected, Value>)
    {
        CValueWriter explanation;
        expected.explain(explanation, value);
        out.text(explanation.written().empty() ? "" : intro);
        out.text(explanation.written());
    }
}

template <typename T>
class TNot
{
public:
    explicit TNot(T expected) : m_expected(std::move(expected)) {}

    template <typename V>
    bool matches(V const& value) const
    {
        return !detail::matches(m_expected, value);
    }

    void describe(CValueWriter& out) const
    {
        out.text("not (");
        out.value(m_expected);
        out.text(")");
    }

private:
    T m_expected;
};

template <typename... T>
class TAllOf
{
public:
    explicit TAllOf(T... expected) : m_expected(std::move(expected)...) {}

    template <typename V>
    bool matches(V const& value) const
    {
        return std::apply([&](auto const&... expected)
                          { return (detail::matches(expected, value) && ...); },
                          m_expected);
    }

    void describe(CValueWriter& out) const
    {
        out.text("(");
        describeAll(out, " and ", m_expected);
        out.text(")");
    }

    /// Tells of the first that does not match.
    template <typename V>
    void explain(CValueWriter& out, V const& value) const
    {
        bool isTold = false;
        auto const tell = [&](auto const& expected)
        {
            if (!isTold && !detail::matches(expected, value))
            {
                isTold = true;
                out.text("it is not: ");
                out.value(expected);
                explainOne(out, ": ", expected, value);
            }
        };
        std::apply([&](auto const&... expected) { (tell(expected), ...); }, m_expected);
    }

private:
    std::tuple<T...> m_expected;
};

template <typename... T>
class TAnyOf
{
public:
    explicit TAnyOf(T... expected) : m_expected(std::move(expected)...) {}

    template <typename V>
    bool matches(V const& value) const
    {
        return std::apply([&](auto const&... expected)
                          { return (detail::matches(expected, value) || ...); },
                          m_expected);
    }

    void describe(CValueWriter& out) const
    {
        out.text("(");
        describeAll(out, " or ", m_expected);
        out.text(")");
    }

private:
    std::tuple<T...> m_expected;
};

/// Matches everything.
class CAnything
{
public:
    template <typename V>
    bool matches(V const&) const noexcept
    {
        return true;
    }

    void describe(CValueWriter& out) const { out.text("anything"); }
};

} // namespace qix::detail

namespace qix::matchers
{

/// Matches what \p expected does not match, or is not equal to.
template <typename T>
auto isNot(T&& expected)
{
    return detail::TNot<detail::Expected<T>>(std::forward<T>(expected));
}

/// Matches what all of them match.
template <typename... T>
auto allOf(T&&... expected)
{
    return detail::TAllOf<detail::Expected<T>...>(std::forward<T>(expected)...);
}

/// Matches what at least one of them matches.
template <typename... T>
auto anyOf(T&&... expected)
{
    return detail::TAnyOf<detail::Expected<T>...>(std::forward<T>(expected)...);
}

/// Matches everything.
inline auto anything()
{
    return detail::CAnything();
}

} // namespace qix::matchers
