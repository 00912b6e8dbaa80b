#pragma once

#include <qix/values.h>

#include <iterator>
#include <tuple>
#include <type_traits>
#include <vector>

namespace qix
{

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
