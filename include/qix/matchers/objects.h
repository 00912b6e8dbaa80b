#pragma once

#include <qix/matchers/combinations.h>

#include <functional>
#include <string>
#include <utility>
#include <variant>

namespace qix::detail
{

class CIsNull
{
public:
    template <typename P>
    auto matches(P const& pointer) const -> decltype(pointer == nullptr)
    {
        return pointer == nullptr;
    }

    void describe(CValueWriter& out) const { out.text("a null pointer"); }
};

/// What can be dereferenced, and is something: a pointer or an optional.
template <typename T>
class TRefersTo
{
public:
    TRefersTo(char const* name, T expected) : m_name(name), m_expected(std::move(expected)) {}

    template <typename P>
    auto matches(P const& pointer) const -> decltype(static_cast<bool>(pointer), *pointer, true)
    {
        return static_cast<bool>(pointer) && detail::matches(m_expected, *pointer);
    }

    void describe(CValueWriter& out) const
    {
        out.text(m_name);
        out.value(m_expected);
    }

    template <typename P>
    auto explain(CValueWriter& out, P const& pointer) const
        -> decltype(static_cast<bool>(pointer), *pointer, void())
    {
        if (!static_cast<bool>(pointer))
        {
            out.text("there is none");
            return;
        }
        out.text("it is ");
        out.value(*pointer);
        explainOne(out, ": ", m_expected, *pointer);
    }

private:
    std::string_view m_name;
    T m_expected;
};

class CHasNoValue
{
public:
    template <typename O>
    auto matches(O const& optional) const -> decltype(!optional.has_value())
    {
        return !optional.has_value();
    }

    void describe(CValueWriter& out) const { out.text("nothing"); }
};

template <typename Alternative, typename T>
class THolds
{
public:
    explicit THolds(T expected) : m_expected(std::move(expected)) {}

    template <typename... A>
    bool matches(std::variant<A...> const& variant) const
    {
        Alternative const* const held = std::get_if<Alternative>(&variant);
        return held != nullptr && detail::matches(m_expected, *held);
    }

    void describe(CValueWriter& out) const
    {
        out.text("the alternative is ");
        out.value(m_expected);
    }

    template <typename... A>
    void explain(CValueWriter& out, std::variant<A...> const& variant) const
    {
        if (!std::holds_alternative<Alternative>(variant))
        {
            out.text("it holds another one, with index ");
            out.unsignedInteger(variant.index());
        }
    }

private:
    T m_expected;
};

template <typename First, typename Second>
class TPairOf
{
public:
    TPairOf(First first, Second second) : m_first(std::move(first)), m_second(std::move(second)) {}

    template <typename A, typename B>
    bool matches(std::pair<A, B> const& pair) const
    {
        return detail::matches(m_first, pair.first) && detail::matches(m_second, pair.second);
    }

    void describe(CValueWriter& out) const
    {
        out.text("(");
        out.value(m_first);
        out.text(", ");
        out.value(m_second);
        out.text(")");
    }

    template <typename A, typename B>
    void explain(CValueWriter& out, std::pair<A, B> const& pair) const
    {
        bool const isFirst = !detail::matches(m_first, pair.first);
        out.text(isFirst ? "first is " : "second is ");
        isFirst ? out.value(pair.first) : out.value(pair.second);
    }

private:
    First m_first;
    Second m_second;
};

/// What a member of an object is.
template <typename Member, typename T>
class TMember
{
public:
    TMember(std::string name, Member member, T expected)
        : m_name(std::move(name)), m_member(member), m_expected(std::move(expected))
    {
    }

    template <typename V>
    auto matches(V const& object) const
        -> decltype(std::invoke(std::declval<Member const&>(), object), true)
    {
        return detail::matches(m_expected, std::invoke(m_member, object));
    }

    void describe(CValueWriter& out) const
    {
        out.text(m_name);
        out.text(" is ");
        out.value(m_expected);
    }

    template <typename V>
    auto explain(CValueWriter& out, V const& object) const
        -> decltype(std::invoke(std::declval<Member const&>(), object), void())
    {
        auto const& value = std::invoke(m_member, object);
        out.text(m_name);
        out.text(" is ");
        out.value(value);
        explainOne(out, ": ", m_expected, value);
    }

private:
    std::string m_name;
    Member m_member;
    T m_expected;
};

} // namespace qix::detail

namespace qix::matchers
{

/// Matches null pointers, smart ones and empty function objects included.
inline auto isNull()
{
    return detail::CIsNull();
}

/// Matches pointers that are not null.
inline auto isNotNull()
{
    return isNot(isNull());
}

/// Matches pointers to what \p expected matches.
template <typename T>
auto pointsTo(T&& expected)
{
    return detail::TRefersTo<detail::Expected<T>>("points to ", std::forward<T>(expected));
}

/// Matches an optional with a value that \p expected matches.
template <typename T>
auto hasValue(T&& expected)
{
    return detail::TRefersTo<detail::Expected<T>>("has the value ", std::forward<T>(expected));
}

/// Matches an optional with a value.
inline auto hasValue()
{
    return hasValue(anything());
}

/// Matches an optional without a value.
inline auto hasNoValue()
{
    return detail::CHasNoValue();
}

/// Matches a variant that holds an \p Alternative which \p expected matches.
template <typename Alternative, typename T>
auto holds(T&& expected)
{
    return detail::THolds<Alternative, detail::Expected<T>>(std::forward<T>(expected));
}

/// Matches a variant that holds an \p Alternative.
template <typename Alternative>
auto holds()
{
    return holds<Alternative>(anything());
}

/// Matches a pair by both its parts.
template <typename First, typename Second>
auto pairOf(First&& first, Second&& second)
{
    return detail::TPairOf<detail::Expected<First>, detail::Expected<Second>>(
        std::forward<First>(first), std::forward<Second>(second));
}

/// Matches objects by a field: `field("width", &Size::width, 7)`.
template <typename Class, typename Field, typename T>
auto field(std::string name, Field Class::*member, T&& expected)
{
    return detail::TMember<Field Class::*, detail::Expected<T>>(std::move(name), member,
                                                                std::forward<T>(expected));
}

/// Matches objects by what a function tells of them, one of theirs or another one:
/// `property("size", &CName::getSize, 7)`.
template <typename Function, typename T>
auto property(std::string name, Function function, T&& expected)
{
    return detail::TMember<Function, detail::Expected<T>>(std::move(name), function,
                                                          std::forward<T>(expected));
}

} // namespace qix::matchers
