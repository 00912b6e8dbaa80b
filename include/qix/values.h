#pragma once

#include <zel/language.h>

#include <cstddef>
#include <iterator>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

namespace qix
{

/// A list of values. Made by values().
template <typename T, std::size_t size>
struct TValues
{
    /// The first value.
    constexpr T const* begin() const noexcept { return elements; }

    /// Behind the last value.
    constexpr T const* end() const noexcept { return elements + size; }

    T elements[size]; ///< all of them
};

/// The values as a list, in the type that is common to all of them: what QIX_TEST_EACH runs a test
/// for each of.
template <typename... T>
constexpr auto values(T... value)
{
    using Common = std::common_type_t<T...>;
    return TValues<Common, sizeof...(T)>{{static_cast<Common>(std::move(value))...}};
}

namespace detail
{

template <typename Tuples, typename Tuple>
void combineInto(Tuples& combined, Tuple const& front)
{
    combined.push_back(front);
}

template <typename Tuples, typename Tuple, typename Range, typename... Ranges>
void combineInto(Tuples& combined, Tuple const& front, Range const& range, Ranges const&... ranges)
{
    for (auto const& value : range)
    {
        combineInto(combined,
                    std::tuple_cat(front, std::tuple<std::decay_t<decltype(value)>>(value)),
                    ranges...);
    }
}

} // namespace detail

/// Each value of the first range together with each of the next ones, as tuples: of two and three
/// values, six. The values of the last range change fastest. Throws what copying the values throws.
template <typename... Range>
auto combine(Range const&... range)
{
    std::vector<std::tuple<std::decay_t<decltype(*std::begin(range))>...>> combined;
    detail::combineInto(combined, std::tuple<>(), range...);
    return combined;
}

} // namespace qix
