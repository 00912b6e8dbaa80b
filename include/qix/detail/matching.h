#pragma once

#include <qix/detail/check.h>
#include <qix/detail/narrowText.h>
#include <qix/export.h>

#include <string>
#include <type_traits>
#include <utility>

namespace qix::detail
{

/// Adapts matchers of other libraries: specialised for each of them.
template <typename Matcher, typename Value, typename = void>
struct TForeignMatcher
{
    static constexpr bool isOne = false;
};

template <typename Matcher, typename Value, typename = void>
constexpr bool isMatcherFor = false;
template <typename Matcher, typename Value>
constexpr bool
    isMatcherFor<Matcher, Value,
                 std::void_t<decltype(static_cast<bool>(std::declval<Matcher const&>().matches(
                     std::declval<Value const&>())))>> = true;

template <typename Matcher, typename Value, typename = void>
constexpr bool canExplain = false;
template <typename Matcher, typename Value>
constexpr bool canExplain<Matcher, Value,
                          std::void_t<decltype(std::declval<Matcher const&>().explain(
                              std::declval<CValueWriter&>(), std::declval<Value const&>()))>> =
    true;

/// Whether the value fulfils the matcher, or equals the expected value. C strings are compared by
/// their characters.
template <typename Expected, typename Value>
bool matches(Expected const& expected, Value const& value)
{
    if constexpr (isMatcherFor<Expected, Value>)
    {
        return static_cast<bool>(expected.matches(value));
    }
    else if constexpr (TForeignMatcher<Expected, Value>::isOne)
    {
        return TForeignMatcher<Expected, Value>::matches(expected, value);
    }
    else if constexpr (isNarrowText<Expected> && isNarrowText<Value>)
    {
        return viewOf(value) == viewOf(expected);
    }
    else
    {
        return Equal::holds(value, expected);
    }
}

/// Writes the expectation, and how the value differs from it.
template <typename Expected, typename Value>
struct TMatch
{
    Expected const& expected;
    Value const& value;

    void describe(CValueWriter& out) const
    {
        if constexpr (!isMatcherFor<Expected, Value> && TForeignMatcher<Expected, Value>::isOne)
        {
            TForeignMatcher<Expected, Value>::describe(out, expected, value);
        }
        else
        {
            out.value(expected);
        }
        if constexpr (canExplain<Expected, Value>)
        {
            CValueWriter explanation;
            expected.explain(explanation, value);
            out.text(explanation.written().empty() ? "" : "\n");
            out.text(explanation.written());
        }
    }
};

/// Captures a value and the expectation for the message of the check.
QIX_EXPORT void captureMatch(ValueRef value, ValueRef match);

/// Captures the exception being handled and the expectation of its message.
QIX_EXPORT void captureThrownMatch(ValueRef match);

/// The message of the exception being handled; for a thrown text the text itself.
QIX_EXPORT std::string messageOfException();

/// Whether the value is as expected. Captures both for the message of the check if it is not.
template <typename Value, typename Expected>
bool holdsThat(Value const& value, Expected const& expected)
{
    bool const holds = matches(expected, value);
    if (!holds)
    {
        TMatch<Expected, Value> const match = {expected, value};
        captureMatch({std::addressof(value), &describeValue<Value>},
                     {&match, &describeValue<TMatch<Expected, Value>>});
    }
    return holds;
}

/// Whether the exception being handled has the expected message. Captures both if not.
template <typename Expected>
bool isThrownWith(Expected const& expected)
{
    std::string const message = messageOfException();
    bool const holds = matches(expected, message);
    if (!holds)
    {
        TMatch<Expected, std::string> const match = {expected, message};
        captureThrownMatch({&match, &describeValue<TMatch<Expected, std::string>>});
    }
    return holds;
}

} // namespace qix::detail
