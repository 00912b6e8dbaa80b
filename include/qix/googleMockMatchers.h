#pragma once

/// \file
/// Lets the matchers of GoogleMock stand in QIX_CHECK_THAT and in the checks of messages:
/// `QIX_CHECK_THAT(numbers, testing::ElementsAre(1, 2))`. Include gmock's headers and link with it
/// as usual. Inside of a matcher of qix they match, but are not described.

#include <qix/detail/matching.h>

#include <gmock/gmock-matchers.h>

namespace qix::detail
{

/// Matchers convert to one of a type; so do values, which stay with the comparison of qix.
template <typename Matcher, typename Value>
struct TForeignMatcher<
    Matcher, Value,
    std::enable_if_t<std::is_convertible_v<Matcher const&, ::testing::Matcher<Value const&>> &&
                     !std::is_convertible_v<Matcher const&, Value>>>
{
    static constexpr bool isOne = true;

    static bool matches(Matcher const& matcher, Value const& value)
    {
        return ::testing::Matcher<Value const&>(matcher).Matches(value);
    }

    static void describe(CValueWriter& out, Matcher const& matcher, Value const& value)
    {
        ::testing::Matcher<Value const&> const converted(matcher);
        ::testing::StringMatchResultListener listener;
        converted.MatchAndExplain(value, &listener);
        out.text(::testing::DescribeMatcher<Value const&>(converted));
        out.text(listener.str().empty() ? "" : "\n" + listener.str());
    }
};

} // namespace qix::detail
