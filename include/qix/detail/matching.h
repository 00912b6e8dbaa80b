#pragma once

#include <qix/detail/check.h>
#include <qix/detail/narrowText.h>
#include <qix/export.h>

#include <string>
#include <type_traits>
#include <utility>

namespace qix::detail
{

/// Adapts matchers of other libraries; those that it stands for specialise it.
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

/// Whether the value is what is expected: by a matcher, or by a value that it has to equal. Texts
/// equal each other by what they say, also those of C.
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

/// Writes what was expected, and what of the value is different.
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

/// Keeps a value and what was expected of it for the message of the check.
QIX_EXPORT void captureMatch(ValueRef value, ValueRef match);

/// Keeps the exception being handled and what was expected of its message.
QIX_EXPORT void captureThrownMatch(ValueRef match);

/// The message of the exception being handled; of texts that are thrown these themselves.
QIX_EXPORT std::string messageOfException();

/// Whether the value is what is expected. Keeps both for the message of the check if it is not.
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

/// Whether the exception being handled has the message that is expected. Keeps both if not.
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
